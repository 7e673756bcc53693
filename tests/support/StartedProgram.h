// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A program that a test starts, hears, and ends.

#include <vorna/platform/FileDescriptor.h>

#include <sys/types.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorna::support {

/// Runs from the constructor on, and no longer than this object or the test's process.
///
/// Its standard output is read only by the functions below, so a program that says thousands of lines
/// meanwhile waits for its reader.
class StartedProgram {
  public:
    /// The program's path, or its name where that is enough to find it, and its arguments. Of the test's
    /// environment it sees all but `withoutVariables`.
    explicit StartedProgram(std::vector<std::string> words,
                            const std::vector<std::string>& withoutVariables = {});
    StartedProgram(const StartedProgram&) = delete;
    StartedProgram& operator=(const StartedProgram&) = delete;
    StartedProgram(StartedProgram&&) = delete;
    StartedProgram& operator=(StartedProgram&&) = delete;
    ~StartedProgram();

    /// The next line of its output that contains `text`. Absent when the output ends first, or nothing comes
    /// for a time that is long enough for anything.
    [[nodiscard]] std::optional<std::string> waitForLine(std::string_view text);

    struct End {
        int status = -1;      ///< exit status, or minus the signal that killed it
        std::string output;   ///< what was left of standard output
        std::string problem;  ///< all of standard error
    };

    /// Sends it `signal` (0: none) and waits for its end; kills it when it says nothing for too long.
    [[nodiscard]] End end(int signal = 0);

  private:
    [[nodiscard]] bool readMore();
    [[nodiscard]] int wait();

    pid_t process_ = -1;
    FileDescriptor output_;
    FileDescriptor problems_;
    std::string unread_;
};

}  // namespace vorna::support
