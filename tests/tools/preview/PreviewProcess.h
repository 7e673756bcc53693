#pragma once

#include <sys/types.h>
#include <tools/devserver/FileDescriptor.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorna::preview {

enum class Display { none, ofTheTest };

// The real program, ended with this object at the latest.
class PreviewProcess {
  public:
    explicit PreviewProcess(const std::vector<std::string>& arguments, Display display);
    PreviewProcess(const PreviewProcess&) = delete;
    PreviewProcess(PreviewProcess&&) = delete;
    PreviewProcess& operator=(const PreviewProcess&) = delete;
    PreviewProcess& operator=(PreviewProcess&&) = delete;
    ~PreviewProcess();

    // The next line of its output that contains `text`. Absent when the output ends first, or nothing comes
    // for a time that is long enough for anything.
    [[nodiscard]] std::optional<std::string> waitForLine(std::string_view text);

    struct End {
        int status = -1;      // exit status, or minus the signal that killed it
        std::string output;   // what was left of standard output
        std::string problem;  // all of standard error
    };

    // Waits until it ends by itself; kills it when it says nothing for too long.
    [[nodiscard]] End end();

  private:
    [[nodiscard]] bool readMore();

    pid_t process_ = -1;
    devserver::FileDescriptor output_;
    devserver::FileDescriptor problems_;
    std::string unread_;
};

// Runs it to its end without a display.
[[nodiscard]] PreviewProcess::End run(const std::vector<std::string>& arguments);

}  // namespace vorna::preview
