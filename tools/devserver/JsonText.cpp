// SPDX-License-Identifier: Apache-2.0
#include <tools/devserver/JsonText.h>

#include <tools/devserver/Console.h>

#include <boost/json/basic_parser_impl.hpp>
#include <boost/json/parser.hpp>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

namespace vorna::devserver {
namespace {

namespace json = boost::json;

// NOLINTBEGIN(readability-identifier-naming, readability-convert-member-functions-to-static): the parser's
// names. Collects the keys of the outermost object as they are written: a parsed object would no longer show
// that one stood there twice.
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

}  // namespace

Reading<json::value> readJson(std::string_view text) {
    if (text.find_first_not_of(" \t\r\n") == std::string_view::npos) {
        return Complaint{"expected JSON, found nothing"};
    }
    json::parser parser;
    json::error_code error;
    std::size_t consumed = parser.write_some(json::string_view(text.data(), text.size()), error);
    if (!error && consumed < text.size()) {
        error = json::error::extra_data;
    }
    if (error) {
        return Complaint{"not JSON: " + error.message() + " at byte " + std::to_string(consumed)};
    }
    return parser.release();
}

Reading<json::object> readObjectWithExactly(std::initializer_list<std::string_view> keys,
                                            std::string_view text) {
    Reading<json::value> reading = readJson(text);
    if (auto* complaint = std::get_if<Complaint>(&reading)) {
        return std::move(*complaint);
    }
    auto& value = std::get<json::value>(reading);
    if (!value.is_object()) {
        return Complaint{"expected an object, found " + std::string(kindInWords(value))};
    }

    const std::vector<std::string> found = outermostKeys(text);
    std::string problems;
    const auto note = [&problems](std::string_view what, std::string_view key) {
        problems += problems.empty() ? "" : "; ";
        problems += std::string(what) + " \"" + printable(key, 60) + "\"";
    };
    for (const std::string_view key : keys) {
        const auto times = std::count(found.begin(), found.end(), key);
        if (times == 0) {
            note("missing key", key);
        } else if (times > 1) {
            note("repeated key", key);
        }
    }
    constexpr std::size_t enough = 5;
    std::size_t unexpected = 0;
    for (const std::string& key : found) {
        if (std::find(keys.begin(), keys.end(), key) == keys.end() && ++unexpected <= enough) {
            note("unexpected key", key);
        }
    }
    if (!problems.empty()) {
        return Complaint{problems};
    }
    return std::move(value.get_object());
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

Complaint wrongKind(std::string_view key, std::string_view expected, const json::value& found) {
    return {std::string(key) + ": expected " + std::string(expected) + ", found " +
            std::string(kindInWords(found))};
}

}  // namespace vorna::devserver
