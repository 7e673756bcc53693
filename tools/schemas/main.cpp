// SPDX-License-Identifier: Apache-2.0
#include <tools/common/CommandLine.h>
#include <tools/common/Console.h>
#include <tools/common/Files.h>
#include <tools/schemas/GeneratedTables.h>
#include <tools/schemas/Schema.h>

#include <CLI/CLI.hpp>

#include <iostream>
#include <optional>
#include <string>
#include <string_view>

namespace {

using namespace vorna;

constexpr const char* programName = "vorna-schema";
constexpr int failureStatus = 1;

int print(std::string_view text) {
    std::cout << text << std::flush;
    return std::cout ? 0 : failureStatus;
}

int printTables(const std::string& file) {
    const auto markdown = tools::readFile(file);
    if (!markdown) {
        tools::printError(programName, file + ": " + markdown.error().message());
        return tools::usageStatus;
    }
    const std::optional<std::string> result = schemas::withGeneratedTables(*markdown);
    if (!result) {
        tools::printError(programName, file + ": a table has an unknown name or no end");
        return failureStatus;
    }
    return print(*result);
}

int run(int argumentCount, const char* const* arguments) {
    CLI::App app("Writes JSON Schemas and Markdown tables from the library's tables of fields.", programName);
    app.require_subcommand(1);
    auto* const paywall = app.add_subcommand("paywall", "Print the JSON Schema of paywalls");
    auto* const onboarding = app.add_subcommand("onboarding", "Print the JSON Schema of onboardings");
    auto* const tables =
        app.add_subcommand("tables", "Print a Markdown file with its generated tables updated");
    std::string file;
    tables->add_option("FILE", file, "The Markdown file")->type_name("")->required();
    if (const auto parsed = tools::parse(app, argumentCount, arguments); !parsed) {
        return tools::print(parsed.error());
    }
    if (paywall->parsed()) {
        return print(schemas::schema(lint::DocumentKind::paywall));
    }
    if (onboarding->parsed()) {
        return print(schemas::schema(lint::DocumentKind::onboarding));
    }
    return printTables(file);
}

}  // namespace

int main(int argumentCount, char** arguments) {
    return vorna::tools::runProgram(programName, failureStatus,
                                    [&] { return run(argumentCount, arguments); });
}
