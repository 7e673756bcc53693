// SPDX-License-Identifier: Apache-2.0
#include <tools/lint/Options.h>

#include <tools/lint/Rules.h>

#include <CLI/CLI.hpp>

#include <algorithm>

namespace vorna::lint {
namespace {

constexpr int usageStatus = 2;

constexpr const char* description = "Checks documents that describe a paywall (a JSON object) or an "
                                    "onboarding (a JSON array):\n"
                                    "reports screens that will not be shown, and what will look wrong.";

constexpr const char* footer = "Exit status: 0 without findings, 1 with findings, 2 if a file cannot be "
                               "read or for a usage error.";

Unexpected<EarlyExit> usageError(const std::string& text) {
    return Unexpected(
        EarlyExit{usageStatus, "vorna-lint: " + text + "\nRun with --help for more information.\n"});
}

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

Result<Options, EarlyExit> readOptions(int argumentCount, const char* const* arguments) {
    Options options;
    std::string kind;
    std::string format;
    bool listsRules = false;

    CLI::App app(description, "vorna-lint");
    app.footer(footer);
    app.get_formatter()->column_width(26);
    auto* const files =
        app.add_option("FILE", options.files, "Documents to check; - is standard input")->type_name("");
    app.add_option("--kind", kind, "Kind of the documents (default: by their shape)")
        ->type_name("paywall|onboarding")
        ->check(CLI::IsMember(std::vector<std::string>{"paywall", "onboarding"}).description(""));
    app.add_option("--format", format, "Output format (default: human)")
        ->type_name("human|json")
        ->check(CLI::IsMember(std::vector<std::string>{"human", "json"}).description(""));
    app.add_flag("--rules", listsRules, "List all finding codes and exit");
    app.set_version_flag("--version", std::string("vorna-lint ") + VORNA_VERSION, "Print version and exit");

    try {
        app.parse(argumentCount, arguments);
    } catch (const CLI::CallForVersion& version) {
        return Unexpected(EarlyExit{0, std::string(version.what()) + "\n"});
    } catch (const CLI::Success&) {
        return Unexpected(EarlyExit{0, app.help()});
    } catch (const CLI::ParseError& error) {
        return usageError(error.what());
    }
    if (listsRules) {
        return Unexpected(EarlyExit{0, listOfRules()});
    }
    if (files->empty()) {
        return usageError("no FILE given");
    }
    if (!kind.empty()) {
        options.kind = kind == name(DocumentKind::paywall) ? DocumentKind::paywall : DocumentKind::onboarding;
    }
    options.format = format == "json" ? Format::json : Format::human;
    return options;
}

}  // namespace vorna::lint
