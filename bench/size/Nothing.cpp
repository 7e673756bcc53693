// SPDX-License-Identifier: Apache-2.0
/// Deliberately empty: the shared library built from this file contains only the core library's objects.
