// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Numbers in text that people write.

#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>

namespace vorna::tools {

/// Parses all of `text`; std::nullopt if it is not a number of that type. No leading space or plus sign.
template <class Number>
[[nodiscard]] std::optional<Number> parseNumber(std::string_view text) {
    Number value{};
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    return error == std::errc() && stop == end ? std::optional(value) : std::nullopt;
}

}  // namespace vorna::tools
