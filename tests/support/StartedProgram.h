// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A child process that a test starts, reads from, and stops.

#include <vorna/platform/FileDescriptor.h>

#include <sys/types.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorna::support {

/// Runs from construction until destruction at the latest, or until the test process ends.
///
/// Only the functions below read its standard output: a program that prints thousands of lines in between
/// blocks.
class StartedProgram {
  public:
    /// The program's path, or its name if it is in $PATH, and its arguments. It inherits the test's
    /// environment except for `withoutVariables`.
    explicit StartedProgram(std::vector<std::string> words,
                            const std::vector<std::string>& withoutVariables = {});
    StartedProgram(const StartedProgram&) = delete;
    StartedProgram& operator=(const StartedProgram&) = delete;
    StartedProgram(StartedProgram&&) = delete;
    StartedProgram& operator=(StartedProgram&&) = delete;
    ~StartedProgram();

    /// The next output line that contains `text`. std::nullopt if the output ends first, or after a generous
    /// timeout.
    [[nodiscard]] std::optional<std::string> waitForLine(std::string_view text);

    struct End {
        int status = -1;      ///< exit status, or minus the signal that killed it
        std::string output;   ///< unread rest of standard output
        std::string problem;  ///< all of standard error
    };

    /// Sends `signal` (0: none) and waits for the process to end; kills it after a generous timeout.
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
