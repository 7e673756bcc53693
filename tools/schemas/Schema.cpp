// SPDX-License-Identifier: Apache-2.0
#include <tools/schemas/Schema.h>

#include <tools/schemas/FieldText.h>

#include <vorna/text/Whitespace.h>

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>
#include <boost/json/string.hpp>
#include <boost/json/value.hpp>

#include <array>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <string_view>
#include <utility>

namespace vorna::schemas {

namespace {

using boost::json::array;
using boost::json::object;
using boost::json::value;
using lint::DocumentKind;
using lint::fieldsOf;

boost::json::string text(std::string_view view) {
    return boost::json::string(view.data(), view.size());
}

object reference(std::string_view definition) {
    return {{"$ref", text("#/$defs/" + std::string(definition))}};
}

/// The definition that fields of this kind refer to.
std::string_view definitionOf(FieldKind kind) {
    switch (kind) {
    case FieldKind::text:
    case FieldKind::identifier:
    case FieldKind::stepType:
        return "text";
    case FieldKind::colour:
        return "colour";
    case FieldKind::url:
        return "address";
    case FieldKind::delay:
        return "delay";
    case FieldKind::lines:
        return "lines";
    case FieldKind::products:
        return "products";
    }
    return {};
}

/// A regular expression for one character that is not white space by the rules of the library's validation.
std::string notBlankPattern() {
    constexpr char32_t end = 0x10000;  // above all white space
    const auto escaped = [](char32_t codePoint) {
        std::array<char, 16> hex{};
        static_cast<void>(std::snprintf(hex.data(), hex.size(), "\\u%04X", static_cast<unsigned>(codePoint)));
        return std::string(hex.data());
    };
    std::string pattern = "[^";
    for (char32_t first = 0; first < end; ++first) {
        if (!text::isWhiteSpace(first)) {
            continue;
        }
        char32_t last = first;
        while (text::isWhiteSpace(last + 1)) {
            ++last;
        }
        pattern += escaped(first);
        if (last > first) {
            pattern += "-" + escaped(last);
        }
        first = last;
    }
    return pattern + "]";
}

std::string_view need(FieldRequirement requirement) {
    switch (requirement) {
    case FieldRequirement::never:
        return "";
    case FieldRequirement::always:
        return " Required.";
    case FieldRequirement::onPaywallSteps:
        return " Required there.";
    }
    return "";
}

value defaultOf(const DocumentField& field) {
    switch (field.type()) {
    case FieldType::string:
        return text(field.textDefault);
    case FieldType::integer:
        return field.numberDefault;
    case FieldType::strings:
    case FieldType::products:
        return array();
    }
    return nullptr;
}

object recordSchema(RecordType record) {
    object properties;
    for (const DocumentField& field : fieldsOf(record)) {
        object& property = properties[text(field.key)].emplace_object();
        property = reference(definitionOf(field.kind));
        std::string description(fieldText(record, field.key));
        description += need(field.required);
        property["description"] = text(description);
        property["default"] = defaultOf(field);
        if (field.kind == FieldKind::stepType) {
            property["examples"] = array{text(basicStep), text(paywallStep)};
        }
    }
    return {{"type", "object"}, {"properties", std::move(properties)}};
}

/// The fields that a record with this requirement must contain in order to be shown.
object demands(RecordType record, FieldRequirement requirement) {
    array required;
    object properties;
    for (const DocumentField& field : fieldsOf(record)) {
        if (field.required == requirement) {
            required.emplace_back(text(field.key));
            object& property = properties[text(field.key)].emplace_object();
            switch (field.kind) {
            case FieldKind::lines:
                property = {{"type", "array"}, {"minItems", 1}};
                break;
            case FieldKind::products:
                property = {{"type", "array"}, {"minItems", 1}, {"items", reference("shownProduct")}};
                break;
            case FieldKind::stepType:
                property = {{"enum", array{text(basicStep), text(paywallStep)}}};
                break;
            default:
                property = reference("notBlank");
            }
        }
    }
    return {{"required", std::move(required)}, {"properties", std::move(properties)}};
}

object sharedDefinitions() {
    object definitions;
    definitions["text"] = {{"type", {"string", "null"}}};
    definitions["colour"] = {
        {"type", {"string", "null"}},
        {"$comment",
         "A valid colour matches ^\\s*#?([0-9A-Fa-f]{6}|[0-9A-Fa-f]{8})\\s*$: red, green, blue and, "
         "optionally, opacity. Any other text is not an error, but mostly drawn black."},
        {"examples", {"#1F2A5E", "#1F2A5E80"}}};
    definitions["address"] = {{"type", {"string", "null"}}, {"examples", {"https://example.com/terms"}}};
    definitions["delay"] = {{"type", {"integer", "null"}},
                            {"minimum", std::numeric_limits<std::int64_t>::min()},
                            {"maximum", std::numeric_limits<std::int64_t>::max()}};
    definitions["lines"] = {{"type", {"array", "null"}}, {"items", {{"type", "string"}}}};
    definitions["products"] = {{"type", {"array", "null"}}, {"items", reference("product")}};
    definitions["product"] = recordSchema(RecordType::product);
    definitions["notBlank"] = {{"type", "string"}, {"pattern", text(notBlankPattern())}};
    object& shownProduct = definitions["shownProduct"].emplace_object();
    shownProduct = reference("product");
    for (auto& member : demands(RecordType::product, FieldRequirement::always)) {
        shownProduct[member.key()] = member.value();
    }
    return definitions;
}

object paywallSchema() {
    object schema = {
        {"$schema", "https://json-schema.org/draft/2020-12/schema"},
        {"title", "Paywall"},
        {"description",
         "The document for ShowPaywall. This schema accepts exactly what can be decoded; its definition "
         "\"shown\" accepts what has everything the screen requires. Unknown keys are ignored; null "
         "means the default."}};
    for (auto& member : recordSchema(RecordType::paywall)) {
        schema[member.key()] = member.value();
    }
    object definitions = sharedDefinitions();
    object& shown = definitions["shown"].emplace_object();
    shown["$ref"] = "#";
    for (auto& member : demands(RecordType::paywall, FieldRequirement::always)) {
        shown[member.key()] = member.value();
    }
    schema["$defs"] = std::move(definitions);
    return schema;
}

object onboardingSchema() {
    object definitions = sharedDefinitions();
    definitions["step"] = recordSchema(RecordType::step);
    object& shownStep = definitions["shownStep"].emplace_object();
    shownStep = reference("step");
    for (auto& member : demands(RecordType::step, FieldRequirement::always)) {
        shownStep[member.key()] = member.value();
    }
    shownStep["if"] = {{"properties", {{"type", {{"const", text(paywallStep)}}}}}};
    shownStep["then"] = demands(RecordType::step, FieldRequirement::onPaywallSteps);
    definitions["shown"] = {{"type", "array"}, {"items", reference("shownStep")}};
    return {{"$schema", "https://json-schema.org/draft/2020-12/schema"},
            {"title", "Onboarding"},
            {"description",
             "The document for ShowOnboarding: the steps in display order. This schema accepts exactly "
             "what can be decoded; its definition \"shown\" accepts what has everything the screens require. "
             "Unknown keys are ignored; null means the default."},
            {"type", "array"},
            {"items", reference("step")},
            {"$defs", std::move(definitions)}};
}

}  // namespace

std::string schema(DocumentKind kind) {
    return boost::json::serialize(kind == DocumentKind::paywall ? paywallSchema() : onboardingSchema()) +
           "\n";
}

}  // namespace vorna::schemas
