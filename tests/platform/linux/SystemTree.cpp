// SPDX-License-Identifier: Apache-2.0
#include <tests/platform/linux/SystemTree.h>

#include <map>
#include <optional>
#include <stdexcept>
#include <thread>

namespace vorna::tests {

std::string systemTree(std::string_view name) {
    const std::filesystem::path path = std::filesystem::path(VORNA_TEST_FIXTURES) / "system" / name;
    if (!std::filesystem::is_directory(path)) {
        throw std::runtime_error("there is no stored system " + path.string());
    }
    return path.string();
}

void copySystemTree(std::string_view name, const std::filesystem::path& folder) {
    std::filesystem::copy(systemTree(name), folder,
                          std::filesystem::copy_options::recursive |
                              std::filesystem::copy_options::copy_symlinks);
}

Environment environmentOf(std::initializer_list<std::pair<std::string, std::string>> variables,
                          const std::string& accountHome) {
    std::map<std::string, std::string> values(variables.begin(), variables.end());
    return Environment{
        .variable = [values = std::move(values)](const char* name) -> std::optional<std::string> {
            const auto found = values.find(name);
            return found == values.end() ? std::nullopt : std::optional(found->second);
        },
        .accountHome = [accountHome]() -> std::optional<std::string> {
            return accountHome.empty() ? std::nullopt : std::optional(accountHome);
        }};
}

bool eventually(const std::function<bool()>& condition, std::chrono::seconds bound) {
    const auto deadline = std::chrono::steady_clock::now() + bound;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::yield();
    }
    return true;
}

}  // namespace vorna::tests
