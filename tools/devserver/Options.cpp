// SPDX-License-Identifier: Apache-2.0
#include <tools/devserver/Options.h>

#include <CLI/CLI.hpp>

#include <utility>

namespace vorna::devserver {
namespace {

constexpr const char* description = "A local stand-in for the analytics service, for development and tests: "
                                    "records events, serves the remote\n"
                                    "configuration and media files, and misbehaves on demand.";

constexpr const char* footer =
    "A fault is a comma-separated list of:\n"
    "  path=PREFIX     affect requests whose path begins with PREFIX (default: all but /control)\n"
    "  count=N         affect the next N requests (default: all)\n"
    "  status=CODE     answer with that status, and with location=URL and body=TEXT if given\n"
    "  body=TEXT       answer with that text; must be last, may contain commas\n"
    "  drop            close the connection without an answer\n"
    "  reset           close it with a TCP reset\n"
    "  hang            never answer and keep the connection open\n"
    "  cutBody         announce the whole body, send half of it and close\n"
    "  delay=MS        wait first; alone or with any of the others\n"
    "The first fault whose path matches applies. Example: --fault "
    "path=/v1/event,count=3,status=500,delay=100\n"
    "\n"
    "While running: GET, POST and DELETE /control/faults, GET /control/statistics, POST /control/shutdown.\n"
    "Stop it with SIGINT or SIGTERM.";

}  // namespace

Result<Options, tools::EarlyExit> readOptions(int argumentCount, const char* const* arguments) {
    Options options;
    std::vector<std::string> faultTexts;

    CLI::App app(description, "vorna-devserver");
    app.footer(footer);
    app.get_formatter()->column_width(26);
    app.add_option("--state", options.state,
                   "Folder for generated certificates, and the default folder of the files below")
        ->type_name("DIR")
        ->capture_default_str();
    app.add_option("--address", options.address, "Address to listen on")
        ->type_name("ADDRESS")
        ->capture_default_str();
    app.add_option("--port", options.port, "Port to listen on; 0 for any free port")
        ->type_name("PORT")
        ->capture_default_str();
    auto* const http = app.add_flag("--http", options.plainHttp,
                                    "Serve plain HTTP instead of HTTPS; loopback addresses only");
    auto* const name =
        app.add_option("--name", options.names,
                       "Additional host name or address in the generated certificate (repeatable)")
            ->type_name("NAME")
            ->expected(1)
            ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    auto* const certificate = app.add_option("--certificate", options.certificate,
                                             "Certificate chain (PEM) to use instead of a generated one")
                                  ->type_name("FILE");
    auto* const key = app.add_option("--key", options.key, "Its private key (PEM)")->type_name("FILE");
    certificate->needs(key)->excludes(http)->excludes(name);
    key->needs(certificate);
    name->excludes(http);
    app.add_option("--events", options.events,
                   "File to append events to, one JSON document per line (default: STATE/events.ndjson)")
        ->type_name("FILE");
    app.add_option("--config", options.config,
                   "File with the remote configuration, a JSON object of strings; reread for each request "
                   "(default: STATE/config.json)")
        ->type_name("FILE");
    app.add_option("--media", options.media, "Folder to serve under /media/")->type_name("DIR");
    app.add_option("--fault", faultTexts, "Misbehave on purpose, see below (repeatable)")
        ->type_name("SPEC")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    app.add_flag("--quiet", options.quiet, "Do not print requests");

    if (auto parsed = tools::parse(app, argumentCount, arguments); !parsed) {
        return Unexpected(std::move(parsed).error());
    }

    for (const std::string& text : faultTexts) {
        Result<Fault, FaultError> fault = readFaultOption(text);
        if (!fault) {
            return tools::mistake(app, "--fault " + text + ": " + describe(fault.error()));
        }
        options.faults.push_back(*std::move(fault));
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
