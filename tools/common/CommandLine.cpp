// SPDX-License-Identifier: Apache-2.0
#include <tools/common/CommandLine.h>

#include <tools/common/Console.h>

#include <CLI/CLI.hpp>

#include <exception>
#include <iostream>
#include <utility>

namespace vorna::tools {

Result<void, EarlyExit> parse(CLI::App& app, int argumentCount, const char* const* arguments) {
    app.set_version_flag("--version", app.get_name() + " " + VORNA_VERSION, "Print version and exit");
    try {
        app.parse(argumentCount, arguments);
    } catch (const CLI::CallForVersion& version) {
        return Unexpected(EarlyExit{0, std::string(version.what()) + "\n"});
    } catch (const CLI::Success&) {
        return Unexpected(EarlyExit{0, app.help()});
    } catch (const CLI::ParseError& error) {
        return mistake(app, error.what());
    }
    return {};
}

Unexpected<EarlyExit> mistake(const CLI::App& app, std::string_view text) {
    std::string output = app.get_name();
    output.append(": ").append(text).append("\nRun with --help for more information.\n");
    return Unexpected(EarlyExit{usageStatus, std::move(output)});
}

int print(const EarlyExit& exit) {
    (exit.status == 0 ? std::cout : std::cerr) << exit.output << std::flush;
    return exit.status;
}

int runProgram(std::string_view program, int failureStatus, const std::function<int()>& body) {
    try {
        return body();
    } catch (const std::exception& error) {
        printError(program, error.what());
        return failureStatus;
    }
}

}  // namespace vorna::tools
