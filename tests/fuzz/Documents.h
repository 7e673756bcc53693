// SPDX-License-Identifier: Apache-2.0
#pragma once

/// What holds of the screens' documents whatever they contain.

#include <tests/fuzz/Fuzz.h>

#include <vorna/json/DecodingError.h>
#include <vorna/json/SourceMap.h>

#include <algorithm>
#include <string>
#include <variant>
#include <vector>

namespace vorna::fuzz {

inline void requireSorted(const std::vector<std::string>& names) {
    require(std::is_sorted(names.begin(), names.end()));
    require(std::adjacent_find(names.begin(), names.end()) == names.end());
}

/// An error keeps to one line and tells the place that the text's own map tells for its path.
inline void requireLocated(const json::DecodingError& error, std::string_view text) {
    require(!error.description.empty() && error.description.find('\n') == std::string::npos);
    require(error.line > 0 && error.column > 0);
    const auto read = json::SourceMap::read(text);
    if (const auto* const map = std::get_if<json::SourceMap>(&read)) {
        require(!error.expected.empty() && !error.found.empty());
        const auto entry = map->find(error.path);
        require(entry && map->valuePosition(*entry) == json::Position{error.line, error.column});
        require(map->path(*entry) == error.path);
    } else {
        require(error.expected.empty() &&
                std::get<json::DecodingError>(read).description == error.description);
    }
}

}  // namespace vorna::fuzz
