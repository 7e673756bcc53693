// SPDX-License-Identifier: Apache-2.0
#include <vorna/json/Path.h>

#include <boost/json/serialize.hpp>
#include <boost/json/string_view.hpp>

#include <algorithm>

namespace vorna::json {

namespace {

bool isPlain(std::string_view key) noexcept {
    const auto isPlainCharacter = [](char character) {
        return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
               (character >= '0' && character <= '9') || character == '_' || character == '-' ||
               character == '$';
    };
    return !key.empty() && std::all_of(key.begin(), key.end(), isPlainCharacter);
}

std::string quoted(std::string_view key) {
    std::string text = boost::json::serialize(boost::json::string_view(key.data(), key.size()));
    // JSON permits an unescaped DEL; a terminal does not show it.
    for (std::size_t at = text.find('\x7F'); at != std::string::npos; at = text.find('\x7F', at)) {
        text.replace(at, 1, "\\u007F");
    }
    return text;
}

}  // namespace

void Path::prepend(std::string_view key) {
    steps_.emplace(steps_.begin(), std::in_place_type<std::string>, key);
}

void Path::prepend(std::size_t index) {
    steps_.emplace(steps_.begin(), index);
}

std::string Path::text() const {
    std::string text;
    for (const Step& step : steps_) {
        if (const auto* const index = std::get_if<std::size_t>(&step)) {
            text.append("[").append(std::to_string(*index)).append("]");
        } else if (const auto& key = std::get<std::string>(step); isPlain(key)) {
            text.append(text.empty() ? "" : ".").append(key);
        } else {
            text.append("[").append(quoted(key)).append("]");
        }
    }
    return text;
}

}  // namespace vorna::json
