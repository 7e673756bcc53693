// SPDX-License-Identifier: Apache-2.0
/// The cost of recording an event on the calling thread, next to the two system calls it cannot avoid: one
/// statvfs and one statx on the same folders, alternating with it.
///
///     EventCall_bench DATA-FOLDER

#include <bench/support/CountingHttpClient.h>
#include <bench/support/SampleEvents.h>
#include <bench/support/Series.h>
#include <bench/support/Stopwatch.h>
#include <bench/support/Table.h>

#include <vorna/core/FacadeState.h>
#include <vorna/core/VornaCoreSDK.h>
#include <vorna/device/DeviceMetadataCollector.h>
#include <vorna/events/VornaTaskQueue.h>
#include <vorna/platform/linux/Environment.h>
#include <vorna/platform/linux/LinuxSystem.h>
#include <vorna/platform/linux/SystemClock.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace vorna::bench {
namespace {

constexpr std::size_t blocks = 1000;
constexpr std::size_t callsPerBlock = 100;
constexpr double mostTimesTheYardstick = 2.0;

/// The yardstick.
class TwoSystemCalls {
  public:
    explicit TwoSystemCalls(std::string documents)
        : home_(homeFolder(processEnvironment()).value_or("/")),
          documents_(std::move(documents)) {}

    void fileSystem() const {
        struct statvfs size = {};
        used(statvfs(home_.c_str(), &size));
        used(size);
    }

    void birth() const {
        struct statx item = {};
        used(statx(AT_FDCWD, documents_.c_str(), AT_STATX_DONT_SYNC | AT_NO_AUTOMOUNT, STATX_BTIME, &item));
        used(item);
    }

    void both() const {
        fileSystem();
        birth();
    }

