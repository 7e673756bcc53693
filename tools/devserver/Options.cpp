// SPDX-License-Identifier: Apache-2.0
#include <tools/devserver/Options.h>

#include <CLI/CLI.hpp>

#include <sstream>
#include <utility>

namespace vorna::devserver {
namespace {

constexpr int usageStatus = 2;

constexpr const char* description = "Stands in for the analytics service while an application is developed "
                                    "or tested: records events, serves the\n"
                                    "remote configuration and media files, and misbehaves on demand.";

constexpr const char* footer =
    "A fault is a list of key=value, separated by commas:\n"
    "  path=PREFIX     which requests (default: all but /control)\n"
    "  count=N         for the next N of them (default: every one)\n"
    "  status=CODE     answers with that status, with location=URL and body=TEXT if given\n"
    "  body=TEXT       answers with that text; comes last, may contain commas\n"
    "  drop            closes the connection without an answer\n"
    "  reset           the same, with a TCP reset\n"
    "  hang            never answers and keeps the connection open\n"
    "  cutBody         announces the whole body, sends half of it and closes\n"
    "  delay=MS        waits that long first; alone or with any of the others\n"
    "The first fault whose path fits applies. Example: --fault path=/v1/event,count=3,status=500,delay=100\n"
    "\n"
    "While it runs: GET, POST and DELETE /control/faults, GET /control/statistics, POST /control/shutdown.\n"
    "SIGINT and SIGTERM end it.";

EarlyExit mistake(const std::string& text) {
    return {usageStatus, "vorna-devserver: " + text + "\nRun with --help for more information.\n"};
}

}  // namespace

std::variant<Options, EarlyExit> readOptions(int argumentCount, const char* const* arguments) {
    Options options;
    std::vector<std::string> faultTexts;

    CLI::App app(description, "vorna-devserver");
    app.footer(footer);
    app.get_formatter()->column_width(26);
    app.add_option("--state", options.state,
                   "Folder for our own certificates, and for the files below unless they are given")
        ->type_name("DIR")
        ->capture_default_str();
    app.add_option("--address", options.address, "Address to listen on")
        ->type_name("ADDRESS")
        ->capture_default_str();
    app.add_option("--port", options.port, "Port to listen on; 0 takes any that is free")
        ->type_name("PORT")
        ->capture_default_str();
    auto* const http =
        app.add_flag("--http", options.plainHttp, "Plain HTTP instead of HTTPS, on a loopback address only");
    auto* const name = app.add_option("--name", options.names,
                                      "Further host name or address for our own certificate (repeatable)")
                           ->type_name("NAME")
                           ->expected(1)
                           ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    auto* const certificate = app.add_option("--certificate", options.certificate,
                                             "Certificate chain (PEM) to use in place of our own")
                                  ->type_name("FILE");
    auto* const key = app.add_option("--key", options.key, "Its private key (PEM)")->type_name("FILE");
    certificate->needs(key)->excludes(http)->excludes(name);
    key->needs(certificate);
    name->excludes(http);
    app.add_option(
           "--events", options.events,
           "File that events are appended to, one JSON document a line (default: STATE/events.ndjson)")
        ->type_name("FILE");
    app.add_option("--config", options.config,
                   "File with the remote configuration, a JSON object of strings; read again for each "
                   "request (default: STATE/config.json)")
        ->type_name("FILE");
    app.add_option("--media", options.media, "Folder served under /media/")->type_name("DIR");
    app.add_option("--fault", faultTexts, "Something that goes wrong on purpose, see below (repeatable)")
        ->type_name("SPEC")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    app.add_flag("--quiet", options.quiet, "No line per request");

    try {
        app.parse(argumentCount, arguments);
    } catch (const CLI::Success&) {
        return EarlyExit{0, app.help()};
    } catch (const CLI::ParseError& error) {
        return mistake(error.what());
    }

    for (const std::string& text : faultTexts) {
        Reading<Fault> reading = readFaultOption(text);
        if (const auto* complaint = std::get_if<Complaint>(&reading)) {
            return mistake("--fault " + text + ": " + complaint->text);
        }
        options.faults.push_back(std::move(std::get<Fault>(reading)));
    }
    if (options.events.empty()) {
        options.events = options.state / "events.ndjson";
    }
    if (options.config.empty()) {
        options.config = options.state / "config.json";
    }
    return options;
}

}  // namespace vorna::devserver
