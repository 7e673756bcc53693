// SPDX-License-Identifier: Apache-2.0
/// A host to which the system refuses threads while it initialises the library:
///
///     refused_host SERVICE DATA
///
/// It records "refused" while it may have no threads and "allowed" when it may have them again, prints the
/// names of its threads once all of the library's run, and waits to be ended.

#include <vorna/core/VornaCoreSDK.h>

#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <set>
#include <string>
#include <system_error>
#include <thread>

namespace {

constexpr uid_t nobody = 65534;

/// Sets the number of the user's processes and threads at which the system refuses another.
bool limitThreads(rlim_t most) {
    rlimit limit{};
    if (getrlimit(RLIMIT_NPROC, &limit) != 0) {
        return false;
    }
    limit.rlim_cur = most < limit.rlim_max ? most : limit.rlim_max;
    return setrlimit(RLIMIT_NPROC, &limit) == 0;
}

bool canStartThread() {
    try {
        std::thread([] {}).join();
        return true;
    } catch (const std::system_error&) {
        return false;
    }
}

std::set<std::string> threadNames() {
    std::set<std::string> names;
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::string name;
        std::getline(std::ifstream(task.path() / "comm"), name);
        names.insert(name);
    }
    return names;
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 3) {
        return 2;
    }
    // The limit does not apply to root.
    if (geteuid() == 0 && setuid(nobody) != 0) {
        return 3;
    }
    if (!limitThreads(0) || canStartThread()) {
        return 4;
    }
    vorna::PlatformOptions options;
    options.serviceURL = arguments[1];
    options.dataDirectory = arguments[2];
    options.credentialStore = vorna::CredentialStoreKind::automatic;
    vorna::VornaCoreSDK::UsePlatform(vorna::makePlatform(options));
    vorna::VornaCoreSDK::Init("refused-host");
    vorna::VornaCoreSDK::Event("refused");
    if (threadNames().size() != 1 || !limitThreads(RLIM_INFINITY)) {
        return 5;
    }
    vorna::VornaCoreSDK::Event("allowed");
    const std::set<std::string> expected{"vorna-worker", "vorna-http", "vorna-system"};
    std::set<std::string> found;
    while (found.size() < expected.size()) {
        found.clear();
        for (const std::string& name : threadNames()) {
            if (expected.contains(name)) {
                found.insert(name);
            }
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    std::cout << "all threads run" << std::endl;
    for (;;) {
        pause();
    }
}
