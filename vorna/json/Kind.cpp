// SPDX-License-Identifier: Apache-2.0
#include <vorna/json/Kind.h>

namespace vorna::json {

std::string_view kindName(Kind kind) noexcept {
    switch (kind) {
    case Kind::null:
        return "null";
    case Kind::boolean:
        return "a boolean";
    case Kind::number:
        return "a number";
    case Kind::string:
        return "a string";
    case Kind::array:
        return "an array";
    case Kind::object:
        return "an object";
    }
    return "nothing";
}

}  // namespace vorna::json
