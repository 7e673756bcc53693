// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/linux/Environment.h>

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <vector>

namespace vorna {

namespace {

std::optional<std::string> processVariable(const char* name) {
    const char* const value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): read once, at the start
    return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

std::optional<std::string> homeOfProcessOwner() {
    constexpr std::size_t largestRecord = std::size_t{1} << 20U;
    passwd record = {};
    passwd* found = nullptr;
    std::vector<char> texts(4096);
    while (getpwuid_r(getuid(), &record, texts.data(), texts.size(), &found) == ERANGE &&
           texts.size() < largestRecord) {
        texts.resize(texts.size() * 2);
    }
    if (found == nullptr || found->pw_dir == nullptr) {
        return std::nullopt;
    }
    return found->pw_dir;
}

}  // namespace

Environment processEnvironment() {
    return Environment{.variable = processVariable, .accountHome = homeOfProcessOwner};
}

std::optional<std::string> nonEmptyVariable(const Environment& environment, const char* name) {
    std::optional<std::string> value = environment.variable(name);
    if (value && value->empty()) {
        value.reset();
    }
    return value;
}

std::optional<std::string> homeFolder(const Environment& environment) {
    std::optional<std::string> home = environment.variable("HOME");
    if (!home || !home->starts_with('/')) {
        home = environment.accountHome();
    }
    if (!home || !home->starts_with('/')) {
        return std::nullopt;
    }
    return home;
}

}  // namespace vorna
