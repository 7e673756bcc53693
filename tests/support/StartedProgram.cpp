// SPDX-License-Identifier: Apache-2.0
#include <tests/support/StartedProgram.h>

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <stdexcept>
#include <utility>

namespace vorna::support {

namespace {

std::vector<char*> environmentWithout(const std::vector<std::string>& variables) {
    std::vector<char*> kept;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string_view text = *entry;
        if (std::ranges::find(variables, text.substr(0, text.find('='))) == variables.end()) {
            kept.push_back(*entry);
        }
    }
    kept.push_back(nullptr);
    return kept;
}

}  // namespace

StartedProgram::StartedProgram(std::vector<std::string> words,
                               const std::vector<std::string>& withoutVariables) {
    std::array<int, 2> pipe{};
    if (pipe2(pipe.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe");
    }
    output_ = FileDescriptor(pipe[0]);
    // Closed here, so that the pipe ends when the program does.
    const FileDescriptor writing(pipe[1]);
    problems_ = FileDescriptor(memfd_create("standard error", MFD_CLOEXEC));

    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (std::string& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    const std::vector<char*> environment = environmentWithout(withoutVariables);

    const pid_t parent = getpid();
    process_ = fork();
    if (process_ < 0) {
        throw std::runtime_error("no process");
    }
    if (process_ == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (getppid() == parent && dup2(writing.number(), STDOUT_FILENO) >= 0 &&
            dup2(problems_.number(), STDERR_FILENO) >= 0) {
            execvpe(pointers.front(), pointers.data(), environment.data());
        }
        _exit(127);
    }
}

StartedProgram::~StartedProgram() {
    if (process_ > 0) {
        kill(process_, SIGKILL);
        (void)wait();
    }
}

int StartedProgram::wait() {
    int status = 0;
    while (waitpid(process_, &status, 0) < 0 && errno == EINTR) {
    }
    process_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

bool StartedProgram::readMore() {
    constexpr int patienceMilliseconds = 60'000;
    pollfd waiting{output_.number(), POLLIN, 0};
    std::array<char, 4096> buffer{};
    if (poll(&waiting, 1, patienceMilliseconds) <= 0) {
        return false;
    }
    const ssize_t count = read(output_.number(), buffer.data(), buffer.size());
    if (count <= 0) {
        return false;
    }
    unread_.append(buffer.data(), static_cast<std::size_t>(count));
    return true;
}

std::optional<std::string> StartedProgram::waitForLine(std::string_view text) {
    while (true) {
        const std::size_t end = unread_.find('\n');
        if (end == std::string::npos) {
            if (!readMore()) {
                return std::nullopt;
            }
            continue;
        }
        std::string line = unread_.substr(0, end);
        unread_.erase(0, end + 1);
        if (line.find(text) != std::string::npos) {
            return line;
        }
    }
}

StartedProgram::End StartedProgram::end(int signal) {
    if (signal != 0) {
        kill(process_, signal);
    }
    while (readMore()) {
    }
    // The pipe ends with the program. If it has only gone silent, the program hangs and is killed, which its
    // status shows.
    if (pollfd state{output_.number(), POLLIN, 0}; poll(&state, 1, 0) == 0) {
        kill(process_, SIGKILL);
    }
    End end;
    end.status = wait();
    end.output = std::exchange(unread_, {});

    std::array<char, 4096> buffer{};
    lseek(problems_.number(), 0, SEEK_SET);
    for (ssize_t count = 0; (count = read(problems_.number(), buffer.data(), buffer.size())) > 0;) {
        end.problem.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return end;
}

}  // namespace vorna::support
