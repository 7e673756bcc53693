// SPDX-License-Identifier: Apache-2.0
/// A host that forks:
///
///     forking_host SERVICE CA DATA load COUNT
///         records on four threads and forks that many children meanwhile, which exit, record, or initialise
///         the library and record
///     forking_host SERVICE CA DATA daemon
///         initialises the library, forks, and goes on in the child
///     forking_host SERVICE CA DATA exits COUNT
///         forks children that only exit, and prints the median of their times
///     forking_host SERVICE CA DATA bare COUNT
///         the same without having used the library
///
/// Status 7 if all went well.

#include <vorna/core/VornaCoreSDK.h>

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

// Its children have the parent's threads' memory but not their stacks, and start threads of their own.
#if defined(__SANITIZE_ADDRESS__)
extern "C" const char* __asan_default_options();  // NOLINT

extern "C" const char* __asan_default_options() {  // NOLINT
    return "detect_leaks=0";
}
#elif defined(__SANITIZE_THREAD__)
extern "C" const char* __tsan_default_options();  // NOLINT

extern "C" const char* __tsan_default_options() {  // NOLINT
    return "die_after_fork=0";
}
#endif

namespace {

using vorna::VornaCoreSDK;
using Clock = std::chrono::steady_clock;

constexpr int properExit = 7;

/// How many events this process has handed to the HTTP client.
std::atomic<int> handedOver = 0;

class CountingClient final : public vorna::HttpClient {
  public:
    explicit CountingClient(std::shared_ptr<vorna::HttpClient> client) : client_(std::move(client)) {}

    void start(vorna::HttpRequest request, Completion completion) override {
        const bool isEvent = request.url.text().ends_with("/event");
        client_->start(std::move(request), std::move(completion));
        handedOver += isEvent ? 1 : 0;
    }

  private:
    const std::shared_ptr<vorna::HttpClient> client_;
};

void usePlatform(const char* service, const char* authority, const char* data) {
    vorna::PlatformOptions options;
    options.serviceURL = service;
    options.certificateAuthorityFile = authority;
    options.dataDirectory = data;
    options.credentialStore = vorna::CredentialStoreKind::file;
    // Leaving waits for the answers, which take milliseconds.
    options.exitGrace = std::chrono::seconds(60);
    vorna::Platform platform = vorna::makePlatform(options);
    platform.httpClient = std::make_shared<CountingClient>(platform.httpClient);
    VornaCoreSDK::UsePlatform(std::move(platform));
}

void waitUntilHandedOver(int count) {
    while (handedOver < count) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

/// Waits for the child; kills it if it hangs. True if it ended with that status.
bool endsWith(int expected, pid_t child) {
    const Clock::time_point deadline = Clock::now() + std::chrono::seconds(60);
    int status = 0;
    pid_t ended = 0;
    while ((ended = waitpid(child, &status, WNOHANG)) == 0) {
        if (Clock::now() > deadline) {
            std::cout << "a child hung" << std::endl;
            kill(child, SIGKILL);
            waitpid(child, &status, 0);
            return false;
        }
        std::this_thread::sleep_for(std::chrono::microseconds(100));
    }
    if (WIFEXITED(status) && WEXITSTATUS(status) == expected) {
        return true;
    }
    std::cout << "a child ended with status " << status << std::endl;
    return false;
}

[[noreturn]] void recordInChild(int number, bool initialises) {
    handedOver = 0;
    if (initialises) {
        VornaCoreSDK::Init("forking-host");
    }
    VornaCoreSDK::Event("child", std::to_string(number));
    waitUntilHandedOver(1);
    std::exit(properExit);  // NOLINT(concurrency-mt-unsafe)
}

int forkUnderLoad(int count) {
    VornaCoreSDK::Init("forking-host");
    std::atomic<bool> ends = false;
    std::atomic<int> recorded = 0;
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([&] {
            while (!ends) {
                VornaCoreSDK::Event("parent", std::to_string(++recorded));
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            }
        });
    }
    int failures = 0;
    for (int number = 0; number < count; ++number) {
        const pid_t child = fork();
        if (child == 0) {
            if (number % 3 == 0) {
                std::exit(properExit);  // NOLINT(concurrency-mt-unsafe)
            }
            recordInChild(number, number % 3 == 1);
        }
        failures += endsWith(properExit, child) ? 0 : 1;
    }
    ends = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
    // And "sdk_initialized".
    waitUntilHandedOver(recorded + 1);
    std::cout << "recorded " << recorded << std::endl;
    return failures == 0 ? properExit : 3;
}

int goOnAsADaemon() {
    VornaCoreSDK::Init("forking-host");
    VornaCoreSDK::Event("before");
    waitUntilHandedOver(2);
    const pid_t child = fork();
    if (child != 0) {
        // Gives what is under way in the parent its time.
        std::exit(child > 0 ? properExit : 3);  // NOLINT(concurrency-mt-unsafe)
    }
    setsid();
    handedOver = 0;
    VornaCoreSDK::Event("daemon");
    waitUntilHandedOver(1);
    std::cout << "the daemon leaves" << std::endl;
    std::exit(properExit);  // NOLINT(concurrency-mt-unsafe)
}

int forkChildrenThatExit(int count) {
    std::vector<Clock::duration> times;
    for (int number = 0; number < count; ++number) {
        const Clock::time_point begin = Clock::now();
        const pid_t child = fork();
        if (child == 0) {
            std::exit(properExit);  // NOLINT(concurrency-mt-unsafe)
        }
        int status = 0;
        waitpid(child, &status, 0);
        times.push_back(Clock::now() - begin);
        if (!WIFEXITED(status) || WEXITSTATUS(status) != properExit) {
            return 3;
        }
    }
    std::sort(times.begin(), times.end());
    const auto median = times[times.size() / 2];
    std::cout << "median " << std::chrono::duration_cast<std::chrono::microseconds>(median).count() << " us"
              << std::endl;
    return properExit;
}

}  // namespace

int main(int count, char** arguments) {
    if (count < 5) {
        return 2;
    }
    const std::string_view way = arguments[4];
    const int times = count > 5 ? std::atoi(arguments[5]) : 0;
    if (way == "bare") {
        return forkChildrenThatExit(times);
    }
    usePlatform(arguments[1], arguments[2], arguments[3]);
    if (way == "load") {
        return forkUnderLoad(times);
    }
    if (way == "daemon") {
        return goOnAsADaemon();
    }
    if (way == "exits") {
        VornaCoreSDK::Init("forking-host");
        VornaCoreSDK::Event("before");
        waitUntilHandedOver(2);
        return forkChildrenThatExit(times);
    }
    return 2;
}
