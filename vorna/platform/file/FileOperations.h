// SPDX-License-Identifier: Apache-2.0
#pragma once

/// What the stores of this folder do to files in the same way.

#include <vorna/platform/FileDescriptor.h>

#include <sys/types.h>

#include <cerrno>
#include <filesystem>
#include <string_view>

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

/// Opens what `name` means within the folder, never to be inherited by a program that the process starts.
/// When it fails the result is not open, and errno says why.
FileDescriptor openAt(int folder, const char* name, int flags, mode_t mode = 0);

/// Makes the folder and what is missing above it, each for its owner alone. 0, or the number of the error.
int makeFolders(const std::filesystem::path& path);

/// Brings the names in a folder to the disk. False when it failed; a file system that knows no such thing is
/// taken at its word.
bool syncFolder(const FileDescriptor& folder);

/// False when not all could be written; errno says why.
bool writeAll(const FileDescriptor& file, std::string_view bytes);

}  // namespace vorna
