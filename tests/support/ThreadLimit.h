// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A limit to the number of threads, as a system has it. Replaces pthread_create for the whole program, so
/// include it in one source file of the program only.

#include <dlfcn.h>
#include <pthread.h>

#include <atomic>
#include <cerrno>
#include <memory>

namespace vorna::support {

/// How many threads there may be besides those that were started before.
inline std::atomic<int> threadLimit = 1'000'000;
inline std::atomic<int> threadCount = 0;
inline std::atomic<int> refusedThreads = 0;

struct CountedStart {
    void* (*run)(void*);
    void* argument;
};

inline void* runCounted(void* start) {
    const std::unique_ptr<CountedStart> counted(static_cast<CountedStart*>(start));
    void* const result = counted->run(counted->argument);
    --threadCount;
    return result;
}

}  // namespace vorna::support

// NOLINTNEXTLINE(misc-definitions-in-headers): stands for the C library's function
extern "C" __attribute__((visibility("default"))) int pthread_create(pthread_t* thread,
                                                                     const pthread_attr_t* attributes,
                                                                     void* (*run)(void*),
                                                                     void* argument) noexcept {
    using namespace vorna::support;
    using Create = int (*)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
    static const auto real = reinterpret_cast<Create>(dlsym(RTLD_NEXT, "pthread_create"));
    if (++threadCount > threadLimit) {
        --threadCount;
        ++refusedThreads;
        return EAGAIN;
    }
    auto start = std::make_unique<CountedStart>(CountedStart{run, argument});
    const int error = real(thread, attributes, runCounted, start.get());
    if (error != 0) {
        --threadCount;
        return error;
    }
    start.release();  // NOLINT(bugprone-unused-return-value): the thread's own now
    return 0;
}
