// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <tests/support/StartedProgram.h>

#include <string>
#include <vector>

namespace vorna::devserver {

/// The real program, started for one test on a free port.
//
/// Nobody reads its lines meanwhile, so a test that causes thousands of them passes --quiet.
class DevServerProcess : public support::StartedProgram {
  public:
    /// Starts it with `arguments`, on any free port unless they name one. Whether it listens shows in url().
    explicit DevServerProcess(const std::vector<std::string>& arguments);

    /// Where it listens, from its first line; empty when it ended without saying so.
    [[nodiscard]] const std::string& url() const { return url_; }

    [[nodiscard]] int port() const;

  private:
    std::string url_;
};

}  // namespace vorna::devserver
