// SPDX-License-Identifier: Apache-2.0
#include <bench/support/ChildProcess.h>

#include <bench/support/Stopwatch.h>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <system_error>

namespace vorna::bench {

namespace {

void check(int error, const char* what) {
    if (error != 0) {
        throw std::system_error(error, std::generic_category(), what);
    }
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> all;
    all.reserve(texts.size() + 1);
    for (std::string& text : texts) {
        all.push_back(text.data());
    }
    all.push_back(nullptr);
    return all;
}

}  // namespace

std::vector<std::string> ownEnvironment() {
    std::vector<std::string> variables;
    for (char** variable = environ; *variable != nullptr; ++variable) {
        variables.emplace_back(*variable);
    }
    return variables;
}

ChildResult runSelf(const std::vector<std::string>& arguments, const std::vector<std::string>& environment) {
    constexpr const char* self = "/proc/self/exe";
    std::vector<std::string> texts = {self};
    texts.insert(texts.end(), arguments.begin(), arguments.end());
    std::vector<std::string> variables = environment;

    std::array<int, 2> pipe{};
    check(pipe2(pipe.data(), O_CLOEXEC) == 0 ? 0 : errno, "pipe2");
    posix_spawn_file_actions_t actions;
    check(posix_spawn_file_actions_init(&actions), "posix_spawn_file_actions_init");
    check(posix_spawn_file_actions_adddup2(&actions, pipe[1], STDOUT_FILENO), "adddup2");
    pid_t child = 0;
    const int error =
        posix_spawn(&child, self, &actions, nullptr, pointers(texts).data(), pointers(variables).data());
    posix_spawn_file_actions_destroy(&actions);
    close(pipe[1]);
    if (error != 0) {
        close(pipe[0]);
        check(error, "posix_spawn");
    }
    ChildResult result;
    std::array<char, 4096> buffer{};
    for (ssize_t count = 0; (count = read(pipe[0], buffer.data(), buffer.size())) > 0;) {
        result.output.append(buffer.data(), static_cast<std::size_t>(count));
    }
    close(pipe[0]);
    int status = 0;
    waitpid(child, &status, 0);
    result.ended = nanosecondsNow();
    result.succeeded = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    return result;
}

}  // namespace vorna::bench
