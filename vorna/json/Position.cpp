// SPDX-License-Identifier: Apache-2.0
#include <vorna/json/Position.h>

#include <algorithm>

namespace vorna::json {

Position positionAt(std::string_view text, std::size_t offset) noexcept {
    const std::string_view before = text.substr(0, std::min(offset, text.size()));
    const std::size_t lineFeed = before.rfind('\n');
    const std::string_view sameLine = before.substr(lineFeed == std::string_view::npos ? 0 : lineFeed + 1);
    const auto startsCodePoint = [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
    };
    return {1 + static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n')),
            1 + static_cast<std::size_t>(std::count_if(sameLine.begin(), sameLine.end(), startsCodePoint))};
}

}  // namespace vorna::json
