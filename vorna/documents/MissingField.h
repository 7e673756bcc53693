// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The fields that a document lacks for its screen to be shown.

#include <vorna/base/Export.h>
#include <vorna/json/Path.h>

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace vorna {

struct MissingField {
    enum class Reason : std::uint8_t {
        /// Text that is absent, empty or only white space.
        blank,
        /// An empty list of lines.
        noLines,
        /// An empty list of products.
        noProducts,
        /// A step of unknown type.
        unknownType,
    };

    json::Path path;
    Reason reason = Reason::blank;

    friend bool operator==(const MissingField&, const MissingField&) = default;
};

/// The name under which the console and the error screen list the field: its path, as in "details" or
/// "paidProducts[0].price", with a remark in "paidProducts (boş)" and "type (geçersiz)".
VORNA_EXPORT std::string listedName(const MissingField& field);

/// The names of all fields, sorted bytewise.
VORNA_EXPORT std::vector<std::string> listedNames(std::span<const MissingField> fields);

}  // namespace vorna
