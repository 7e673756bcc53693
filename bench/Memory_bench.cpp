// SPDX-License-Identifier: Apache-2.0
/// Memory of waiting events: in the queue, and in the HTTP client beyond their bodies. As counted by the
/// memory allocator, including its overhead.
///
///     Memory_bench DATA-FOLDER

#include <bench/support/MuteServer.h>
#include <bench/support/SampleEvents.h>
#include <bench/support/Table.h>

#include <vorna/core/FacadeState.h>
#include <vorna/core/VornaCoreSDK.h>
#include <vorna/device/DeviceMetadataCollector.h>
#include <vorna/events/EventData.h>
#include <vorna/events/EventListManager.h>
#include <vorna/events/VornaTask.h>

#include <malloc.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <string>
#include <thread>
#include <utility>

namespace vorna::bench {
namespace {

constexpr std::size_t events = 100'000;
constexpr double mostBytesPerQueuedEvent = 400;
constexpr double mostBeyondTheBody = 0.15;

double bytesInUse() {
    const struct mallinfo2 info = mallinfo2();
    return static_cast<double>(info.uordblks) + static_cast<double>(info.hblkhd);
}

/// As above, once the background threads have settled.
double bytesInUseAtRest() {
    constexpr int calm = 10;
    double before = bytesInUse();
    for (int unchanged = 0; unchanged < calm;) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        const double now = bytesInUse();
        unchanged = now == before ? unchanged + 1 : 0;
        before = now;
    }
    return before;
}

double bytesPerQueuedEvent() {
    recordSample(0);
    const double before = bytesInUseAtRest();
    for (std::size_t index = 0; index < events; ++index) {
        recordSample(index);
    }
    return (bytesInUseAtRest() - before) / events;
}

struct InClient {
    double body = 0;
    double beyond = 0;
};

std::optional<InClient> bytesPerWaitingRequest(const Platform& platform, const std::string& url) {
    const std::optional<URL> address = URL::parse(url + "/v1/event");
    FacadeState state;
    state.setAppID("bench");
    state.setAdid("1c9a6c3f-7b1d-4f0e-9a52-9d4d7f6f0b21");
    state.setIdentity("01HZX4T2M9V6QK3W8C5Y7N0B1D", 1'767'225'600);
    DeviceMetadataCollector collector(platform.system, platform.clock);

    double bodies = 0;
    const auto start = [&](std::size_t index) {
        const SampleEvent sample = sampleEvent(index);
        const std::uint64_t now = wholeSeconds(platform.clock->now());
        json::Encoded encoded =
            encode(EventData{std::string(sample.name), now, now, std::string(sample.customValue.value_or("")),
                             collector.collect(state.description())});
        if (!encoded) {
            return false;
        }
        std::string* const body = &*encoded;
        bodies += static_cast<double>(body->size());
        platform.httpClient->start(HttpRequest{.url = *address,
                                               .method = HttpMethod::post,
                                               .headers = {{"Content-Type", "application/json"}},
                                               .body = std::move(*body),
                                               .timeout = std::chrono::hours(1)},
                                   [](const auto&, const auto&, const auto&) {});
        return true;
    };
    // The first few are sent, with everything libcurl needs for that; the rest wait.
    constexpr std::size_t first = 100;
    for (std::size_t index = 0; index < first; ++index) {
        if (!address || !start(index)) {
            return std::nullopt;
        }
    }
    const double before = bytesInUseAtRest();
    bodies = 0;
    for (std::size_t index = 0; index < events; ++index) {
        if (!start(index)) {
            return std::nullopt;
        }
    }
    const double body = bodies / events;
    return InClient{body, (bytesInUseAtRest() - before) / events - body};
}

double bytesPerListedEvent() {
    EventListManager list;
    const double before = bytesInUse();
    for (std::size_t index = 0; index < events; ++index) {
        const SampleEvent sample = sampleEvent(index);
        list.append({std::string(sample.name), std::string(sample.customValue.value_or(""))});
    }
    return (bytesInUse() - before) / events;
}

int measure(const std::string& dataFolder) {
    const MuteServer server;
    PlatformOptions options = sampleOptions(dataFolder);
    options.serviceURL = server.url();
    const Platform platform = makePlatform(options);
    VornaCoreSDK::UsePlatform(platform);

    const double queued = bytesPerQueuedEvent();
    const std::optional<InClient> waiting = bytesPerWaitingRequest(platform, server.url());
    if (!waiting) {
        std::cerr << "the requests could not be made\n";
        return EXIT_FAILURE;
    }
    const double listed = bytesPerListedEvent();

    Table table("Memory, in bytes per event", {"what", "bytes", "target", ""});
    table.row({"in the queue, device record included", number(queued),
               "at most " + number(mostBytesPerQueuedEvent), atMost(queued, mostBytesPerQueuedEvent)});
    table.row({"   of which the task itself", number(sizeof(VornaTask)), "", ""});
    table.row({"in the HTTP client: body", number(waiting->body), "", ""});
    table.row({"in the HTTP client: beyond the body", number(waiting->beyond), "", ""});
    table.row({"   relative to the body", number(100 * waiting->beyond / waiting->body, 1) + " %",
               "at most " + number(100 * mostBeyondTheBody) + " %",
               atMost(waiting->beyond / waiting->body, mostBeyondTheBody)});
    table.row({"in the event list, permanently", number(listed), "", ""});
    table.remark("Averaged over " + number(events) + " events, as counted by the memory allocator.");
    table.print();
    return EXIT_SUCCESS;
}

}  // namespace
}  // namespace vorna::bench

int main(int count, char** arguments) {
    if (count != 2) {
        std::cerr << "Usage: Memory_bench DATA-FOLDER\n";
        return EXIT_FAILURE;
    }
    return vorna::bench::measure(arguments[1]);
}
