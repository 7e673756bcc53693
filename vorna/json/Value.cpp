#include <vorna/json/Value.h>

#include <boost/json/parse_options.hpp>
#include <boost/json/stream_parser.hpp>

#include <algorithm>
#include <exception>

namespace vorna::json {

std::variant<boost::json::value, DecodingError> parse(std::string_view text) {
    constexpr std::size_t deepestNesting = 512;
    boost::json::parse_options options;
    options.max_depth = deepestNesting;
    try {
        boost::json::stream_parser parser({}, options);
        boost::json::error_code error;
        const std::size_t read = text.empty() ? 0 : parser.write_some(text.data(), text.size(), error);
        if (!error && read < text.size()) {
            error = boost::json::error::extra_data;
        }
        if (!error && !parser.done()) {
            error = boost::json::error::incomplete;
        }
        if (error) {
            const std::string_view before = text.substr(0, read);
            const auto line = 1 + std::count(before.begin(), before.end(), '\n');
            const std::size_t lineBreak = before.rfind('\n');
            const std::size_t column = 1 + read - (lineBreak == std::string_view::npos ? 0 : lineBreak + 1);
            return DecodingError{"line " + std::to_string(line) + ", column " + std::to_string(column) +
                                 ": " + error.message()};
        }
        return parser.release();
    } catch (const std::exception& problem) {
        return DecodingError{problem.what()};
    }
}

std::string_view kindName(const boost::json::value& value) noexcept {
    switch (value.kind()) {
    case boost::json::kind::null:
        return "null";
    case boost::json::kind::bool_:
        return "a boolean";
    case boost::json::kind::int64:
    case boost::json::kind::uint64:
    case boost::json::kind::double_:
        return "a number";
    case boost::json::kind::string:
        return "a string";
    case boost::json::kind::array:
        return "an array";
    case boost::json::kind::object:
        return "an object";
    }
    return "nothing";
}

}  // namespace vorna::json
