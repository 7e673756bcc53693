// SPDX-License-Identifier: Apache-2.0
#pragma once

/// What a process is told by those who started it, as functions, so that tests need not change their own.

#include <functional>
#include <optional>
#include <string>

namespace vorna {

struct Environment {
    /// The value of an environment variable; absent when it is not set.
    std::function<std::optional<std::string>(const char* name)> variable;
    /// The user's home folder by the account database; absent when it names none.
    std::function<std::optional<std::string>()> accountHome;
};

/// The environment of this process. The variables are read in the moment they are asked for.
Environment processEnvironment();

/// The value of a variable that is set and not empty.
std::optional<std::string> nonEmptyVariable(const Environment& environment, const char* name);

/// The user's home folder: $HOME when it is an absolute path, else the account's. Absent when there is none.
std::optional<std::string> homeFolder(const Environment& environment);

}  // namespace vorna
