// SPDX-License-Identifier: Apache-2.0
#include <vorna/json/Value.h>

#include <boost/json/stream_parser.hpp>

#include <array>
#include <charconv>
#include <exception>
#include <utility>

namespace vorna::json {

boost::json::parse_options parseOptions() {
    boost::json::parse_options options;
    options.max_depth = 512;
    return options;
}

DecodingError notJson(std::size_t offset, std::string reason) {
    return {.offset = offset, .expected = "JSON", .found = DecodingError::Malformed{std::move(reason)}};
}

Result<boost::json::value, DecodingError> parse(std::string_view text, boost::json::storage_ptr memory) {
    try {
        boost::json::stream_parser parser({}, parseOptions());
        parser.reset(std::move(memory));
        boost::json::error_code error;
        const std::size_t read = text.empty() ? 0 : parser.write_some(text.data(), text.size(), error);
        if (!error && read < text.size()) {
            error = boost::json::error::extra_data;
        }
        if (!error) {
            // A number at the top level ends only at the end of the text.
            parser.finish(error);
        }
        if (error) {
            return Unexpected(notJson(read, error.message()));
        }
        return parser.release();
    } catch (const std::exception& problem) {
        // Out of memory, or the text exceeds Boost.JSON's limits.
        return Unexpected(notJson(0, problem.what()));
    }
}

Kind kindOf(const boost::json::value& value) noexcept {
    switch (value.kind()) {
    case boost::json::kind::null:
        return Kind::null;
    case boost::json::kind::bool_:
        return Kind::boolean;
    case boost::json::kind::int64:
    case boost::json::kind::uint64:
    case boost::json::kind::double_:
        return Kind::number;
    case boost::json::kind::string:
        return Kind::string;
    case boost::json::kind::array:
        return Kind::array;
    case boost::json::kind::object:
        return Kind::object;
    }
    return Kind::null;
}

std::string numberText(const boost::json::value& number) {
    std::array<char, 32> digits{};
    char* const begin = digits.data();
    char* const end = begin + digits.size();
    if (const std::int64_t* const integer = number.if_int64()) {
        return {begin, std::to_chars(begin, end, *integer).ptr};
    }
    if (const std::uint64_t* const integer = number.if_uint64()) {
        return {begin, std::to_chars(begin, end, *integer).ptr};
    }
    return {begin, std::to_chars(begin, end, number.as_double()).ptr};
}

}  // namespace vorna::json
