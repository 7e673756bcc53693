// SPDX-License-Identifier: Apache-2.0
#include <tools/lint/Options.h>

#include <tools/lint/Rules.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <utility>

namespace vorna::lint {
namespace {

constexpr const char* description = "Checks documents that describe a paywall (a JSON object) or an "
                                    "onboarding (a JSON array):\n"
                                    "reports screens that will not be shown or will look wrong.";

constexpr const char* footer = "Exit status: 0 without findings, 1 with findings, 2 if a file cannot be "
                               "read or the command line is wrong.";

std::string listOfRules() {
    std::size_t width = 0;
    for (const Rule& rule : rules()) {
        width = std::max(width, rule.code.size());
    }
    std::string list;
    for (const Rule& rule : rules()) {
        list.append(rule.code).append(width + 2 - rule.code.size(), ' ');
        list.append(name(rule.severity)).append(rule.severity == Severity::error ? "    " : "  ");
        list.append(rule.summary).append("\n");
    }
    return list;
}

}  // namespace

Result<Options, tools::EarlyExit> readOptions(int argumentCount, const char* const* arguments) {
    Options options;
    std::string kind;
    std::string format;
    bool listsRules = false;

    CLI::App app(description, "vorna-lint");
    app.footer(footer);
    app.get_formatter()->column_width(26);
    auto* const files =
        app.add_option("FILE", options.files, "Documents to check; - is standard input")->type_name("");
    app.add_option("--kind", kind, "Kind of the documents (default: inferred from their shape)")
        ->type_name("paywall|onboarding")
        ->check(CLI::IsMember(std::vector<std::string>{"paywall", "onboarding"}).description(""));
    app.add_option("--format", format, "Output format (default: human)")
        ->type_name("human|json")
        ->check(CLI::IsMember(std::vector<std::string>{"human", "json"}).description(""));
    app.add_flag("--rules", listsRules, "List all finding codes and exit");

    if (auto parsed = tools::parse(app, argumentCount, arguments); !parsed) {
        return Unexpected(std::move(parsed).error());
    }
    if (listsRules) {
        return Unexpected(tools::EarlyExit{0, listOfRules()});
    }
    if (files->empty()) {
        return tools::mistake(app, "no FILE given");
    }
    if (!kind.empty()) {
        options.kind = kind == name(DocumentKind::paywall) ? DocumentKind::paywall : DocumentKind::onboarding;
    }
    options.format = format == "json" ? Format::json : Format::human;
    return options;
}

}  // namespace vorna::lint
