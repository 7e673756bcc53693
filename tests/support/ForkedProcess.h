// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A second process, for tests in which two processes interact. It is a fork of the test, so create it before
/// the test has any threads: neither GLib nor the sanitizers tolerate anything else.

#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fcntl.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <utility>

namespace vorna::support {

/// Waits to be started, runs the function, and passes its result to `exit`. Killed by the destructor if it is
/// still running.
class ForkedProcess {
  public:
    /// The function receives the message passed to `start`.
    explicit ForkedProcess(const std::function<int(const std::string& message)>& function) {
        std::array<int, 2> pipe{};
        if (pipe2(pipe.data(), O_CLOEXEC) != 0) {
            std::abort();
        }
        // Otherwise both processes would flush the same buffers.
        std::fflush(nullptr);
        process_ = fork();
        if (process_ == 0) {
            close(pipe[1]);
            const std::string message = readAll(pipe[0]);
            close(pipe[0]);
            std::exit(function(message));  // NOLINT(concurrency-mt-unsafe): the process just created
        }
        close(pipe[0]);
        starter_ = pipe[1];
    }

    ForkedProcess(const ForkedProcess&) = delete;
    ForkedProcess& operator=(const ForkedProcess&) = delete;
    ForkedProcess(ForkedProcess&&) = delete;
    ForkedProcess& operator=(ForkedProcess&&) = delete;

    ~ForkedProcess() {
        kill();
        closeStarter();
        wait();
    }

    /// The message must be short. Returns immediately.
    void start(const std::string& message = {}) {
        if (!message.empty() && write(starter_, message.data(), message.size()) < 0) {
            std::abort();
        }
        closeStarter();
    }

    void kill() const {
        if (process_ > 0) {
            ::kill(process_, SIGKILL);
        }
    }

    bool hasEnded() const {
        siginfo_t information{};
        return process_ <= 0 ||
               (waitid(P_PID, static_cast<id_t>(process_), &information, WEXITED | WNOHANG | WNOWAIT) == 0 &&
                information.si_pid == process_);
    }

    /// Waits for the process. Returns its exit status, or -1 if a signal killed it.
    int wait() {
        int status = 0;
        if (process_ > 0) {
            while (waitpid(process_, &status, 0) < 0 && errno == EINTR) {
            }
            process_ = -1;
            result_ = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        }
        return result_;
    }

  private:
    static std::string readAll(int from) {
        std::string text;
        std::array<char, 4096> chunk{};
        ssize_t count = 0;
        while ((count = read(from, chunk.data(), chunk.size())) > 0) {
            text.append(chunk.data(), static_cast<std::size_t>(count));
        }
        return text;
    }

    void closeStarter() {
        if (const int starter = std::exchange(starter_, -1); starter >= 0) {
            close(starter);
        }
    }

    pid_t process_ = -1;
    int starter_ = -1;
    int result_ = -1;
};

}  // namespace vorna::support
