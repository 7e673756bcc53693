// SPDX-License-Identifier: Apache-2.0
#include <vorna/documents/MissingField.h>

#include <algorithm>

namespace vorna {

std::string listedName(const MissingField& field) {
    switch (field.reason) {
    case MissingField::Reason::blank:
    case MissingField::Reason::noLines:
        break;
    case MissingField::Reason::noProducts:
        return field.path.text() + " (boş)";
    case MissingField::Reason::unknownType:
        return field.path.text() + " (geçersiz)";
    }
    return field.path.text();
}

std::vector<std::string> listedNames(std::span<const MissingField> fields) {
    std::vector<std::string> names(fields.size());
    std::transform(fields.begin(), fields.end(), names.begin(), listedName);
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace vorna
