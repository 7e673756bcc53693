// SPDX-License-Identifier: Apache-2.0
#include <tools/common/CommandLine.h>
#include <tools/common/Console.h>
#include <tools/devserver/ConfigFile.h>
#include <tools/devserver/Console.h>
#include <tools/devserver/EventJournal.h>
#include <tools/devserver/Faults.h>
#include <tools/devserver/MediaFolder.h>
#include <tools/devserver/Options.h>
#include <tools/devserver/OwnAddress.h>
#include <tools/devserver/Router.h>
#include <tools/devserver/Server.h>
#include <tools/devserver/ServerIdentity.h>
#include <tools/devserver/Statistics.h>

#include <sys/resource.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace vorna::devserver;

// Allows as many simultaneous connections as the system lets this process have.
void raiseDescriptorLimit() {
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur < limit.rlim_max) {
        limit.rlim_cur = limit.rlim_max;
        ::setrlimit(RLIMIT_NOFILE, &limit);
    }
}

// Our names other than loopback, for the certificate and for requests to control the server: those given, and
// the address we listen on if it is a specific one.
std::vector<std::string> ownNames(const Options& options) {
    std::vector<std::string> names = options.names;
    if (options.address != "0.0.0.0" && options.address != "::") {
        names.push_back(options.address);
    }
    return names;
}

int serve(const Options& options) {
    const Console console = standardConsole(options.quiet);
    Statistics statistics;
    Faults faults;
    for (const Fault& fault : options.faults) {
        faults.add(fault);
    }
    EventJournal journal(options.events);
    const ConfigFile config(options.config);
    std::optional<MediaFolder> media;
    if (options.media) {
        media.emplace(*options.media);
    }
    Router router(journal, config, std::move(media), faults, statistics, console,
                  OwnAddress(ownNames(options)));

    ServerSettings settings{options.address, options.port, std::nullopt};
    std::optional<std::filesystem::path> authority;
    if (options.certificate && options.key) {
        settings.tls = TlsFiles{*options.certificate, *options.key};
    } else if (!options.plainHttp) {
        const ServerIdentity identity =
            serverIdentity(options.state, ownNames(options), std::chrono::system_clock::now());
        settings.tls = TlsFiles{identity.certificate, identity.key};
        authority = identity.authority;
    }

    Server server(settings, router, statistics, console);
    const auto printPath = [](const std::string& what, const std::filesystem::path& path) {
        vorna::tools::printLine(what + ": " + std::filesystem::absolute(path).string());
    };
    vorna::tools::printLine("vorna-devserver listening on " + server.url());
    if (authority) {
        printPath("certificate authority", *authority);
    }
    printPath("events", journal.path());
    printPath("configuration", config.path());
    server.run();
    vorna::tools::printLine("vorna-devserver stopped: " + statistics.summary());
    return 0;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));  // a reader of our output may go away; the server stays
    raiseDescriptorLimit();
    constexpr int cannotServe = 1;
    return vorna::tools::runProgram("vorna-devserver", cannotServe, [&] {
        const auto options = readOptions(argumentCount, arguments);
        return options ? serve(*options) : vorna::tools::print(options.error());
    });
}
