// SPDX-License-Identifier: Apache-2.0
#include <tools/devserver/EventDocument.h>

#include <tools/devserver/JsonText.h>

#include <boost/json/serialize.hpp>

#include <optional>
#include <utility>

namespace vorna::devserver {
namespace {

namespace json = boost::json;

std::optional<std::uint64_t> unsignedInteger(const json::value& value) {
    if (value.is_uint64()) {
        return value.get_uint64();
    }
    if (value.is_int64() && value.get_int64() >= 0) {
        return static_cast<std::uint64_t>(value.get_int64());
    }
    return std::nullopt;
}

}  // namespace

Result<EventDocument, DocumentError> readEventDocument(std::string_view body) {
    Result<json::object, DocumentError> document =
        readObjectWithExactly({"name", "createDate", "endDate", "customValue", "deviceData"}, body);
    if (!document) {
        return Unexpected(std::move(document).error());
    }
    const json::object& object = *document;

    for (const std::string_view key : {"name", "customValue"}) {
        const json::value& value = object.at(key);
        if (!value.is_string()) {
            return Unexpected(wrongKind(key, "a string", value));
        }
    }
    for (const std::string_view key : {"createDate", "endDate"}) {
        const json::value& value = object.at(key);
        if (!unsignedInteger(value)) {
            return Unexpected(value.is_number()
                                  ? WrongValue{std::string(key), "an unsigned integer of at most 64 bits",
                                               json::serialize(value)}
                                  : wrongKind(key, "an unsigned integer", value));
        }
    }
    if (!object.at("deviceData").is_object()) {
        return Unexpected(wrongKind("deviceData", "an object", object.at("deviceData")));
    }

    EventDocument event;
    event.name = object.at("name").get_string();
    event.customValue = object.at("customValue").get_string();
    event.createDate = *unsignedInteger(object.at("createDate"));
    event.endDate = *unsignedInteger(object.at("endDate"));
    event.line =
        body.find_first_of("\r\n") == std::string_view::npos ? std::string(body) : json::serialize(object);
    return event;
}

}  // namespace vorna::devserver
