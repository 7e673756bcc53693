// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/linux/SystemFile.h>

#include <vorna/platform/FileDescriptor.h>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <memory>
#include <utility>

namespace vorna {

namespace {

constexpr std::size_t maxFileSize = 65536;

struct FolderCloser {
    void operator()(DIR* folder) const noexcept { closedir(folder); }
};

constexpr bool isSpace(char character) noexcept {
    const auto byte = static_cast<unsigned char>(character);
    return byte <= 0x20 || byte == 0x7F;
}

}  // namespace

std::optional<std::string> readSystemFile(const std::string& path) {
    const FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat status = {};
    if (!file.isOpen() || fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return std::nullopt;
    }
    std::string contents;
    std::array<char, 4096> buffer;  // NOLINT(cppcoreguidelines-pro-type-member-init): read() fills it
    while (contents.size() < maxFileSize) {
        const ssize_t count =
            read(file.number(), buffer.data(), std::min(buffer.size(), maxFileSize - contents.size()));
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            return std::nullopt;
        }
        if (count == 0) {
            break;
        }
        contents.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return contents;
}

std::optional<std::string> readSystemValue(const std::string& path) {
    const std::optional<std::string> contents = readSystemFile(path);
    if (!contents) {
        return std::nullopt;
    }
    const std::string_view value = trimmed(*contents);
    return value.empty() ? std::nullopt : std::optional<std::string>(value);
}

std::vector<std::string> namesInFolder(const std::string& path) {
    // Not std::filesystem::directory_iterator, which ends the process if memory runs out.
    const std::unique_ptr<DIR, FolderCloser> folder(opendir(path.c_str()));
    std::vector<std::string> names;
    // NOLINTNEXTLINE(concurrency-mt-unsafe): the folder is ours alone
    while (const dirent* const entry = folder ? readdir(folder.get()) : nullptr) {
        std::string name = entry->d_name;
        if (!name.starts_with('.')) {
            names.push_back(std::move(name));
        }
    }
    std::ranges::sort(names);
    return names;
}

std::string_view trimmed(std::string_view text) noexcept {
    while (!text.empty() && isSpace(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isSpace(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

}  // namespace vorna
