// SPDX-License-Identifier: Apache-2.0
/// A host that exits in the middle of its work, in the way given by its arguments:
///
///     leaving_host SERVICE CA DATA WAY EVENTS MICROSECONDS [GRACE]
///
/// It initialises the library, with a grace of that many milliseconds, becomes active, records that many
/// events from two threads, waits that long, and exits with status 7, which nothing else uses. Last it prints
/// how long that took.

#include <vorna/core/VornaCoreSDK.h>

#include <chrono>
#include <cstdio>
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

std::chrono::steady_clock::time_point leavingSince;

/// Registered before the library's own handlers, and so called after them.
void tellHowLongItTook() {
    const auto time = std::chrono::steady_clock::now() - leavingSince;
    std::printf("left after %lld ms\n",
                static_cast<long long>(std::chrono::duration_cast<std::chrono::milliseconds>(time).count()));
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 7 && count != 8) {
        return 2;
    }
    vorna::PlatformOptions options;
    options.serviceURL = arguments[1];
    options.certificateAuthorityFile = arguments[2];
    options.dataDirectory = arguments[3];
    options.credentialStore = vorna::CredentialStoreKind::file;
    if (count == 8) {
        options.exitGrace = std::chrono::milliseconds(std::atoi(arguments[7]));
    }
    const std::string_view way = arguments[4];
    const int events = std::atoi(arguments[5]);
    const int microseconds = std::atoi(arguments[6]);

    static_cast<void>(std::atexit(tellHowLongItTook));
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
    vorna::NotificationCenter::defaultCenter().post(vorna::UIApplicationDidBecomeActiveNotification);
    const auto record = [events] {
        for (int number = 0; number < events / 2; ++number) {
            vorna::VornaCoreSDK::Event("leaving", std::to_string(number));
        }
    };
    std::thread other(record);
    record();
    if (way == "exit-while-recording") {
        other.detach();
        leavingSince = std::chrono::steady_clock::now();
        std::exit(properExit);  // NOLINT(concurrency-mt-unsafe): that is what is tested
    }
    other.join();
    std::this_thread::sleep_for(std::chrono::microseconds(microseconds));
    leavingSince = std::chrono::steady_clock::now();
    if (way == "resign") {
        vorna::NotificationCenter::defaultCenter().post(vorna::UIApplicationWillResignActiveNotification);
        return properExit;
    }
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
