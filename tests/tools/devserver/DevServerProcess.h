#pragma once

#include <sys/types.h>
#include <tools/devserver/FileDescriptor.h>

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorna::devserver {

// The real program, started for one test on a free port and ended with it (or with the test's process, should
// that die first).
//
// Its standard output is read only by the functions below, so a test that causes thousands of lines passes
// --quiet.
class DevServerProcess {
  public:
    // Starts it with `arguments`, on any free port unless they name one. Whether it listens shows in url().
    explicit DevServerProcess(const std::vector<std::string>& arguments);
    DevServerProcess(const DevServerProcess&) = delete;
    DevServerProcess(DevServerProcess&&) = delete;
    DevServerProcess& operator=(const DevServerProcess&) = delete;
    DevServerProcess& operator=(DevServerProcess&&) = delete;
    ~DevServerProcess();

    // Where it listens, from its first line; empty when it ended without saying so.
    [[nodiscard]] const std::string& url() const { return url_; }

    [[nodiscard]] int port() const;

    // The next line of its output that contains `text`. Absent when the output ends first, or nothing comes
    // for half a minute.
    [[nodiscard]] std::optional<std::string> waitForLine(std::string_view text);

    struct End {
        int status = -1;      // exit status, or minus the signal that killed it
        std::string output;   // what was left of standard output
        std::string problem;  // all of standard error
    };

    // Sends it `signal` (0: none) and waits for its end.
    [[nodiscard]] End end(int signal);

  private:
    [[nodiscard]] bool readMore();

    pid_t process_ = -1;
    FileDescriptor output_;
    FileDescriptor problems_;
    std::string unread_;
    std::string url_;
};

}  // namespace vorna::devserver
