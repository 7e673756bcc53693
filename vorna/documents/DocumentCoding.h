// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Decoding, encoding and validation of the screens' documents, all driven by the records' tables of fields.
///
/// The records of events list their fields in code (see Encoding.h of `vorna/json`), which suits few fields
/// of many types. Documents have many fields of few types: a loop over a table needs a fraction of the code.

#include <vorna/base/Result.h>
#include <vorna/documents/DocumentField.h>
#include <vorna/documents/MissingField.h>
#include <vorna/documents/StepKind.h>
#include <vorna/json/Decoding.h>
#include <vorna/json/Encoding.h>
#include <vorna/text/Whitespace.h>

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/value.hpp>

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
json::Written write(json::Writer& writer, const Record& record) {
    writer.beginObject();
    for (const RecordField<Record>& field : Record::fields()) {
        json::Written written = std::visit(
            [&](auto member) -> json::Written {
                const auto& value = record.*member;
                if constexpr (!json::detail::isOptional<std::remove_cvref_t<decltype(value)>>) {
                    return json::detail::writeMember(writer, field.key, value);
                } else if (value) {
                    return json::detail::writeMember(writer, field.key, *value);
                } else {
                    return {};
                }
            },
            field.member);
        if (!written) {
            return written;
        }
    }
    writer.endObject();
    return {};
}

namespace document {

/// The value of the key; null if the key is absent or its value is null.
const boost::json::value* valueOf(const boost::json::object& object, std::string_view key) noexcept;

using json::detail::Read;

/// Each overload reads one value into a newly made one.
using json::detail::read;
Read read(const boost::json::value& from, std::optional<std::string>& into);
template <DocumentRecord Record>
Read read(const boost::json::value& from, std::vector<Record>& into);

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
Read read(const boost::json::value& from, Record& into) {
    const boost::json::object* const object = from.if_object();
    if (object == nullptr) {
        return json::detail::mismatch("an object", from);
    }
    for (const RecordField<Record>& field : Record::fields()) {
        const boost::json::value* const value = valueOf(*object, field.key);
        Read result = std::visit(
            [&](auto member) -> Read {
                if (value == nullptr) {
                    setDefault(field, into.*member);
                    return {};
                }
                return read(*value, into.*member);
            },
            field.member);
        if (!result) {
            result.error().path.prepend(field.key);
            return result;
        }
    }
    return {};
}

template <DocumentRecord Record>
Read read(const boost::json::value& from, std::vector<Record>& into) {
    const boost::json::array* const array = from.if_array();
    if (array == nullptr) {
        return json::detail::mismatch("an array", from);
    }
    into.reserve(array->size());
    for (std::size_t index = 0; index < array->size(); ++index) {
        auto record = DocumentAccess::unfilled<Record>();
        if (Read result = read((*array)[index], record); !result) {
            result.error().path.prepend(index);
            return result;
        }
        into.push_back(std::move(record));
    }
    return {};
}

/// Parses the text and reads its tree into `into`. The error has an offset, and quotes a number as written.
Read readText(std::string_view text, void* into, Read (*read)(const boost::json::value& from, void* into));

/// Decodes the text into the given value, which must be newly made.
template <class Value>
json::Decoded<Value> decode(std::string_view text, Value value) {
    constexpr auto readValue = [](const boost::json::value& from, void* into) {
        return read(from, *static_cast<Value*>(into));
    };
    if (Read result = readText(text, &value, readValue); !result) {
        return Unexpected(std::move(result).error());
    }
    return value;
}

/// Adds the fields that the record lacks; `place` is the record's path, unchanged on return.
template <DocumentRecord Record>
void addMissing(const Record& record, bool isPaywall, json::Path& place, std::vector<MissingField>& missing) {
    for (const RecordField<Record>& field : Record::fields()) {
        if (field.required == FieldRequirement::never ||
            (field.required == FieldRequirement::onPaywallSteps && !isPaywall)) {
            continue;
        }
        const auto add = [&](MissingField::Reason reason) {
            missing.push_back({place, reason});
            missing.back().path.append(field.key);
        };
        std::visit(
            [&](auto member) {
                using Reason = MissingField::Reason;
                const auto& value = record.*member;
                using Value = std::remove_cvref_t<decltype(value)>;
                if constexpr (std::same_as<Value, std::string>) {
                    if (field.kind == FieldKind::stepType) {
                        if (!stepKindOf(value)) {
                            add(Reason::unknownType);
                        }
                    } else if (text::isBlank(value)) {
                        add(Reason::blank);
                    }
                } else if constexpr (std::same_as<Value, std::vector<std::string>>) {
                    if (value.empty()) {
                        add(Reason::noLines);
                    }
                } else if constexpr (requires { value.front().identifier; }) {
                    if (value.empty()) {
                        add(Reason::noProducts);
                    }
                    place.append(field.key);
                    for (std::size_t index = 0; index < value.size(); ++index) {
                        place.append(index);
                        addMissing(value[index], isPaywall, place, missing);
                        place.removeLast();
                    }
                    place.removeLast();
                }
            },
            field.member);
    }
}

/// Returns the missing fields, in the order of the tables.
template <DocumentRecord Record>
std::vector<MissingField> missingFields(const Record& record, bool isPaywall) {
    std::vector<MissingField> missing;
    json::Path top;
    addMissing(record, isPaywall, top, missing);
    return missing;
}

/// Prints the names of the fields as an array on one line, and returns them.
std::vector<std::string> printed(std::span<const MissingField> fields);

}  // namespace document
}  // namespace vorna
