// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Marks what the shared library shows: everything else is hidden.

#define VORNA_EXPORT __attribute__((visibility("default")))  // NOLINT(cppcoreguidelines-macro-usage)
