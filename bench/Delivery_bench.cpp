// SPDX-License-Identifier: Apache-2.0
/// Events delivered per second, from the queue to the server's answer, next to a bare libcurl loop that posts
/// the same bodies to the same server, alternating with the library.
///
///     Delivery_bench TITLE DATA-FOLDER CA-FILE STATUS-URL ROUNDS (LABEL URL PARALLEL EVENTS TARGET)...
///
/// PARALLEL is how many requests the bare loop keeps in flight. TARGET is in events per second or, with a
/// trailing "x", a ratio to the bare loop. STATUS-URL is nginx's stub_status, which counts what really
/// arrives. Each server is measured in its own process.

#include <bench/support/BareLoop.h>
#include <bench/support/ChildProcess.h>
#include <bench/support/CountingHttpClient.h>
#include <bench/support/SampleEvents.h>
#include <bench/support/Series.h>
#include <bench/support/Stopwatch.h>
#include <bench/support/Table.h>

#include <vorna/core/VornaCoreSDK.h>

#include <sys/resource.h>
#include <sys/time.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <future>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vorna::bench {
namespace {

struct Common {
    std::string dataFolder;
    std::string authority;
    std::string statusURL;
    std::size_t rounds = 0;
};

struct Service {
    std::string label;
    std::string url;
    std::size_t parallel = 0;
    std::size_t events = 0;
    std::string target;
};

/// One round of the library or of the bare loop.
struct Side {
    double perSecond = 0;
    /// Processor time of the process per event, in microseconds.
    double processorTime = 0;
    std::uint64_t delivered = 0;
    std::uint64_t received = 0;
};

double microseconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_usec);
}

/// Processor time of all threads.
double processorMicroseconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return microseconds(usage.ru_utime) + microseconds(usage.ru_stime);
}

std::size_t countFrom(const std::string& text) {
    return std::stoul(text);
}

class Measurement {
  public:
    Measurement(const Common& common, const Service& service)
        : statusURL_(common.statusURL),
          events_(service.events),
          loop_(service.url + "/v1/event", common.authority, service.parallel) {
        PlatformOptions options = sampleOptions(common.dataFolder);
        options.serviceURL = service.url;
        options.certificateAuthorityFile = common.authority;
        Platform platform = makePlatform(options);
        client_ = std::make_shared<CountingHttpClient>(std::move(platform.httpClient));
        platform.httpClient = client_;
        VornaCoreSDK::UsePlatform(platform);

        std::promise<void> configured;
        auto observation = NotificationCenter::defaultCenter().addObserver(
            VornaCoreSDK::RemoteConfigsReady, [&](const Notification&) { configured.set_value(); });
        client_->beginRound(1);
        VornaCoreSDK::Init("bench");
        client_->waitForRound();
        configured.get_future().wait();
    }

    /// Opens the connections and records the bodies for the bare loop.
    void warmUp() {
        library(true);
        bodies_ = client_->bodies();
        bareLoop();
    }

    Side library(bool keepBodies = false) {
        const std::uint64_t before = requestsReceived(statusURL_);
        const double processorBefore = processorMicroseconds();
        client_->beginRound(events_, keepBodies);
        for (std::size_t index = 0; index < events_; ++index) {
            recordSample(index);
        }
        const CountingHttpClient::Round round = client_->waitForRound();
        const double processor = processorMicroseconds() - processorBefore;
        if (!round.problem.empty()) {
            std::cerr << "not delivered: " << round.problem << '\n';
        }
        return {rate(round.ended - round.began), processor / static_cast<double>(events_), round.delivered,
                requestsReceived(statusURL_) - before - 1};
    }

    Side bareLoop() {
        const std::uint64_t before = requestsReceived(statusURL_);
        const double processorBefore = processorMicroseconds();
        std::uint64_t delivered = 0;
        const std::int64_t took = nanosecondsOf([&] { delivered = loop_.post(bodies_); });
        const double processor = processorMicroseconds() - processorBefore;
        return {rate(took), processor / static_cast<double>(events_), delivered,
                requestsReceived(statusURL_) - before - 1};
    }

  private:
    double rate(std::int64_t nanoseconds) const {
        return static_cast<double>(events_) * 1e9 / static_cast<double>(nanoseconds);
    }

    const std::string statusURL_;
    const std::size_t events_;
    BareLoop loop_;
    std::shared_ptr<CountingHttpClient> client_;
    std::vector<std::string> bodies_;
};

constexpr std::string_view roundMark = "round: ";

void print(const Side& side) {
    std::cout << side.perSecond << ' ' << side.processorTime << ' ' << side.delivered << ' ' << side.received
              << ' ';
}

