// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The environment of the test's own process. Threads of libraries read it, so change it before they begin.

#include <cstdlib>
#include <string>

namespace vorna::support {

inline void setVariable(const char* name, const std::string& value) {
    setenv(name, value.c_str(), 1);  // NOLINT(concurrency-mt-unsafe): see above
}

inline void unsetVariable(const char* name) {
    unsetenv(name);  // NOLINT(concurrency-mt-unsafe): see above
}

/// Empty when it is not set.
inline std::string variable(const char* name) {
    const char* const value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): see above
    return value == nullptr ? "" : value;
}

}  // namespace vorna::support
