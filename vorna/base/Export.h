// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Marks a symbol that the shared library exports; all others are hidden.

#define VORNA_EXPORT __attribute__((visibility("default")))  // NOLINT(cppcoreguidelines-macro-usage)
