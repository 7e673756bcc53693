// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <tests/support/StartedProgram.h>

#include <string>
#include <vector>

namespace vorna::devserver {

/// The real program, started for one test on a free port.
///
/// Its output is not read in the meantime, so a test that causes thousands of lines passes --quiet.
class DevServerProcess : public support::StartedProgram {
  public:
    /// Starts it on any free port unless the arguments name one.
    explicit DevServerProcess(const std::vector<std::string>& arguments);

    /// Its address, from its first line; empty if it does not listen.
    [[nodiscard]] const std::string& url() const { return url_; }

    [[nodiscard]] int port() const;

  private:
    std::string url_;
};

}  // namespace vorna::devserver
