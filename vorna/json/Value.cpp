// SPDX-License-Identifier: Apache-2.0
#include <vorna/json/Value.h>

#include <vorna/json/Kind.h>
#include <vorna/json/Position.h>

#include <boost/json/parse_options.hpp>
#include <boost/json/stream_parser.hpp>

#include <exception>
#include <string>
#include <utility>

namespace vorna::json {

std::variant<boost::json::value, DecodingError> parse(std::string_view text,
                                                      boost::json::storage_ptr memory) {
    constexpr std::size_t deepestNesting = 512;
    boost::json::parse_options options;
    options.max_depth = deepestNesting;
    try {
        boost::json::stream_parser parser({}, options);
        parser.reset(std::move(memory));
        boost::json::error_code error;
        const std::size_t read = text.empty() ? 0 : parser.write_some(text.data(), text.size(), error);
        if (!error && read < text.size()) {
            error = boost::json::error::extra_data;
        }
        if (!error) {
            // A number at the top ends only where the text does.
            parser.finish(error);
        }
        if (error) {
            const Position position = positionAt(text, read);
            DecodingError problem;
            problem.line = position.line;
            problem.column = position.column;
            problem.description = "line " + std::to_string(position.line) + ", column " +
                                  std::to_string(position.column) + ": " + error.message();
            return problem;
        }
        return parser.release();
    } catch (const std::exception& problem) {
        DecodingError error;
        error.description = problem.what();
        return error;
    }
}

std::string_view kindName(const boost::json::value& value) noexcept {
    switch (value.kind()) {
    case boost::json::kind::null:
        return kindName(Kind::null);
    case boost::json::kind::bool_:
        return kindName(Kind::boolean);
    case boost::json::kind::int64:
    case boost::json::kind::uint64:
    case boost::json::kind::double_:
        return kindName(Kind::number);
    case boost::json::kind::string:
        return kindName(Kind::string);
    case boost::json::kind::array:
        return kindName(Kind::array);
    case boost::json::kind::object:
        return kindName(Kind::object);
    }
    return "nothing";
}

}  // namespace vorna::json
