// SPDX-License-Identifier: Apache-2.0
/// Runs out of memory on the client's thread. This file replaces the allocation functions of the whole
/// program, so it is a separate program.

#include <vorna/platform/curl/CurlHttpClient.h>

#include <tests/support/RawServer.h>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <limits>
#include <mutex>
#include <new>
#include <string>

namespace {

/// How many allocations of this thread succeed before one fails.
thread_local int allocationsLeft = std::numeric_limits<int>::max();

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

using support::RawServer;

/// Counts without allocating.
struct Counts {
    std::mutex mutex;
    std::condition_variable changed;
    std::array<int, 8> completions{};
    int succeeded = 0;
    int failed = 0;

    void count(std::size_t request, bool hasSucceeded) {
        const std::scoped_lock lock(mutex);
        ++completions[request];
        ++(hasSucceeded ? succeeded : failed);
        changed.notify_all();
    }

    bool waitFor(int total) {
        std::unique_lock lock(mutex);
        return changed.wait_for(lock, std::chrono::minutes(2), [&] { return succeeded + failed >= total; });
    }
};

HttpRequest to(const std::string& url) {
    return {.url = URL::parse(url).value(), .headers = {}, .body = {}};
}

TEST(HttpClientOutOfMemory, EndsTheRequestAffectedAndNoOther) {
    const RawServer server([](RawServer::Connection& connection) {
        while (!connection.readRequest().empty()) {
            connection.send(
                "HTTP/1.1 200 OK\r\nX-Header-That-Is-Long-Enough: to need memory of its own, certainly\r\n"
                "Content-Length: 40\r\n\r\n0123456789012345678901234567890123456789");
        }
    });
    int failures = 0;
    constexpr int allocations = 120;
    for (int number = 0; number < allocations; ++number) {
        Counts counts;
        {
            CurlHttpClient client("");
            const auto start = [&](std::size_t request) {
                client.start(to(server.url("/" + std::to_string(request))),
                             [&counts, request](const auto& body, const auto&, const auto& error) {
                                 counts.count(request, body && !error);
                             });
            };
            // The first completion arms the failure on the client's thread.
            client.start(to(server.url("/")), [&](const auto& body, auto&&, auto&&) {
                allocationsLeft = number;
                counts.count(0, body.has_value());
            });
            ASSERT_TRUE(counts.waitFor(1));
            constexpr std::size_t refused = 1;
            client.start(to("ftp://127.0.0.1/"), [&counts](const auto& body, const auto&, const auto& error) {
                counts.count(refused, body && !error);
            });
            for (std::size_t request = refused + 1; request < counts.completions.size(); ++request) {
                start(request);
            }
            EXPECT_TRUE(counts.waitFor(static_cast<int>(counts.completions.size())));
            // A partial set-up for one request does not prevent the next.
            EXPECT_GE(counts.succeeded, static_cast<int>(counts.completions.size()) - 2) << number;
        }
        for (const int completions : counts.completions) {
            EXPECT_EQ(completions, 1) << number;
        }
        failures += counts.failed;
    }
    EXPECT_GT(failures, allocations + 5) << "no allocation has failed";
}

}  // namespace
}  // namespace vorna
