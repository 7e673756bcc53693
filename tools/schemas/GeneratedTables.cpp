// SPDX-License-Identifier: Apache-2.0
#include <tools/schemas/GeneratedTables.h>

#include <tools/lint/Fields.h>
#include <tools/lint/Rules.h>
#include <tools/schemas/FieldText.h>

namespace vorna::schemas {

namespace {

constexpr std::string_view begin = "<!-- table: ";
constexpr std::string_view endOfBegin = " -->\n";
constexpr std::string_view end = "<!-- end of table -->\n";

std::string_view typeName(const DocumentField& field) {
    switch (field.kind) {
    case FieldKind::text:
    case FieldKind::identifier:
    case FieldKind::stepType:
        return "text";
    case FieldKind::colour:
        return "colour";
    case FieldKind::url:
        return "address";
    case FieldKind::delay:
        return "whole number";
    case FieldKind::lines:
        return "list of texts";
    case FieldKind::products:
        return "list of products";
    }
    return {};
}

std::string defaultText(const DocumentField& field) {
    if (field.type() == FieldType::integer) {
        return std::to_string(field.numberDefault);
    }
    return field.textDefault.empty() ? "empty" : "`" + std::string(field.textDefault) + "`";
}

std::string_view required(FieldRequirement requirement) {
    switch (requirement) {
    case FieldRequirement::never:
        return "no";
    case FieldRequirement::always:
        return "yes";
    case FieldRequirement::onPaywallSteps:
        return "on paywall steps";
    }
    return {};
}

std::string fieldTable(RecordType record) {
    std::string table = "| field | type | default | required | effect |\n|---|---|---|---|---|\n";
    for (const DocumentField& field : lint::fieldsOf(record)) {
        table.append("| `").append(field.key).append("` | ").append(typeName(field));
        table.append(" | ").append(defaultText(field)).append(" | ").append(required(field.required));
        table.append(" | ").append(fieldText(record, field.key)).append(" |\n");
    }
    return table;
}

std::string findingsTable() {
    std::string table = "| code | severity | problem |\n|---|---|---|\n";
    for (const lint::Rule& rule : lint::rules()) {
        table.append("| `").append(rule.code).append("` | ").append(lint::name(rule.severity));
        table.append(" | ").append(rule.summary).append(" |\n");
    }
    return table;
}

std::optional<std::string> tableNamed(std::string_view name) {
    if (name == "paywall") {
        return fieldTable(RecordType::paywall);
    }
    if (name == "step") {
        return fieldTable(RecordType::step);
    }
    if (name == "product") {
        return fieldTable(RecordType::product);
    }
    return name == "findings" ? std::optional(findingsTable()) : std::nullopt;
}

}  // namespace

std::optional<std::string> withGeneratedTables(std::string_view markdown) {
    std::string result;
    while (true) {
        const std::size_t from = markdown.find(begin);
        if (from == std::string_view::npos) {
            return result.append(markdown);
        }
        const std::size_t nameAt = from + begin.size();
        const std::size_t nameEnd = markdown.find(endOfBegin, nameAt);
        const std::size_t to = markdown.find(end, nameAt);
        if (nameEnd == std::string_view::npos || to == std::string_view::npos) {
            return std::nullopt;
        }
        const std::optional<std::string> table = tableNamed(markdown.substr(nameAt, nameEnd - nameAt));
        if (!table) {
            return std::nullopt;
        }
        result.append(markdown.substr(0, nameEnd + endOfBegin.size())).append(*table).append(end);
        markdown.remove_prefix(to + end.size());
    }
}

}  // namespace vorna::schemas
