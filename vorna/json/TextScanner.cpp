// SPDX-License-Identifier: Apache-2.0
#include <vorna/json/TextScanner.h>

#include <vorna/json/Value.h>

#include <boost/json/serialize.hpp>
#include <boost/json/string.hpp>

#include <algorithm>

namespace vorna::json {

namespace {

constexpr std::string_view space = " \t\r\n";

bool isPlain(std::string_view key) noexcept {
    const auto isPlainCharacter = [](char character) {
        return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
               (character >= '0' && character <= '9') || character == '_' || character == '-' ||
               character == '$';
    };
    return !key.empty() && std::all_of(key.begin(), key.end(), isPlainCharacter);
}

/// Where the value of the last member with the key begins, in the object at `at`.
std::optional<std::size_t> findMember(std::string_view text, std::size_t at, std::string_view key) {
    std::optional<std::size_t> found;
    at = behindSpace(text, at + 1);
    while (text[at] == '"') {
        const std::size_t keyEnd = behindString(text, at);
        const std::string_view quoted = text.substr(at, keyEnd - at);
        const std::size_t value = behindSpace(text, behindSpace(text, keyEnd) + 1);
        if (unquoted(quoted) == key) {
            found = value;
        }
        at = behindSpace(text, behindValue(text, value));
        if (text[at] == ',') {
            at = behindSpace(text, at + 1);
        }
    }
    return found;
}

/// Where the element begins, in the array at `at`.
std::optional<std::size_t> findElement(std::string_view text, std::size_t at, std::size_t index) {
    at = behindSpace(text, at + 1);
    while (text[at] != ']') {
        if (index == 0) {
            return at;
        }
        --index;
        at = behindSpace(text, behindValue(text, at));
        if (text[at] == ',') {
            at = behindSpace(text, at + 1);
        }
    }
    return std::nullopt;
}

}  // namespace

std::size_t behindSpace(std::string_view text, std::size_t at) noexcept {
    return std::min(text.find_first_not_of(space, at), text.size());
}

std::size_t behindString(std::string_view text, std::size_t at) noexcept {
    for (++at; at < text.size() && text[at] != '"'; ++at) {
        if (text[at] == '\\') {
            ++at;
        }
    }
    return std::min(at + 1, text.size());
}

std::size_t behindValue(std::string_view text, std::size_t at) noexcept {
    if (text[at] == '"') {
        return behindString(text, at);
    }
    if (text[at] != '{' && text[at] != '[') {
        return std::min(text.find_first_of(",]} \t\r\n", at), text.size());
    }
    std::size_t depth = 0;
    while (at < text.size()) {
        switch (text[at]) {
        case '"':
            at = behindString(text, at);
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
    const std::variant<boost::json::value, DecodingError> value = parse(quoted);
    const boost::json::string& text = std::get<boost::json::value>(value).as_string();
    return {text.data(), text.size()};
}

std::optional<std::size_t> findValue(std::string_view text, std::span<const PathStep> path) {
    std::optional<std::size_t> at = behindSpace(text, 0);
    for (const PathStep& step : path) {
        if (const auto* const key = std::get_if<std::string_view>(&step)) {
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

void appendStep(std::string& path, const PathStep& step) {
    if (const auto* const index = std::get_if<std::size_t>(&step)) {
        path += '[';
        path += std::to_string(*index);
        path += ']';
        return;
    }
    const std::string_view key = std::get<std::string_view>(step);
    if (isPlain(key)) {
        path += path.empty() ? "" : ".";
        path += key;
    } else {
        path += '[';
        path += boost::json::serialize(boost::json::string_view(key.data(), key.size()));
        path += ']';
    }
}

std::string pathText(std::span<const PathStep> path) {
    std::string text;
    for (const PathStep& step : path) {
        appendStep(text, step);
    }
    return text;
}

}  // namespace vorna::json
