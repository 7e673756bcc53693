// SPDX-License-Identifier: Apache-2.0
#include <tools/devserver/ByteRange.h>

#include <tools/common/Number.h>

#include <algorithm>
#include <optional>

namespace vorna::devserver {
std::variant<WholeFile, ByteRange, UnsatisfiableRange> readByteRange(std::string_view header,
                                                                     std::uint64_t size) {
    constexpr std::string_view unit = "bytes=";
    if (!header.starts_with(unit)) {
        return WholeFile{};
    }
    header.remove_prefix(unit.size());
    const std::size_t dash = header.find('-');
    if (dash == std::string_view::npos) {
        return WholeFile{};
    }
    const std::string_view firstText = header.substr(0, dash);
    const std::string_view lastText = header.substr(dash + 1);

    if (firstText.empty()) {
        const std::optional<std::uint64_t> count = tools::parseNumber<std::uint64_t>(lastText);
        if (!count) {
            return WholeFile{};
        }
        const std::uint64_t length = std::min(*count, size);
        if (length == 0) {
            return UnsatisfiableRange{};
        }
        return ByteRange{size - length, length};
    }

    const std::optional<std::uint64_t> first = tools::parseNumber<std::uint64_t>(firstText);
    const std::optional<std::uint64_t> last =
        lastText.empty() ? std::optional(UINT64_MAX) : tools::parseNumber<std::uint64_t>(lastText);
    if (!first || !last || *last < *first) {
        return WholeFile{};
    }
    if (*first >= size) {
        return UnsatisfiableRange{};
    }
    return ByteRange{*first, std::min(*last, size - 1) - *first + 1};
}

}  // namespace vorna::devserver
