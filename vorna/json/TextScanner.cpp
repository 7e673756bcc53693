// SPDX-License-Identifier: Apache-2.0
#include <vorna/json/TextScanner.h>

#include <vorna/json/Value.h>

#include <boost/json/string.hpp>

#include <algorithm>

namespace vorna::json {

namespace {

constexpr std::string_view space = " \t\r\n";

/// The offset of the value of the last member with the key, in the object at `at`.
std::optional<std::size_t> findMember(std::string_view text, std::size_t at, std::string_view key) {
    std::optional<std::size_t> found;
    at = skipSpace(text, at + 1);
    while (text[at] == '"') {
        const std::size_t keyEnd = endOfString(text, at);
        const std::string_view quoted = text.substr(at, keyEnd - at);
        const std::size_t value = skipSpace(text, skipSpace(text, keyEnd) + 1);
        if (unquoted(quoted) == key) {
            found = value;
        }
        at = skipSpace(text, endOfValue(text, value));
        if (text[at] == ',') {
            at = skipSpace(text, at + 1);
        }
    }
    return found;
}

/// The offset of the element, in the array at `at`.
std::optional<std::size_t> findElement(std::string_view text, std::size_t at, std::size_t index) {
    at = skipSpace(text, at + 1);
    while (text[at] != ']') {
        if (index == 0) {
            return at;
        }
        --index;
        at = skipSpace(text, endOfValue(text, at));
        if (text[at] == ',') {
            at = skipSpace(text, at + 1);
        }
    }
    return std::nullopt;
}

}  // namespace

std::size_t skipSpace(std::string_view text, std::size_t at) noexcept {
    return std::min(text.find_first_not_of(space, at), text.size());
}

std::size_t endOfString(std::string_view text, std::size_t at) noexcept {
    for (++at; at < text.size() && text[at] != '"'; ++at) {
        if (text[at] == '\\') {
            ++at;
        }
    }
    return std::min(at + 1, text.size());
}

std::size_t endOfValue(std::string_view text, std::size_t at) noexcept {
    if (text[at] == '"') {
        return endOfString(text, at);
    }
    if (text[at] != '{' && text[at] != '[') {
        return std::min(text.find_first_of(",]} \t\r\n", at), text.size());
    }
    std::size_t depth = 0;
    while (at < text.size()) {
        switch (text[at]) {
        case '"':
            at = endOfString(text, at);
            continue;
        case '{':
        case '[':
            ++depth;
            break;
        case '}':
        case ']':
            --depth;
            break;
        default:
            break;
        }
        ++at;
        if (depth == 0) {
            break;
        }
    }
    return at;
}

Kind kindAt(std::string_view text, std::size_t at) noexcept {
    switch (text[at]) {
    case 'n':
        return Kind::null;
    case 't':
    case 'f':
        return Kind::boolean;
    case '"':
        return Kind::string;
    case '[':
        return Kind::array;
    case '{':
        return Kind::object;
    default:
        return Kind::number;
    }
}

std::string unquoted(std::string_view quoted) {
    if (quoted.find('\\') == std::string_view::npos) {
        return std::string(quoted.substr(1, quoted.size() - 2));
    }
    const Result<boost::json::value, DecodingError> value = parse(quoted);
    const boost::json::string& text = value->as_string();
    return {text.data(), text.size()};
}

std::optional<std::size_t> findValue(std::string_view text, const Path& path) {
    std::optional<std::size_t> at = skipSpace(text, 0);
    for (const Path::Step& step : path.steps()) {
        if (const auto* const key = std::get_if<std::string>(&step)) {
            at = kindAt(text, *at) == Kind::object ? findMember(text, *at, *key) : std::nullopt;
        } else {
            at = kindAt(text, *at) == Kind::array ? findElement(text, *at, std::get<std::size_t>(step))
                                                  : std::nullopt;
        }
        if (!at) {
            break;
        }
    }
    return at;
}

}  // namespace vorna::json
