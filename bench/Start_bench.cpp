// SPDX-License-Identifier: Apache-2.0
/// The time that the library adds to the start and exit of a process: the first Init on a machine without a
/// keyring, and leaving main with requests in flight. Each in a fresh process.
///
///     Start_bench WORK-FOLDER WORK-FOLDER-IN-MEMORY CA-FILE SLOW-URL
///
/// The server at SLOW-URL answers slowly.

#include <bench/support/ChildProcess.h>
#include <bench/support/CountingHttpClient.h>
#include <bench/support/MuteServer.h>
#include <bench/support/SampleEvents.h>
#include <bench/support/Series.h>
#include <bench/support/Stopwatch.h>
#include <bench/support/Table.h>

#include <vorna/core/VornaCoreSDK.h>

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace vorna::bench {
namespace {

constexpr std::size_t processes = 50;
constexpr std::size_t requests = 10'000;
constexpr double millisecond = 1e6;
constexpr double mostForInit = 5;
constexpr double mostForLeaving = 100;

// In the fresh processes

/// The very first call: everything is set up in it.
int childInit() {
    const std::int64_t took = nanosecondsOf([] { VornaCoreSDK::Init("bench"); });
    std::cout << took << std::endl;
    return VornaCoreSDK::GetUserID() ? EXIT_SUCCESS : EXIT_FAILURE;
}

/// Prints the time of leaving main, for the parent.
int leave() {
    std::cout << nanosecondsNow() << std::endl;
    return EXIT_SUCCESS;
}

int childLeaveIdle(const std::string& dataFolder) {
    Platform platform = makePlatform(sampleOptions(dataFolder));
    platform.httpClient = std::make_shared<SwallowingHttpClient>();
    VornaCoreSDK::UsePlatform(platform);
    VornaCoreSDK::Init("bench");
    return leave();
}

int childLeaveBusy(const std::string& dataFolder, const std::string& authority, const std::string& url,
                   bool answers) {
    PlatformOptions options = sampleOptions(dataFolder);
    options.serviceURL = url;
    options.certificateAuthorityFile = authority;
    Platform platform = makePlatform(options);
    // Never destroyed: its requests outlive main.
    static CountingHttpClient* client = nullptr;
    const auto counting = std::make_shared<CountingHttpClient>(std::move(platform.httpClient));
    client = counting.get();
    client->beginRound(1);
    platform.httpClient = counting;
    VornaCoreSDK::UsePlatform(platform);

    static std::atomic<std::size_t> handedOver = 0;
    NotificationCenter::defaultCenter()
        .addObserver(VornaCoreSDK::EventListUpdated,
                     [](const Notification&) {
                         ++handedOver;
                         handedOver.notify_all();
                     })
        .keepForever();
    for (std::size_t index = 0; index < requests; ++index) {
        recordSample(index);
    }
    VornaCoreSDK::Init("bench");
    for (std::size_t seen = handedOver; seen < requests; seen = handedOver) {
        handedOver.wait(seen);
    }
    if (answers) {
        client->waitForRound();
    }
    return leave();
}

int childMain(const std::vector<std::string>& arguments) {
    if (arguments[0] == "init") {
        return childInit();
    }
    if (arguments[0] == "leave-without") {
        return leave();
    }
    if (arguments[0] == "leave-idle") {
        return childLeaveIdle(arguments[1]);
    }
    return childLeaveBusy(arguments[1], arguments[2], arguments[3], arguments[0] == "leave-answering");
}

// The parent's evaluation

class Parent {
  public:
    explicit Parent(std::filesystem::path work) : work_(std::move(work)) {
        std::filesystem::create_directories(work_ / "no-session-bus");
    }

    /// Each time with a fresh home folder, as in a new account.
    Series firstInit() {
        Series series;
        for (std::size_t index = 0; index < processes; ++index) {
            series.add(numberFrom(child({"init"}, newHome())) / millisecond);
        }
        return series;
    }

    Series laterInit() {
        Series series;
        const std::filesystem::path home = newHome();
        child({"init"}, home);
        for (std::size_t index = 0; index < processes; ++index) {
            series.add(numberFrom(child({"init"}, home)) / millisecond);
        }
        return series;
    }

    /// The time to write a small file so that it survives a power failure, as the first run must.
    Series durableWrite() {
        Series series;
        const std::filesystem::path folder = newHome();
        for (std::size_t index = 0; index < processes; ++index) {
            series.add(static_cast<double>(nanosecondsOf([&] { writeDurably(folder); })) / millisecond);
        }
        return series;
    }

    Series leaving(std::vector<std::string> arguments) {
        Series series;
        const std::filesystem::path home = newHome();
        arguments.insert(arguments.begin() + 1, home / "data");
        for (std::size_t index = 0; index < processes; ++index) {
            const ChildResult result = child(arguments, home);
            series.add((static_cast<double>(result.ended) - numberFrom(result)) / millisecond);
        }
        return series;
    }

  private:
    std::filesystem::path newHome() {
        std::filesystem::path home = work_ / ("home-" + std::to_string(++homes_));
        std::filesystem::create_directories(home / ".local" / "share");
        return home;
    }

    /// No session bus can be found from there.
    ChildResult child(const std::vector<std::string>& arguments, const std::filesystem::path& home) const {
        std::vector<std::string> all = {"--child"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        ChildResult result = runSelf(all, {"PATH=/usr/bin:/bin", "LANG=C.UTF-8", "HOME=" + home.string(),
                                           "XDG_RUNTIME_DIR=" + (work_ / "no-session-bus").string()});
        if (!result.succeeded) {
            throw std::runtime_error("a process has failed: " + arguments.front() + "\n" + result.output);
        }
        return result;
    }

    /// The last line; the library's own output comes before it.
    static double numberFrom(const ChildResult& result) {
        const std::string text = result.output.substr(0, result.output.find_last_not_of('\n') + 1);
        return std::stod(text.substr(text.find_last_of('\n') + 1));
    }

    static void writeDurably(const std::filesystem::path& folder) {
        const std::filesystem::path temporary = folder / "item.new";
        const std::string text(80, 'x');
        const int file = open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        if (file < 0 || write(file, text.data(), text.size()) < 0 || fsync(file) != 0 || close(file) != 0) {
            throw std::runtime_error("cannot write " + temporary.string());
        }
        std::filesystem::rename(temporary, folder / "item");
        const int directory = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (directory < 0 || fsync(directory) != 0 || close(directory) != 0) {
            throw std::runtime_error("cannot sync " + folder.string());
        }
    }

    const std::filesystem::path work_;
    int homes_ = 0;
};

void printStart(Parent& onDisk, Parent& inMemory) {
    const Series write = onDisk.durableWrite();
    Table table("The first call of Init, without a keyring, in ms",
                {"what", "p50", "max", "p50 in durable writes", "target", ""});
    const auto row = [&](const std::string& name, const Series& series, bool judged) {
        table.row({name, number(series.median(), 2), number(series.greatest(), 2),
                   ratio(series.median() / write.median()), judged ? "at most " + number(mostForInit) : "",
                   judged ? atMost(series.greatest(), mostForInit) : ""});
    };
    row("first run of all, no identity yet", onDisk.firstInit(), true);
    row("the same, home folder in memory", inMemory.firstInit(), true);
    row("later run", onDisk.laterInit(), true);
    row("one durable write of a small file", write, false);
    table.remark("In " + std::to_string(processes) +
                 " fresh processes each. The call sets up everything: ports, threads, identity. A first run");
    table.remark("writes the identity durably, so it cannot be quicker than this disk is.");
    table.print();
}

int parentMain(const std::string& work, const std::string& memory, const std::string& authority,
               const std::string& slowURL) {
    Parent parent(work);
    Parent parentInMemory(memory);
    printStart(parent, parentInMemory);

    const MuteServer mute;
    const Series without = parent.leaving({"leave-without"});
    const Series idle = parent.leaving({"leave-idle"});
    const Series answering = parent.leaving({"leave-answering", authority, slowURL});
    const Series silent = parent.leaving({"leave-silent", authority, mute.url()});
    Table end("From the end of main to the end of the process, in ms",
              {"what", "p50", "max", "max beyond idle", "target", ""});
    const auto row = [&](const std::string& name, const Series& series, bool judged) {
        const double beyond = series.greatest() - idle.greatest();
        end.row({name, number(series.median(), 1), number(series.greatest(), 1), number(beyond, 1),
                 judged ? "at most " + number(mostForLeaving) : "",
                 judged ? atMost(beyond, mostForLeaving) : ""});
    };
    row("the library not used at all", without, false);
    row("nothing in flight", idle, false);
    const std::string load = number(requests) + " requests in flight, ";
    row(load + "the server answers slowly", answering, true);
    row(load + "the server says nothing", silent, true);
    end.remark("In " + std::to_string(processes) + " fresh processes each.");
    end.print();
    return EXIT_SUCCESS;
}

}  // namespace
}  // namespace vorna::bench

int main(int count, char** texts) {
    const std::vector<std::string> arguments(texts + 1, texts + count);
    if (arguments.size() > 1 && arguments[0] == "--child") {
        return vorna::bench::childMain({arguments.begin() + 1, arguments.end()});
    }
    if (arguments.size() != 4) {
        std::cerr << "Usage: Start_bench WORK-FOLDER WORK-FOLDER-IN-MEMORY CA-FILE SLOW-URL\n";
        return EXIT_FAILURE;
    }
    return vorna::bench::parentMain(arguments[0], arguments[1], arguments[2], arguments[3]);
}
