// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/file/StoreFolder.h>

#include <vorna/platform/FileOperations.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <tuple>

namespace vorna {

namespace {

using Opened = Result<FileDescriptor, std::error_code>;

Opened openDataDirectory(const std::string& path) {
    return openAt(AT_FDCWD, path.c_str(), O_RDONLY | O_DIRECTORY);
}

Opened openSubfolder(const FileDescriptor& folder, const char* name) {
    return openAt(folder.number(), name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
}

}  // namespace

Opened openStoreFolder(const std::string& dataDirectory, const char* name) {
    Opened data = openDataDirectory(dataDirectory);
    return data ? openSubfolder(*data, name) : std::move(data);
}

Opened makeStoreFolder(const std::string& dataDirectory, const char* name) {
    if (const Result<void, std::error_code> made = makeFolders(dataDirectory); !made) {
        return Unexpected(made.error());
    }
    Opened data = openDataDirectory(dataDirectory);
    if (!data) {
        return data;
    }
    if (mkdirat(data->number(), name, 0700) == 0) {
        std::ignore = syncFolder(*data);
    } else if (errno != EEXIST) {
        return lastError();
    }
    return openSubfolder(*data, name);
}

std::string fileNameOf(std::string_view text) {
    constexpr std::string_view plain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789.-_";
    constexpr std::string_view hexadecimal = "0123456789ABCDEF";
    std::string name;
    for (const char character : text) {
        if (plain.find(character) != std::string_view::npos) {
            name += character;
        } else {
            const auto byte = static_cast<unsigned char>(character);
            name += {'%', hexadecimal[byte >> 4U], hexadecimal[byte & 15U]};
        }
    }
    return name;
}

}  // namespace vorna