Side read(std::istream& numbers) {
    Side side;
    numbers >> side.perSecond >> side.processorTime >> side.delivered >> side.received;
    return side;
}

/// Runs in its own process and prints a line per round.
int measureService(const Common& common, const Service& service) {
    Measurement measurement(common, service);
    measurement.warmUp();
    for (std::size_t round = 0; round < common.rounds; ++round) {
        const bool libraryFirst = round % 2 == 0;
        Side library = libraryFirst ? measurement.library() : Side{};
        const Side loop = measurement.bareLoop();
        if (!libraryFirst) {
            library = measurement.library();
        }
        std::cout << roundMark;
        print(library);
        print(loop);
        std::cout << std::endl;
    }
    return EXIT_SUCCESS;
}

bool addRow(Table& table, const Common& common, const Service& service) {
    const ChildResult child =
        runSelf({"--one", common.dataFolder, common.authority, common.statusURL,
                 std::to_string(common.rounds), service.label, service.url, std::to_string(service.parallel),
                 std::to_string(service.events), service.target},
                ownEnvironment());
    Series library;
    Series loop;
    Series ratios;
    Series processorTimes;
    Series processorTimesOfLoop;
    std::uint64_t lostByLibrary = 0;
    std::uint64_t lostByLoop = 0;
    std::uint64_t surplus = 0;
    std::istringstream lines(child.output);
    for (std::string line; std::getline(lines, line);) {
        // The library may print lines too.
        if (!line.starts_with(roundMark)) {
            continue;
        }
        std::istringstream numbers(line.substr(roundMark.size()));
        const Side ours = read(numbers);
        const Side theirs = read(numbers);
        library.add(ours.perSecond);
        loop.add(theirs.perSecond);
        ratios.add(ours.perSecond / theirs.perSecond);
        processorTimes.add(ours.processorTime);
        processorTimesOfLoop.add(theirs.processorTime);
        lostByLibrary += service.events - ours.delivered;
        lostByLoop += service.events - theirs.delivered;
        surplus += ours.received - service.events;
    }
    if (!child.succeeded || library.size() != common.rounds) {
        std::cerr << service.label << " could not be measured\n";
        return false;
    }
    const bool isRatio = service.target.ends_with('x');
    const double target = std::stod(service.target);
    table.row({service.label, number(library.median()), number(loop.median()), ratio(ratios.median()),
               "at least " + (isRatio ? ratio(target) : number(target) + "/s"),
               atLeast(isRatio ? ratios.median() : library.median(), target), number(processorTimes.median()),
               number(processorTimesOfLoop.median()), std::to_string(lostByLibrary),
               std::to_string(lostByLoop), std::to_string(surplus)});
    return lostByLibrary == 0;
}

int measureAll(const std::string& title, const Common& common, const std::vector<Service>& services) {
    Table table(title, {"server", "library", "bare loop", "ratio", "target", "", "CPU µs", "CPU µs, loop",
                        "lost", "lost, loop", "sent twice"});
    bool allDelivered = true;
    for (const Service& service : services) {
        allDelivered = addRow(table, common, service) && allDelivered;
    }
    table.remark("Medians of " + std::to_string(common.rounds) +
                 " rounds by turns; the ratio is the median of the rounds' ratios. \"Lost\" are requests");
    table.remark(
        "without a 200, \"sent twice\" those of the library that nginx has counted beyond one an event.");
    table.remark("CPU µs is what an event costs the whole process, recording and encoding included.");
    table.print();
    return allDelivered ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace
}  // namespace vorna::bench

int main(int count, char** texts) {
    const std::vector<std::string> arguments(texts + 1, texts + count);
    constexpr std::size_t common = 5;
    constexpr std::size_t each = 5;
    if (arguments.size() < common + each || (arguments.size() - common) % each != 0) {
        std::cerr << "Usage: Delivery_bench TITLE DATA-FOLDER CA-FILE STATUS-URL ROUNDS"
                     " (LABEL URL PARALLEL EVENTS TARGET)...\n";
        return EXIT_FAILURE;
    }
    using vorna::bench::countFrom;
    const vorna::bench::Common shared{arguments[1], arguments[2], arguments[3], countFrom(arguments[4])};
    std::vector<vorna::bench::Service> services;
    for (std::size_t at = common; at < arguments.size(); at += each) {
        services.push_back({arguments[at], arguments[at + 1], countFrom(arguments[at + 2]),
                            countFrom(arguments[at + 3]), arguments[at + 4]});
    }
    if (arguments[0] == "--one") {
        return vorna::bench::measureService(shared, services.front());
    }
    return vorna::bench::measureAll(arguments[0], shared, services);
}
