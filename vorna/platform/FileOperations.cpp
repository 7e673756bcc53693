// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/FileOperations.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <tuple>
#include <utility>
#include <vector>

namespace vorna {

namespace {

constexpr mode_t folderMode = 0700;

/// Creates one folder; EEXIST if the name is taken.
Result<void, std::error_code> makeFolder(const std::filesystem::path& path) {
    if (mkdir(path.c_str(), folderMode) != 0) {
        return lastError();
    }
    const std::filesystem::path parent = path.parent_path();
    if (const auto folder = openAt(AT_FDCWD, parent.empty() ? "." : parent.c_str(), O_RDONLY | O_DIRECTORY)) {
        std::ignore = syncFolder(*folder);
    }
    return {};
}

/// By the error that opening it as a regular file deserves.
Result<void, std::error_code> expectRegularFile(const struct stat& status) {
    if (S_ISREG(status.st_mode)) {
        return {};
    }
    if (S_ISLNK(status.st_mode)) {
        return Unexpected(std::make_error_code(std::errc::too_many_symbolic_link_levels));
    }
    return Unexpected(std::make_error_code(S_ISDIR(status.st_mode) ? std::errc::is_a_directory
                                                                   : std::errc::no_such_device_or_address));
}

}  // namespace

Unexpected<std::error_code> lastError() noexcept {
    return Unexpected(std::error_code(errno, std::generic_category()));
}

Result<FileDescriptor, std::error_code> openAt(int folder, const char* name, int flags, mode_t mode) {
    FileDescriptor file(
        uninterrupted([=] { return openat(folder, name, flags | O_CLOEXEC | O_NOCTTY, mode); }));
    if (!file.isOpen()) {
        return lastError();
    }
    return file;
}

Result<void, std::error_code> findRegularFile(int folder, const char* name) {
    struct stat status {};

    if (fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0) {
        return lastError();
    }
    return expectRegularFile(status);
}

Result<FileDescriptor, std::error_code> openRegularFile(int folder, const char* name, int flags) {
    if (const Result<void, std::error_code> found = findRegularFile(folder, name); !found) {
        return Unexpected(found.error());
    }
    // What was a file may be a pipe by now, and opening that would wait for its other end.
    Result<FileDescriptor, std::error_code> file = openAt(folder, name, flags | O_NOFOLLOW | O_NONBLOCK);
    if (!file) {
        return file;
    }

    struct stat status {};

    if (fstat(file->number(), &status) != 0) {
        return lastError();
    }
    if (const Result<void, std::error_code> expected = expectRegularFile(status); !expected) {
        return Unexpected(expected.error());
    }
    return file;
}

Result<void, std::error_code> renameToFreeName(int folder, const char* from, const char* to) {
    if (renameat2(folder, from, folder, to, RENAME_NOREPLACE) == 0) {
        return {};
    }
    if (errno != EINVAL && errno != ENOSYS) {
        return lastError();
    }
    // The file system cannot rename without replacing. A second link will do; if the process is killed
    // between the two calls, the file has both names.
    if (linkat(folder, from, folder, to, 0) != 0) {
        return lastError();
    }
    unlinkat(folder, from, 0);
    return {};
}

Result<void, std::error_code> makeFolders(const std::filesystem::path& path) {
    // Goes up to the first folder that exists or can be created, then down again.
    std::vector<std::filesystem::path> toMake{path};
    while (!toMake.empty()) {
        const std::filesystem::path& next = toMake.back();
        const Result<void, std::error_code> made = makeFolder(next);
        if (made || made.error() == std::errc::file_exists) {
            break;
        }
        std::filesystem::path parent = next.parent_path();
        if (made.error() != std::errc::no_such_file_or_directory || parent.empty() || parent == next) {
            return made;
        }
        toMake.push_back(std::move(parent));
    }
    for (toMake.pop_back(); !toMake.empty(); toMake.pop_back()) {
        const Result<void, std::error_code> made = makeFolder(toMake.back());
        if (!made && made.error() != std::errc::file_exists) {
            return made;
        }
    }

    struct stat status {};

    if (stat(path.c_str(), &status) != 0) {
        return lastError();
    }
    if (!S_ISDIR(status.st_mode)) {
        return Unexpected(std::make_error_code(std::errc::not_a_directory));
    }
    return {};
}

Result<void, std::error_code> syncFolder(const FileDescriptor& folder) {
    if (uninterrupted([&folder] { return fsync(folder.number()); }) != 0 && errno != EINVAL &&
        errno != EROFS) {
        return lastError();
    }
    return {};
}

Result<std::string, std::error_code> readAll(const FileDescriptor& file, std::size_t largestSize) {
    std::string contents;
    std::vector<char> chunk(std::size_t{16} * 1024);
    while (contents.size() <= largestSize) {
        const ssize_t count = uninterrupted([&] { return read(file.number(), chunk.data(), chunk.size()); });
        if (count < 0) {
            return lastError();
        }
        if (count == 0) {
            return contents;
        }
        contents.append(chunk.data(), static_cast<std::size_t>(count));
    }
    return Unexpected(std::make_error_code(std::errc::file_too_large));
}

Result<void, std::error_code> writeAll(const FileDescriptor& file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written =
            uninterrupted([&file, bytes] { return write(file.number(), bytes.data(), bytes.size()); });
        if (written < 0) {
            return lastError();
        }
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return {};
}

}  // namespace vorna
