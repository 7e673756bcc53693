#pragma once

/// A folder of a test's own, gone with its end.

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include <unistd.h>

namespace vorna::support {

class PrivateFolder {
  public:
    PrivateFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "vorna-test-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("no temporary folder");
        }
        path_ = pattern;
    }

    PrivateFolder(const PrivateFolder&) = delete;
    PrivateFolder& operator=(const PrivateFolder&) = delete;
    PrivateFolder(PrivateFolder&&) = delete;
    PrivateFolder& operator=(PrivateFolder&&) = delete;

    ~PrivateFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_;
};

inline void writeFile(const std::filesystem::path& path, std::string_view contents) {
    std::ofstream(path, std::ios::binary) << contents;
}

inline std::string contentsOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// The names in a folder, in no order; none when there is no folder.
inline std::vector<std::string> namesIn(const std::filesystem::path& folder) {
    std::vector<std::string> names;
    std::error_code none;
    for (const auto& entry : std::filesystem::directory_iterator(folder, none)) {
        names.push_back(entry.path().filename().string());
    }
    return names;
}

}  // namespace vorna::support
