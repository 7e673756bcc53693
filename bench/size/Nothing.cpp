// SPDX-License-Identifier: Apache-2.0
/// Nothing of its own: the shared library that is made of this file holds the core library's objects alone.
