// SPDX-License-Identifier: Apache-2.0
#include <vorna/json/EncodingError.h>

namespace vorna::json {

std::string describe(const EncodingError& error) {
    std::string description = error.path.text();
    description += description.empty() ? "" : ": ";
    switch (error.reason) {
    case EncodingError::Reason::notUtf8:
        return description + "the text is not UTF-8";
    case EncodingError::Reason::notFinite:
        return description + "JSON cannot represent the number";
    }
    return description;
}

}  // namespace vorna::json
