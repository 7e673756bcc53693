// SPDX-License-Identifier: Apache-2.0
#include <vorna/events/ULID.h>

#include <vorna/json/Value.h>

#include <boost/json/string.hpp>

#include <algorithm>

namespace vorna {

ULID ULID::fromParts(Date timestamp, std::uint16_t first, std::uint64_t second) {
    return fromHalves({wholeMilliseconds(timestamp) << 16 | first, second});
}

ULID::ULID(Date timestamp) : ULID(timestamp, systemRandomSource()) {}

ULID::ULID(Date timestamp, RandomSource& generator) {
    const std::uint16_t first = generator.next16();
    const std::uint64_t second = generator.next64();
    *this = fromParts(timestamp, first, second);
}

std::optional<ULID> ULID::fromRandomPart(Date timestamp, std::span<const std::uint8_t> randomPartData) {
    constexpr std::size_t timeSize = 6;
    constexpr std::size_t randomSize = Bytes().size() - timeSize;
    if (randomPartData.size() < randomSize) {
        return std::nullopt;
    }
    ULID ulid = fromParts(timestamp, 0, 0);
    std::copy_n(randomPartData.begin(), randomSize, ulid.bytes_.begin() + timeSize);
    return ulid;
}

Result<ULID, json::DecodingError> ULID::decode(std::string_view json) {
    return json::parse(json).and_then(
        [](const boost::json::value& tree) -> Result<ULID, json::DecodingError> {
            const boost::json::string* const text = tree.if_string();
            if (text == nullptr) {
                return Unexpected(json::DecodingError{.expected = "a string", .found = json::kindOf(tree)});
            }
            const std::optional<ULID> ulid = fromString({text->data(), text->size()});
            if (!ulid) {
                return Unexpected(invalidText());
            }
            return *ulid;
        });
}

json::DecodingError ULID::invalidText() {
    return {.expected = "a ULID",
            .found = json::DecodingError::Malformed{"Attempted to decode ULID from invalid ULID string."}};
}

std::string encode(const ULID& ulid) {
    // Nothing in it needs escaping.
    return '"' + ulid.ulidString() + '"';
}

std::string ULID::ulidString() const {
    const Text text = toText();
    return std::string(view(text));
}

std::string ULID::description() const {
    return ulidString();
}

}  // namespace vorna
