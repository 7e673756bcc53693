// SPDX-License-Identifier: Apache-2.0
#include <vorna/json/DecodingError.h>

#include <vorna/json/Position.h>

namespace vorna::json {

namespace {

std::string problem(const DecodingError& error) {
    struct Description {
        std::string_view expected;

        std::string operator()(const DecodingError::Missing& /*missing*/) const { return "missing"; }

        std::string operator()(Kind kind) const { return insteadOf(std::string(kindName(kind))); }

        std::string operator()(const DecodingError::Number& number) const {
            constexpr std::size_t mostDigits = 40;
            return insteadOf("the number " + number.digits.substr(0, mostDigits) +
                             (number.digits.size() > mostDigits ? "..." : ""));
        }

        std::string operator()(const DecodingError::Malformed& malformed) const { return malformed.reason; }

        std::string insteadOf(const std::string& found) const {
            return "expected " + std::string(expected) + ", found " + found;
        }
    };

    return std::visit(Description{error.expected}, error.found);
}

}  // namespace

std::string describe(const DecodingError& error, std::optional<std::string_view> text) {
    std::string description;
    if (text && error.offset) {
        const Position position = positionAt(*text, *error.offset);
        description =
            "line " + std::to_string(position.line) + ", column " + std::to_string(position.column) + ": ";
    }
    if (!error.path.empty()) {
        description += error.path.text() + ": ";
    }
    return description + problem(error);
}

}  // namespace vorna::json
