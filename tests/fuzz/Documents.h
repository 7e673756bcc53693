// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Properties of every document, valid or not.

#include <tests/fuzz/Fuzz.h>

#include <vorna/documents/MissingField.h>
#include <vorna/json/DecodingError.h>
#include <vorna/json/SourceMap.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace vorna::fuzz {

/// Each field is reported once.
inline void requireDistinct(const std::vector<MissingField>& fields) {
    const std::vector<std::string> names = listedNames(fields);
    require(std::adjacent_find(names.begin(), names.end()) == names.end());
}

/// An error has a description of one line, and the offset that the text's own map gives for its path.
inline void requireLocated(const json::DecodingError& error, std::string_view text) {
    const std::string description = json::describe(error, text);
    require(!description.empty() && description.find('\n') == std::string::npos);
    require(error.offset.has_value());
    const auto map = json::SourceMap::read(text);
    if (!map) {
        require(error == map.error());
        return;
    }
    const auto entry = map->find(error.path);
    require(entry && map->entries()[*entry].valueBegin == *error.offset);
    require(map->path(*entry) == error.path);
    const auto* const kind = std::get_if<json::Kind>(&error.found);
    require(map->entries()[*entry].kind == (kind != nullptr ? *kind : json::Kind::number));
}

}  // namespace vorna::fuzz
