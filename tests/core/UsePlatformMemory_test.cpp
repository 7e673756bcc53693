// SPDX-License-Identifier: Apache-2.0
/// Runs out of memory while the host chooses its platform. This file replaces the allocation functions of the
/// whole program, so it is a separate program.

#include <vorna/core/SharedInstance.h>
#include <vorna/core/VornaCoreSDK.h>

#include <tests/support/ForkedProcess.h>
#include <tests/support/ProcessVariables.h>
#include <tests/support/TemporaryFolder.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <new>
#include <string>
#include <utility>

namespace {

/// How many allocations of this thread succeed before one fails.
thread_local int allocationsLeft = std::numeric_limits<int>::max();

/// Ends the scarcity; true if an allocation has failed.
bool hasFailed() {
    return std::exchange(allocationsLeft, std::numeric_limits<int>::max()) == std::numeric_limits<int>::max();
}

}  // namespace

void* operator new(std::size_t size) {
    if (allocationsLeft != std::numeric_limits<int>::max() && allocationsLeft-- == 0) {
        allocationsLeft = std::numeric_limits<int>::max();
        throw std::bad_alloc();
    }
    void* const memory = std::malloc(size == 0 ? 1 : size);  // NOLINT(cppcoreguidelines-no-malloc)
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

void operator delete(void* memory) noexcept {
    std::free(memory);  // NOLINT(cppcoreguidelines-no-malloc)
}

void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);  // NOLINT(cppcoreguidelines-no-malloc)
}

namespace vorna {
namespace {

constexpr int keptWhole = 10;
constexpr int refused = 11;
constexpr int neverFailed = 12;

/// Runs in a process of its own, which has one instance.
int choose(const std::filesystem::path& folder, int allocation) {
    support::setVariable("HOME", (folder / "home").string());
    support::unsetVariable("XDG_DATA_HOME");
    support::unsetVariable("XDG_RUNTIME_DIR");
    support::setVariable("DBUS_SESSION_BUS_ADDRESS", "unix:path=/none");
    support::setVariable("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/none");
    PlatformOptions options;
    options.serviceURL = "http://127.0.0.1:1/a/path/that/does/not/fit/into/a/small/string";
    options.dataDirectory = folder / "data";
    options.bundleIdentifier = "com.example.an.application.with.a.long.name";
    options.credentialStore = CredentialStoreKind::file;

    allocationsLeft = allocation;
    const Platform platform = makePlatform(options);
    VornaCoreSDK::UsePlatform(platform);
    if (!hasFailed()) {
        return neverFailed;
    }
    VornaCoreSDK::Init("app");
    if (!VornaCoreSDK::GetAppID()) {
        return refused;
    }
    const bool isWhole = SharedInstance::get().platform.eventURL == options.serviceURL + "/v1/event" &&
                         SharedInstance::get().platform.configURL == options.serviceURL + "/v1/config" &&
                         std::filesystem::exists(options.dataDirectory);
    return isWhole ? keptWhole : EXIT_FAILURE;
}

TEST(UsePlatform, IsKeptWholeOrRefusedWhenMemoryRunsOut) {
    int kept = 0;
    int notUsed = 0;
    int outcome = EXIT_SUCCESS;
    for (int allocation = 0; outcome != neverFailed; ++allocation) {
        const support::TemporaryFolder folder;
        std::filesystem::create_directory(folder.path() / "home");
        support::ForkedProcess host(
            [&](const std::string& /*message*/) { return choose(folder.path(), allocation); });
        host.start();
        outcome = host.wait();
        kept += outcome == keptWhole ? 1 : 0;
        notUsed += outcome == refused ? 1 : 0;
        ASSERT_TRUE(outcome == keptWhole || outcome == refused || outcome == neverFailed)
            << "allocation " << allocation << " ended in " << outcome;
        EXPECT_TRUE(std::filesystem::is_empty(folder.path() / "home")) << "allocation " << allocation;
    }
    EXPECT_GT(notUsed, 10);
    RecordProperty("kept", kept);
    RecordProperty("refused", notUsed);
}

TEST(UsePlatform, MaySucceedAfterItHasFailed) {
    const support::TemporaryFolder folder;
    PlatformOptions options;
    options.serviceURL = "http://127.0.0.1:1";
    options.dataDirectory = folder.path() / "data";
    options.credentialStore = CredentialStoreKind::file;
    VornaCoreSDK::UsePlatform(unusablePlatform());
    VornaCoreSDK::UsePlatform(makePlatform(options));
    VornaCoreSDK::Init("app");
    EXPECT_EQ(VornaCoreSDK::GetAppID(), "app");
}

TEST(UsePlatform, ThatIsUnusableIsToldByEachOperation) {
    VornaCoreSDK::UsePlatform(unusablePlatform());
    VornaCoreSDK::debug = true;
    testing::internal::CaptureStdout();
    VornaCoreSDK::Init("app");
    VornaCoreSDK::Event("a");
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "[VornaSDK] Init has failed: the platform that the application wants could not be made\n"
              "[VornaSDK] Event has failed: the platform that the application wants could not be made\n");
    EXPECT_FALSE(VornaCoreSDK::GetUserID());
}

}  // namespace
}  // namespace vorna
