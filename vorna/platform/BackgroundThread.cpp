// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/BackgroundThread.h>

#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <system_error>
#include <utility>

namespace vorna {

std::optional<std::thread> startBackgroundThread(const char* name, ThreadPriority priority,
                                                 std::function<void()> function) {
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    // A fault of our own is for the host's crash reporter to see.
    for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGABRT}) {
        sigdelset(&all, fault);
    }
    // The new thread inherits the mask, so no other signal can slip in before it blocks them itself. SIGPIPE
    // is among them: a peer that closes early is an error code for us, not the end of the host.
    pthread_sigmask(SIG_SETMASK, &all, &before);
    std::optional<std::thread> thread;
    try {
        thread.emplace([name, priority, function = std::move(function)] {
            pthread_setname_np(pthread_self(), name);
            if (priority == ThreadPriority::low) {
                // On Linux a thread has a nice value of its own.
                constexpr int lowered = 10;
                setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), lowered);
            }
            function();
        });
    } catch (const std::system_error&) {
        thread.reset();
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return thread;
}

}  // namespace vorna
