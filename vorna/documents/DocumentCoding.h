// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Decoding, encoding and validation of the screens' documents, all driven by the records' tables of fields.
///
/// The records of events list their fields in code (see Encoding.h of `vorna/json`), which suits few fields
/// of many types. Documents have many fields of few types: a table that a loop goes through at run time is a
/// fraction of the code.

#include <vorna/documents/DocumentField.h>
#include <vorna/documents/StepKind.h>
#include <vorna/json/DecodingError.h>
#include <vorna/json/Encoding.h>
#include <vorna/json/TextScanner.h>
#include <vorna/json/Writer.h>
#include <vorna/text/Whitespace.h>

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/value.hpp>

#include <algorithm>
#include <concepts>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace vorna {

/// A record with a table of its fields.
template <class T>
concept DocumentRecord = requires {
    { T::fields() } -> std::same_as<std::span<const RecordField<T>>>;
};

/// Makes a record for a decoder to fill.
struct DocumentAccess {
    template <DocumentRecord Record>
    static Record unfilled() {
        return Record();
    }
};

/// Found by `json::encode` for the records of documents and for lists of them.
template <DocumentRecord Record>
bool write(json::Writer& writer, const Record& record) {
    writer.beginObject();
    for (const RecordField<Record>& field : Record::fields()) {
        const bool fine = std::visit(
            [&](auto member) {
                const auto& value = record.*member;
                if constexpr (json::detail::isOptional<std::remove_cvref_t<decltype(value)>>) {
                    return !value || json::detail::writeUnder(writer, field.key, *value);
                } else {
                    return json::detail::writeUnder(writer, field.key, value);
                }
            },
            field.member);
        if (!fine) {
            return false;
        }
    }
    writer.endObject();
    return true;
}

namespace document {

/// What should have stood at a place, and the way there from the inside out. The texts are constants of the
/// program.
struct Fault {
    std::string_view expected;
    std::vector<json::PathStep> wayUp;
};

/// What stands under the key; absent for an absent key and for a null.
const boost::json::value* valueUnder(const boost::json::object& object, std::string_view key) noexcept;

/// Each reads one value into a fresh one; false, with the fault told, when it is of another kind.
bool read(const boost::json::value& from, std::string& into, Fault& fault);
bool read(const boost::json::value& from, std::optional<std::string>& into, Fault& fault);
bool read(const boost::json::value& from, std::int64_t& into, Fault& fault);
bool read(const boost::json::value& from, std::vector<std::string>& into, Fault& fault);
template <DocumentRecord Record>
bool read(const boost::json::value& from, std::vector<Record>& into, Fault& fault);

inline void setDefault(const DocumentField& field, std::string& into) {
    into = field.textDefault;
}

inline void setDefault(const DocumentField& field, std::optional<std::string>& into) {
    into = field.textDefault;
}

inline void setDefault(const DocumentField& field, std::int64_t& into) {
    into = field.numberDefault;
}

template <class Element>
void setDefault(const DocumentField& /*field*/, std::vector<Element>& into) {
    into.clear();
}

template <DocumentRecord Record>
bool read(const boost::json::value& from, Record& into, Fault& fault) {
    const boost::json::object* const object = from.if_object();
    if (object == nullptr) {
        fault.expected = "an object";
        return false;
    }
    for (const RecordField<Record>& field : Record::fields()) {
        const boost::json::value* const value = valueUnder(*object, field.key);
        const bool fine = std::visit(
            [&](auto member) {
                if (value == nullptr) {
                    setDefault(field, into.*member);
                    return true;
                }
                return read(*value, into.*member, fault);
            },
            field.member);
        if (!fine) {
            fault.wayUp.emplace_back(field.key);
            return false;
        }
    }
    return true;
}

template <DocumentRecord Record>
bool read(const boost::json::value& from, std::vector<Record>& into, Fault& fault) {
    const boost::json::array* const array = from.if_array();
    if (array == nullptr) {
        fault.expected = "an array";
        return false;
    }
    into.reserve(array->size());
    for (std::size_t index = 0; index < array->size(); ++index) {
        auto record = DocumentAccess::unfilled<Record>();
        if (!read((*array)[index], record, fault)) {
            fault.wayUp.emplace_back(index);
            return false;
        }
        into.push_back(std::move(record));
    }
    return true;
}

/// Reads the tree of a text into what `into` points to. Absent when all went well.
std::optional<json::DecodingError> readText(std::string_view text, void* into,
                                            bool (*read)(const boost::json::value& from, void* into,
                                                         Fault& fault));

/// Fills what is given, which is fresh, with what the text says.
template <class Value>
std::variant<Value, json::DecodingError> decode(std::string_view text, Value value) {
    constexpr auto readValue = [](const boost::json::value& from, void* into, Fault& fault) {
        return read(from, *static_cast<Value*>(into), fault);
    };
    if (std::optional<json::DecodingError> error = readText(text, &value, readValue)) {
        return std::move(*error);
    }
    return value;
}

/// Adds the names of what is missing, preceded by the given words.
template <DocumentRecord Record>
void addMissing(const Record& record, bool isPaywall, const std::string& place,
                std::vector<std::string>& names) {
    for (const RecordField<Record>& field : Record::fields()) {
        if (field.required == FieldRequirement::never ||
            (field.required == FieldRequirement::onPaywallSteps && !isPaywall)) {
            continue;
        }
        const auto add = [&](std::string_view remark) {
            names.push_back(place + std::string(field.key) + std::string(remark));
        };
        std::visit(
            [&](auto member) {
                const auto& value = record.*member;
                using Value = std::remove_cvref_t<decltype(value)>;
                if constexpr (std::same_as<Value, std::string>) {
                    if (field.kind == FieldKind::stepType) {
                        if (!stepKindOf(value)) {
                            add(" (geçersiz)");
                        }
                    } else if (text::isBlank(value)) {
                        add("");
                    }
                } else if constexpr (std::same_as<Value, std::vector<std::string>>) {
                    if (value.empty()) {
                        add("");
                    }
                } else if constexpr (requires { value.front().identifier; }) {
                    if (value.empty()) {
                        add(" (boş)");
                    }
                    for (std::size_t index = 0; index < value.size(); ++index) {
                        addMissing(value[index], isPaywall,
                                   std::string(field.key) + "[" + std::to_string(index) + "].", names);
                    }
                }
            },
            field.member);
    }
}

/// The names of what is missing, in ascending order.
template <DocumentRecord Record>
std::vector<std::string> missingFields(const Record& record, bool isPaywall) {
    std::vector<std::string> names;
    addMissing(record, isPaywall, "", names);
    std::sort(names.begin(), names.end());
    return names;
}

/// Prints the names as an array on a line of its own.
void print(const std::vector<std::string>& names);

}  // namespace document
}  // namespace vorna
