// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Runs this same program again, as a fresh process with an environment of its own, and hears what it says.

#include <cstdint>
#include <string>
#include <vector>

namespace vorna::bench {

struct ChildResult {
    /// Standard output, whole.
    std::string output;
    /// When the process was found to have ended; see nanosecondsNow().
    std::int64_t ended = 0;
    /// True when it returned 0 from main.
    bool succeeded = false;
};

/// The variables ("NAME=value") are all of the environment. Throws std::system_error when no process can be
/// made.
ChildResult runSelf(const std::vector<std::string>& arguments, const std::vector<std::string>& environment);

/// The variables of this process.
std::vector<std::string> ownEnvironment();

}  // namespace vorna::bench
