#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

namespace vorna::devserver {

// A folder of a test's own, gone with its end.
class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "vorna-devserver-XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("no temporary folder");
        }
        path_ = std::filesystem::canonical(pattern);
    }

    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder(TemporaryFolder&&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(TemporaryFolder&&) = delete;

    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

    // Writes a file below the folder, with the folders on its way, and returns its path.
    // NOLINTNEXTLINE(modernize-use-nodiscard): written for its effect as often as for its path
    std::filesystem::path write(const std::filesystem::path& name, std::string_view contents) const {
        std::filesystem::path file = path_ / name;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << contents;
        return file;
    }

  private:
    std::filesystem::path path_;
};

inline std::string contentsOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace vorna::devserver
