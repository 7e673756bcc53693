// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A private folder for a test, removed at its end; and file helpers for tests.

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace vorna::support {

inline void writeFile(const std::filesystem::path& path, std::string_view contents) {
    std::ofstream(path, std::ios::binary) << contents;
}

inline std::string contentsOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// The names in a folder, in no particular order; none if the folder does not exist.
inline std::vector<std::string> namesIn(const std::filesystem::path& folder) {
    std::vector<std::string> names;
    std::error_code none;
    for (const auto& entry : std::filesystem::directory_iterator(folder, none)) {
        names.push_back(entry.path().filename().string());
    }
    return names;
}

class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "vorna-test-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("no temporary folder");
        }
        path_ = std::filesystem::canonical(pattern);
    }

    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    TemporaryFolder(TemporaryFolder&&) = delete;
    TemporaryFolder& operator=(TemporaryFolder&&) = delete;

    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    const std::filesystem::path& path() const { return path_; }

    /// Writes a file below the folder, creating the folders in between, and returns its path.
    // NOLINTNEXTLINE(modernize-use-nodiscard): written for its effect as often as for its path
    std::filesystem::path write(const std::filesystem::path& name, std::string_view contents) const {
        std::filesystem::path file = path_ / name;
        std::filesystem::create_directories(file.parent_path());
        writeFile(file, contents);
        return file;
    }

    /// As above, atomically: readers and watchers see either the old file or the new one.
    void replace(const std::filesystem::path& name, std::string_view contents) const {
        const std::filesystem::path file = path_ / name;
        std::filesystem::create_directories(file.parent_path());
        std::filesystem::rename(write(".draft", contents), file);
    }

  private:
    std::filesystem::path path_;
};

}  // namespace vorna::support
