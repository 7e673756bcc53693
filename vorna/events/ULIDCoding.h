// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The JSON form of a ULID: a string with its text. Include this where a record with such a field is encoded
/// or decoded; argument-dependent lookup finds the two functions.

#include <vorna/events/ULID.h>
#include <vorna/json/Decoding.h>
#include <vorna/json/Encoding.h>

namespace vorna {

inline json::Written write(json::Writer& writer, const ULID& ulid) {
    const ULID::Text text = ulid.toText();
    return writer.text(ULID::view(text));
}

inline json::detail::Read read(const boost::json::value& from, ULID& into) {
    std::string text;
    if (json::detail::Read result = json::detail::read(from, text); !result) {
        return result;
    }
    const std::optional<ULID> ulid = ULID::fromString(text);
    if (!ulid) {
        return Unexpected(ULID::invalidText());
    }
    into = *ulid;
    return {};
}

}  // namespace vorna
