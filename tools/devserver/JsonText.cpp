// SPDX-License-Identifier: Apache-2.0
#include <tools/devserver/JsonText.h>

#include <boost/json/basic_parser_impl.hpp>
#include <boost/json/parser.hpp>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace vorna::devserver {
namespace {

namespace json = boost::json;

// NOLINTBEGIN(readability-identifier-naming, readability-convert-member-functions-to-static): the parser's
// names. Collects the keys of the outermost object as they are written: a parsed object no longer reveals
// repeated keys.
struct OutermostKeys {
    static constexpr std::size_t max_object_size = std::numeric_limits<std::size_t>::max();
    static constexpr std::size_t max_array_size = std::numeric_limits<std::size_t>::max();
    static constexpr std::size_t max_key_size = std::numeric_limits<std::size_t>::max();
    static constexpr std::size_t max_string_size = std::numeric_limits<std::size_t>::max();

    std::vector<std::string> keys;
    std::string partialKey;
    int depth = 0;

    bool on_document_begin(json::error_code&) { return true; }

    bool on_document_end(json::error_code&) { return true; }

    bool on_array_begin(json::error_code&) { return ++depth > 0; }

    bool on_array_end(std::size_t, json::error_code&) { return --depth >= 0; }

    bool on_object_begin(json::error_code&) { return ++depth > 0; }

    bool on_object_end(std::size_t, json::error_code&) { return --depth >= 0; }

    bool on_string_part(json::string_view, std::size_t, json::error_code&) { return true; }

    bool on_string(json::string_view, std::size_t, json::error_code&) { return true; }

    bool on_key_part(json::string_view part, std::size_t, json::error_code&) {
        partialKey.append(part.data(), part.size());
        return true;
    }

    bool on_key(json::string_view part, std::size_t, json::error_code&) {
        partialKey.append(part.data(), part.size());
        if (depth == 1) {
            keys.push_back(partialKey);
        }
        partialKey.clear();
        return true;
    }

    bool on_number_part(json::string_view, json::error_code&) { return true; }

    bool on_int64(std::int64_t, json::string_view, json::error_code&) { return true; }

    bool on_uint64(std::uint64_t, json::string_view, json::error_code&) { return true; }

    bool on_double(double, json::string_view, json::error_code&) { return true; }

    bool on_bool(bool, json::error_code&) { return true; }

    bool on_null(json::error_code&) { return true; }

    bool on_comment_part(json::string_view, json::error_code&) { return true; }

    bool on_comment(json::string_view, json::error_code&) { return true; }
};

// NOLINTEND(readability-identifier-naming, readability-convert-member-functions-to-static)

std::vector<std::string> outermostKeys(std::string_view text) {
    json::basic_parser<OutermostKeys> parser{json::parse_options{}};
    json::error_code error;
    parser.write_some(false, text.data(), text.size(), error);
    return std::move(parser.handler().keys);
}

std::string_view kindInWords(const json::value& value) {
    switch (value.kind()) {
    case json::kind::null:
        return "null";
    case json::kind::bool_:
        return "a boolean";
    case json::kind::int64:
    case json::kind::uint64:
    case json::kind::double_:
        return "a number";
    case json::kind::string:
        return "a string";
    case json::kind::array:
        return "an array";
    case json::kind::object:
        return "an object";
    }
    return "something else";
}

}  // namespace

Result<json::value, DocumentError> readJson(std::string_view text) {
    if (text.find_first_not_of(" \t\r\n") == std::string_view::npos) {
        return Unexpected(WrongValue{{}, "JSON", "nothing"});
    }
    json::parser parser;
    json::error_code error;
    const std::size_t consumed = parser.write_some(json::string_view(text.data(), text.size()), error);
    if (!error && consumed < text.size()) {
        error = json::error::extra_data;
    }
    if (error) {
        return Unexpected(NotJson{consumed, error});
    }
    return parser.release();
}

Result<json::object, DocumentError> readObjectWithExactly(std::initializer_list<std::string_view> keys,
                                                          std::string_view text) {
    Result<json::value, DocumentError> value = readJson(text);
    if (!value) {
        return Unexpected(std::move(value).error());
    }
    if (!value->is_object()) {
        return Unexpected(wrongKind("", "an object", *value));
    }

    const std::vector<std::string> found = outermostKeys(text);
    WrongKeys wrong;
    for (const std::string_view key : keys) {
        const auto times = std::count(found.begin(), found.end(), key);
        if (times == 0) {
            wrong.missing.emplace_back(key);
        } else if (times > 1) {
            wrong.repeated.emplace_back(key);
        }
    }
    std::copy_if(found.begin(), found.end(), std::back_inserter(wrong.unexpected),
                 [&](const auto& key) { return std::find(keys.begin(), keys.end(), key) == keys.end(); });
    if (!wrong.areNone()) {
        return Unexpected(std::move(wrong));
    }
    return std::move(value->get_object());
}

WrongValue wrongKind(std::string_view key, std::string_view expected, const json::value& found) {
    return {std::string(key), std::string(expected), std::string(kindInWords(found))};
}

}  // namespace vorna::devserver
