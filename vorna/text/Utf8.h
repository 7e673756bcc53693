// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Checks and repairs text from outside that should be UTF-8.

#include <vorna/base/Export.h>

#include <string>
#include <string_view>

namespace vorna::utf8 {

/// True if the bytes are well-formed UTF-8: no overlong forms, no surrogates, nothing above U+10FFFF. Empty
/// text is well-formed.
VORNA_EXPORT bool isValid(std::string_view text) noexcept;

/// Replaces each byte that is not part of a well-formed sequence by U+FFFD.
VORNA_EXPORT std::string repaired(std::string_view text);

}  // namespace vorna::utf8
