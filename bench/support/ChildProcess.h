// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Runs this program again as a fresh process with its own environment, and reads its output.

#include <cstdint>
#include <string>
#include <vector>

namespace vorna::bench {

struct ChildResult {
    /// All of standard output.
    std::string output;
    /// When the process was seen to have ended; see nanosecondsNow().
    std::int64_t ended = 0;
    /// True if main returned 0.
    bool succeeded = false;
};

/// `variables` ("NAME=value") is the complete environment. Throws std::system_error if no process can be
/// created.
ChildResult runSelf(const std::vector<std::string>& arguments, const std::vector<std::string>& environment);

/// This process's environment.
std::vector<std::string> ownEnvironment();

}  // namespace vorna::bench
