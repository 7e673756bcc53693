// SPDX-License-Identifier: Apache-2.0
#include <tools/schemas/PrettyJson.h>

#include <algorithm>
#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>
#include <boost/json/string.hpp>
#include <string_view>

namespace vorna::schemas {

namespace {

std::string compact(const boost::json::value& value) {
    return boost::json::serialize(value);
}

void write(std::string& output, const boost::json::value& value, std::size_t level) {
    const std::string indent(2 * (level + 1), ' ');
    const std::string closingIndent(2 * level, ' ');
    if (const boost::json::object* const object = value.if_object(); object != nullptr && !object->empty()) {
        std::string_view separator = "{\n";
        for (const auto& member : *object) {
            output.append(separator).append(indent);
            output.append(compact(boost::json::string(member.key()))).append(": ");
            write(output, member.value(), level + 1);
            separator = ",\n";
        }
        output.append("\n").append(closingIndent).append("}");
        return;
    }
    if (const boost::json::array* const array = value.if_array(); array != nullptr && !array->empty()) {
        const bool isFlat = std::none_of(array->begin(), array->end(), [](const boost::json::value& element) {
            return element.is_structured();
        });
        std::string_view separator = isFlat ? "[" : "[\n";
        for (const boost::json::value& element : *array) {
            output.append(separator).append(isFlat ? "" : indent);
            write(output, element, level + 1);
            separator = isFlat ? ", " : ",\n";
        }
        output.append(isFlat ? "" : "\n" + closingIndent).append("]");
        return;
    }
    output.append(compact(value));
}

}  // namespace

std::string prettyJson(const boost::json::value& value) {
    std::string output;
    write(output, value, 0);
    return output;
}

}  // namespace vorna::schemas
