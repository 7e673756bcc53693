// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Whether text from outside is UTF-8, and what to show where it is not.

#include <vorna/base/Export.h>

#include <string>
#include <string_view>

namespace vorna::utf8 {

/// True when the bytes are well-formed UTF-8: no overlong forms, no surrogates, nothing above U+10FFFF.
/// Empty text is well-formed.
VORNA_EXPORT bool isValid(std::string_view text) noexcept;

/// The text with each byte that does not belong to a well-formed sequence replaced by U+FFFD.
VORNA_EXPORT std::string repaired(std::string_view text);

}  // namespace vorna::utf8
