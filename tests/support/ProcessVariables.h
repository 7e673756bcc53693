// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Environment variables of the test process. Library threads read them, so set them before any starts.

#include <cstdlib>
#include <string>

namespace vorna::support {

inline void setVariable(const char* name, const std::string& value) {
    setenv(name, value.c_str(), 1);  // NOLINT(concurrency-mt-unsafe): see above
}

inline void unsetVariable(const char* name) {
    unsetenv(name);  // NOLINT(concurrency-mt-unsafe): see above
}

/// Empty if not set.
inline std::string variable(const char* name) {
    const char* const value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): see above
    return value == nullptr ? "" : value;
}

}  // namespace vorna::support
