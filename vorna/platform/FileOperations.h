// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The building blocks of file handling.

#include <vorna/base/Result.h>
#include <vorna/platform/FileDescriptor.h>

#include <sys/types.h>

#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace vorna {

/// Repeats a system call that a signal interrupts.
template <class Call>
auto uninterrupted(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR) {
        result = call();
    }
    return result;
}

/// The error that the last system call has left in errno.
Unexpected<std::error_code> lastError() noexcept;

/// Opens `name` relative to the folder. Programs that the process starts do not inherit it.
Result<FileDescriptor, std::error_code> openAt(int folder, const char* name, int flags, mode_t mode = 0);

/// Succeeds if there is a regular file of that name. ENOENT if there is nothing; ELOOP for a link, which is
/// never followed, EISDIR for a folder, and ENXIO for a device, a pipe or a socket.
Result<void, std::error_code> findRegularFile(int folder, const char* name);

/// Opens a regular file, without waiting; the errors are those of `findRegularFile`. Nothing else is opened
/// even for a moment: opening a device can have effects.
Result<FileDescriptor, std::error_code> openRegularFile(int folder, const char* name, int flags);

/// Renames a file within its folder; EEXIST if the new name is taken.
Result<void, std::error_code> renameToFreeName(int folder, const char* from, const char* to);

/// Creates the folder and its missing parents, each accessible only to the owner. Afterwards the path is a
/// folder, or a link to one; a dangling link in the path is ENOENT.
Result<void, std::error_code> makeFolders(const std::filesystem::path& path);

/// Flushes a folder's entries to disk. Succeeds on file systems that cannot do that for folders.
Result<void, std::error_code> syncFolder(const FileDescriptor& folder);

/// Reads from the current position to the end; EFBIG beyond the largest size.
Result<std::string, std::error_code> readAll(const FileDescriptor& file, std::size_t largestSize);

Result<void, std::error_code> writeAll(const FileDescriptor& file, std::string_view bytes);

}  // namespace vorna
