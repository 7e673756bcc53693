// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Why a text could not be decoded.

#include <cstddef>
#include <string>

namespace vorna::json {

/// The parts are there for programs, `description` is for people. A text that is not JSON at all has a
/// position but no path; the records of events and of the configuration have a path but no position.
struct DecodingError {
    /// Where and what, on one line, as in "line 3, column 14: paidProducts[1].price: expected a string, found
    /// a number".
    std::string description;

    /// The way to the value from the top, as in "paidProducts[1].price" or "[2].type"; empty for the top
    /// itself.
    std::string path;

    /// What would have been right and what stands there, as in "a string" and "a number"; empty where the
    /// description says it all.
    std::string expected;
    std::string found;

    /// The position of the value, or of the first character that cannot be JSON; both from 1, in lines and
    /// code points as Position.h tells, and 0 where the position is not known.
    std::size_t line = 0;
    std::size_t column = 0;
};

}  // namespace vorna::json
