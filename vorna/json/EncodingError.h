// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Why a record has no JSON text.

#include <string>

namespace vorna::json {

struct EncodingError {
    /// Where and what, on one line, as in "paidProducts[1].price: the text is not UTF-8".
    std::string description;
};

}  // namespace vorna::json
