#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <tests/tools/preview/PreviewProcess.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <utility>

namespace vorna::preview {

PreviewProcess::PreviewProcess(const std::vector<std::string>& arguments, Display display) {
    std::array<int, 2> pipe{};
    if (::pipe2(pipe.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe");
    }
    output_ = devserver::FileDescriptor(pipe[0]);
    devserver::FileDescriptor writing(pipe[1]);
    problems_ = devserver::FileDescriptor(::memfd_create("standard error", MFD_CLOEXEC));

    std::vector<std::string> words{VORNA_PREVIEW_PATH};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    for (std::string& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);

    process_ = ::fork();
    if (process_ < 0) {
        throw std::runtime_error("no process");
    }
    if (process_ == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (display == Display::none) {
            for (const char* const variable :
                 {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "QT_QUICK_BACKEND", "QT_SCALE_FACTOR"}) {
                ::unsetenv(variable);
            }
        }
        ::dup2(writing.number(), STDOUT_FILENO);
        ::dup2(problems_.number(), STDERR_FILENO);
        ::execv(pointers.front(), pointers.data());
        ::_exit(127);
    }
}

PreviewProcess::~PreviewProcess() {
    if (process_ > 0) {
        ::kill(process_, SIGKILL);
        ::waitpid(process_, nullptr, 0);
    }
}

bool PreviewProcess::readMore() {
    constexpr int patienceMilliseconds = 60'000;
    pollfd waiting{output_.number(), POLLIN, 0};
    std::array<char, 4096> buffer{};
    if (::poll(&waiting, 1, patienceMilliseconds) <= 0) {
        return false;
    }
    const ssize_t count = ::read(output_.number(), buffer.data(), buffer.size());
    if (count <= 0) {
        return false;
    }
    unread_.append(buffer.data(), static_cast<std::size_t>(count));
    return true;
}

std::optional<std::string> PreviewProcess::waitForLine(std::string_view text) {
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

PreviewProcess::End PreviewProcess::end() {
    while (readMore()) {
    }
    // The output ends with the program. If it only fell silent the program hangs, and is killed to show so.
    if (pollfd state{output_.number(), POLLIN, 0}; ::poll(&state, 1, 0) == 0) {
        ::kill(process_, SIGKILL);
    }
    End end;
    int status = 0;
    ::waitpid(process_, &status, 0);
    process_ = -1;
    end.status = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    end.output = std::exchange(unread_, {});

    std::array<char, 4096> buffer{};
    ::lseek(problems_.number(), 0, SEEK_SET);
    for (ssize_t count = 0; (count = ::read(problems_.number(), buffer.data(), buffer.size())) > 0;) {
        end.problem.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return end;
}

PreviewProcess::End run(const std::vector<std::string>& arguments) {
    return PreviewProcess(arguments, Display::none).end();
}

}  // namespace vorna::preview
