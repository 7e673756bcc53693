// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The process's environment, behind functions so that tests need not change their own.

#include <functional>
#include <optional>
#include <string>

namespace vorna {

struct Environment {
    /// Returns the value of an environment variable; std::nullopt if it is not set.
    std::function<std::optional<std::string>(const char* name)> variable;
    /// Returns the user's home folder in the account database; std::nullopt if there is none.
    std::function<std::optional<std::string>()> accountHome;
};

/// Returns the environment of this process. Variables are read when they are requested.
Environment processEnvironment();

/// Returns the value of a variable; std::nullopt if it is not set or is empty.
std::optional<std::string> nonEmptyVariable(const Environment& environment, const char* name);

/// Returns the user's home folder: $HOME if it is an absolute path, else the account's. std::nullopt if there
/// is none.
std::optional<std::string> homeFolder(const Environment& environment);

}  // namespace vorna
