// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/file/FileOperations.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vorna {

FileDescriptor openAt(int folder, const char* name, int flags, mode_t mode) {
    return FileDescriptor(
        uninterrupted([=] { return openat(folder, name, flags | O_CLOEXEC | O_NOCTTY, mode); }));
}

int makeFolders(const std::filesystem::path& path) {
    constexpr mode_t folderMode = 0700;
    if (mkdir(path.c_str(), folderMode) == 0) {
        const std::filesystem::path parent = path.parent_path();
        const FileDescriptor folder =
            openAt(AT_FDCWD, parent.empty() ? "." : parent.c_str(), O_RDONLY | O_DIRECTORY);
        if (folder.isOpen()) {
            syncFolder(folder);
        }
        return 0;
    }
    if (errno == EEXIST) {
        return 0;
    }
    const std::filesystem::path parent = path.parent_path();
    if (errno != ENOENT || parent.empty() || parent == path) {
        return errno;
    }
    const int error = makeFolders(parent);
    return error != 0 ? error : makeFolders(path);
}

bool syncFolder(const FileDescriptor& folder) {
    return uninterrupted([&folder] { return fsync(folder.number()); }) == 0 || errno == EINVAL ||
           errno == EROFS;
}

bool writeAll(const FileDescriptor& file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written =
            uninterrupted([&file, bytes] { return write(file.number(), bytes.data(), bytes.size()); });
        if (written < 0) {
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

}  // namespace vorna
