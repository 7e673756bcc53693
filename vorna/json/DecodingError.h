// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Why a text could not be decoded.

#include <vorna/base/Export.h>
#include <vorna/json/Kind.h>
#include <vorna/json/Path.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace vorna::json {

struct DecodingError {
    /// A required key is missing.
    struct Missing {
        friend bool operator==(const Missing&, const Missing&) = default;
    };

    /// A number that is too large, or has a fraction, or is not among those allowed.
    struct Number {
        std::string digits;

        friend bool operator==(const Number&, const Number&) = default;
    };

    /// Malformed text; described by the reason alone, as in "syntax error".
    struct Malformed {
        std::string reason;

        friend bool operator==(const Malformed&, const Malformed&) = default;
    };

    using Found = std::variant<Missing, Kind, Number, Malformed>;

    /// In bytes from the beginning of the text, of the value or of the first byte that cannot be JSON.
    /// std::nullopt if unknown, as for the records of events and of the configuration.
    std::optional<std::size_t> offset = std::nullopt;

    /// Of the value; empty for the top and for a text that is not JSON.
    Path path = {};

    /// As in "a string"; a constant of the program.
    std::string_view expected = {};
    Found found = {};

    friend bool operator==(const DecodingError&, const DecodingError&) = default;
};

/// The error on one line, as in "paidProducts[1].price: expected a string, found a number". With the text
/// that was decoded, the line begins with the position if the error has one: "line 3, column 14: ".
VORNA_EXPORT std::string describe(const DecodingError& error,
                                  std::optional<std::string_view> text = std::nullopt);

}  // namespace vorna::json