  private:
    const std::string home_;
    const std::string documents_;
};

struct Comparison {
    Series yardstick{blocks * callsPerBlock};
    Series event{blocks * callsPerBlock};
};

/// Alternates blocks of both, so that other load on the machine affects them alike.
Comparison compare(const TwoSystemCalls& yardstick, double clock) {
    Comparison comparison;
    for (std::size_t block = 0; block < blocks; ++block) {
        for (std::size_t index = 0; index < callsPerBlock; ++index) {
            comparison.yardstick.add(static_cast<double>(nanosecondsOf([&] { yardstick.both(); })) - clock);
        }
        for (std::size_t index = 0; index < callsPerBlock; ++index) {
            comparison.event.add(static_cast<double>(nanosecondsOf([&] { recordSample(index); })) - clock);
        }
    }
    return comparison;
}

void waitUntil(const std::function<bool()>& condition) {
    while (!condition()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

void addRows(Table& table, const std::string& name, const Comparison& comparison) {
    const double yardstick = comparison.yardstick.median();
    const double event = comparison.event.median();
    table.row({"statvfs + statx, " + name, number(yardstick), number(comparison.yardstick.quantile(0.99)),
               ratio(1), "", ""});
    table.row({"Event, " + name, number(event), number(comparison.event.quantile(0.99)),
               ratio(event / yardstick), "at most " + ratio(mostTimesTheYardstick),
               atMost(event / yardstick, mostTimesTheYardstick)});
}

double measureWhole(const TwoSystemCalls& yardstick, const std::string& dataFolder) {
    const auto http = std::make_shared<SwallowingHttpClient>();
    Platform platform = makePlatform(sampleOptions(dataFolder));
    platform.httpClient = http;
    VornaCoreSDK::UsePlatform(platform);
    VornaCoreSDK::SetAdid("1c9a6c3f-7b1d-4f0e-9a52-9d4d7f6f0b21");

    const double clock = nanosecondsOfTheClock();
    compare(yardstick, clock);  // to warm up
    const Comparison before = compare(yardstick, clock);
    VornaCoreSDK::Init("bench");
    waitUntil([&] { return http->swallowed() > 2 * blocks * callsPerBlock; });
    // The idle worker sleeps: give it something to wake up for.
    const std::uint64_t seen = http->swallowed();
    for (std::size_t index = 0; index < callsPerBlock; ++index) {
        recordSample(index);
    }
    waitUntil([&] { return http->swallowed() > seen; });
    const Comparison during = compare(yardstick, clock);

    Table table("An event on the calling thread, in ns",
                {"what", "p50", "p99", "p50 vs. statvfs + statx", "target", ""});
    addRows(table, "before Init", before);
    addRows(table, "worker at work", during);
    table.remark(number(static_cast<double>(before.event.size())) +
                 " calls each, timed individually; reading the clock takes " + number(clock) +
                 " ns, which is subtracted.");
    table.print();
    return before.event.median();
}

/// A step of recording an event, done in batches.
struct Part {
    std::string name;
    std::function<void()> call;
    /// Prepares what a batch of calls consumes; not measured.
    std::function<void()> prepare = [] {};
    Series series{};
};

constexpr std::size_t batch = 50;

void measureParts(const TwoSystemCalls& yardstick, const std::string& dataFolder, double whole) {
    const auto clock = std::make_shared<SystemClock>();
    LinuxSystemOptions options;
    options.bundle = {"com.example.bench", "3.14.1", "2026112101"};
    options.dataDirectory = dataFolder;
    const auto system = std::make_shared<LinuxSystem>(options);
    system->enableBatteryMonitoring();
    const auto state = std::make_shared<FacadeState>();
    state->setAppID("bench");
    DeviceMetadataCollector collector(system, clock);
    VornaTaskQueue queue;
    std::vector<DeviceMetadata> metadata;
    std::vector<VornaTask> tasks;
    std::size_t next = 0;

    const auto prepareMetadata = [&] {
        metadata.assign(batch, collector.collect(state->description()));
        tasks.clear();
        tasks.reserve(batch);
        next = 0;
    };
    const auto build = [&] {
        const SampleEvent event = sampleEvent(next);
        tasks.push_back({VornaTaskTypes::event,
                         EventData{std::string(event.name), 1, 2, std::string(event.customValue.value_or("")),
                                   std::move(metadata[next])}});
        ++next;
    };
    const auto prepareTasks = [&] {
        while (queue.dequeue()) {
        }
        prepareMetadata();
        for (std::size_t index = 0; index < batch; ++index) {
            build();
        }
        next = 0;
    };

    std::vector<Part> parts;
    parts.push_back({"the clock, three times", [&] {
                         used(wholeSeconds(clock->now()));
                         used(wholeSeconds(clock->now()));
                         used(clock->now());
                     }});
    parts.push_back({"identity", [&] { used(state->description()); }});
    parts.push_back({"facts", [&] {
                         system->enableBatteryMonitoring();
                         used(system->facts());
                     }});
    parts.push_back({"disk space", [&] { used(system->homeFileSystem()); }});
    parts.push_back({"   of which statvfs itself", [&] { yardstick.fileSystem(); }});
    parts.push_back({"documents folder", [&] { used(system->creation(*system->documentsDirectory())); }});
    parts.push_back({"   of which statx itself", [&] { yardstick.birth(); }});
    parts.push_back({"time zone offset", [&] { used(system->secondsFromGMT(clock->now())); }});
    parts.push_back({"   of which the clock", [&] { used(clock->now()); }});
    parts.push_back({"offset as text", [&] { used(timezoneText(10'800)); }});
    parts.push_back({"the whole device snapshot", [&] { used(collector.collect(state->description())); }});
    parts.push_back({"building the record", build, prepareMetadata});
    parts.push_back({"enqueueing", [&] { queue.enqueue(std::move(tasks[next++])); }, prepareTasks});

    for (std::size_t round = 0; round < blocks; ++round) {
        for (Part& part : parts) {
            part.prepare();
            const std::int64_t took = nanosecondsOf([&] {
                for (std::size_t index = 0; index < batch; ++index) {
                    part.call();
                }
            });
            part.series.add(static_cast<double>(took) / batch);
        }
    }

    Table table("Its parts, in ns", {"part", "p50", "of the call before Init"});
    for (const Part& part : parts) {
        const double nanoseconds = part.series.median();
        table.row({part.name, number(nanoseconds), number(100 * nanoseconds / whole) + " %"});
    }
    table.remark("Each part alone, in batches of " + number(batch) + ", " + number(blocks) +
                 " times in turn; such a run has warmer caches than one call among others.");
    table.print();
}

}  // namespace
}  // namespace vorna::bench

int main(int count, char** arguments) {
    if (count != 2) {
        std::cerr << "Usage: EventCall_bench DATA-FOLDER\n";
        return EXIT_FAILURE;
    }
    const std::string dataFolder = arguments[1];
    const vorna::bench::TwoSystemCalls yardstick(dataFolder);
    const double whole = vorna::bench::measureWhole(yardstick, dataFolder);
    vorna::bench::measureParts(yardstick, dataFolder, whole);
    return EXIT_SUCCESS;
}
