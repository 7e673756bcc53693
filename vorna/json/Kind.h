// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The kinds of JSON values.

#include <vorna/base/Export.h>

#include <cstdint>
#include <string_view>

namespace vorna::json {

enum class Kind : std::uint8_t { null, boolean, number, string, array, object };

/// Returns the kind as it appears in error messages: "null", "a boolean", "a number", "a string", "an array",
/// "an object".
VORNA_EXPORT std::string_view kindName(Kind kind) noexcept;

}  // namespace vorna::json
