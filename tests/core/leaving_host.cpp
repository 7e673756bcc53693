// SPDX-License-Identifier: Apache-2.0
/// A host that exits in the middle of its work, in the way given by its arguments:
///
///     leaving_host SERVICE CA DATA WAY EVENTS MICROSECONDS
///
/// It initialises the library, records that many events from two threads, waits that long, and exits with
/// status 7, which nothing else uses.

#include <vorna/core/VornaCoreSDK.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <string_view>
#include <thread>

namespace {

constexpr int properExit = 7;

/// A static of the host, which an observer uses. It is destroyed while the library's threads may still run.
struct Tally {
    std::string text = std::string(64, 'x');

    ~Tally() { text.assign(64, '!'); }
};

Tally& tally() {
    static Tally value;
    return value;
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 7) {
        return 2;
    }
    vorna::PlatformOptions options;
    options.serviceURL = arguments[1];
    options.certificateAuthorityFile = arguments[2];
    options.dataDirectory = arguments[3];
    options.credentialStore = vorna::CredentialStoreKind::file;
    const std::string_view way = arguments[4];
    const int events = std::atoi(arguments[5]);
    const int microseconds = std::atoi(arguments[6]);

    static_cast<void>(tally());
    vorna::VornaCoreSDK::UsePlatform(vorna::makePlatform(options));
    vorna::NotificationCenter::defaultCenter()
        .addObserver(vorna::VornaCoreSDK::EventListUpdated,
                     [](const vorna::Notification&) {
                         if (tally().text.front() != 'x') {
                             std::abort();
                         }
                     })
        .keepForever();
    vorna::VornaCoreSDK::Init("leaving-host");
    const auto record = [events] {
        for (int number = 0; number < events / 2; ++number) {
            vorna::VornaCoreSDK::Event("leaving", std::to_string(number));
        }
    };
    std::thread other(record);
    record();
    if (way == "exit-while-recording") {
        other.detach();
        std::exit(properExit);  // NOLINT(concurrency-mt-unsafe): that is what is tested
    }
    other.join();
    std::this_thread::sleep_for(std::chrono::microseconds(microseconds));
    if (way == "return") {
        return properExit;
    }
    if (way == "exit-from-a-thread") {
        std::thread([] { std::exit(properExit); }).join();  // NOLINT(concurrency-mt-unsafe)
    }
    if (way == "exit-from-an-observer") {
        vorna::NotificationCenter::defaultCenter()
            .addObserver(vorna::VornaCoreSDK::EventListUpdated,
                         [](const vorna::Notification&) { std::exit(properExit); })  // NOLINT
            .keepForever();
        vorna::VornaCoreSDK::Event("the_last");
        std::this_thread::sleep_for(std::chrono::minutes(1));
    }
    std::exit(properExit);  // NOLINT(concurrency-mt-unsafe)
}
