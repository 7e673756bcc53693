// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Why a record could not be encoded.

#include <vorna/base/Export.h>
#include <vorna/json/Path.h>

#include <cstdint>
#include <string>

namespace vorna::json {

struct EncodingError {
    enum class Reason : std::uint8_t {
        notUtf8,
        /// An infinity or not-a-number.
        notFinite,
    };

    Path path = {};
    Reason reason = Reason::notUtf8;

    friend bool operator==(const EncodingError&, const EncodingError&) = default;
};

/// The error on one line, as in "paidProducts[1].price: the text is not UTF-8".
VORNA_EXPORT std::string describe(const EncodingError& error);

}  // namespace vorna::json
