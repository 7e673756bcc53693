// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Descriptions of the fields of the screens' documents. Each record type (`PaidProduct`,
/// `PaywallParameters`, `OnboardingStepsParameters`) has one table of its fields, which `fields()` returns in
/// the order of the document. It drives decoding, encoding and validation, and is available to tools.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace vorna {

class PaidProduct;

/// The meaning of a field.
enum class FieldKind : std::uint8_t {
    /// Text that the user reads.
    text,
    /// A colour string, as `UIColor` reads it.
    colour,
    /// A web address.
    url,
    /// A name for the host, not shown to the user.
    identifier,
    /// The kind of step: `basicStep` or `paywallStep`.
    stepType,
    /// A whole number of seconds.
    delay,
    /// Lines of text.
    lines,
    /// Products.
    products,
};

/// The kinds of step.
inline constexpr std::string_view basicStep = "basic";
inline constexpr std::string_view paywallStep = "paywall";

/// The type of the value in a document.
enum class FieldType : std::uint8_t { string, integer, strings, products };

/// When validation rejects a document because the field is absent or blank.
enum class FieldRequirement : std::uint8_t { never, always, onPaywallSteps };

struct DocumentField {
    std::string_view key;
    FieldKind kind = FieldKind::text;
    FieldRequirement required = FieldRequirement::never;
    /// The value of a field that is absent or null; for a list, empty.
    std::string_view textDefault = {};
    std::int64_t numberDefault = 0;

    constexpr FieldType type() const noexcept {
        switch (kind) {
        case FieldKind::text:
        case FieldKind::colour:
        case FieldKind::url:
        case FieldKind::identifier:
        case FieldKind::stepType:
            return FieldType::string;
        case FieldKind::delay:
            return FieldType::integer;
        case FieldKind::lines:
            return FieldType::strings;
        case FieldKind::products:
            return FieldType::products;
        }
        return FieldType::string;
    }
};

/// A field together with the member that holds it.
template <class Record>
struct RecordField : DocumentField {
    template <class Value>
    using Member = Value Record::*;

    std::variant<Member<std::string>, Member<std::optional<std::string>>, Member<std::int64_t>,
                 Member<std::vector<std::string>>, Member<std::vector<PaidProduct>>>
        member;
};

/// Calls `visit(field, value)` for every field of the record in the order of the document, where `value` is a
/// reference to the record's member.
template <class Record, class Visit>
void visitFields(Record& record, Visit&& visit) {
    for (const auto& field : Record::fields()) {
        std::visit([&](auto member) { visit(field, record.*member); }, field.member);
    }
}

}  // namespace vorna
