// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/file/FileCredentialStore.h>

#include <vorna/platform/AtomicFile.h>
#include <vorna/platform/FileOperations.h>
#include <vorna/platform/file/StoreFolder.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <mutex>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

namespace vorna {

namespace {

constexpr const char* folderName = "credentials";
constexpr mode_t folderMode = 0700;
constexpr mode_t othersMayWrite = S_IWGRP | S_IWOTH;
constexpr mode_t othersMayAnything = S_IRWXG | S_IRWXO;

CredentialStatus statusOf(std::error_code error) {
    switch (error.value()) {
    case ENOENT:
        return CredentialStatus::itemNotFound;
    case EEXIST:
        return CredentialStatus::duplicateItem;
    case ELOOP:    // a symbolic link where none may be
    case ENOTDIR:  // something other than a folder in its place
    case EISDIR:
    case ENXIO:  // a device, a pipe or a socket
        return CredentialStatus::notTrusted;
    case EACCES:
    case EPERM:
    case EROFS:
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
    case ENAMETOOLONG:
        return CredentialStatus::notPermitted;
    default:
        return CredentialStatus::notAvailable;
    }
}

/// Once the folders have been created, a missing file does not mean that there is no item.
CredentialStatus statusOfFailedAddition(std::error_code error) {
    return error == std::errc::no_such_file_or_directory ? CredentialStatus::notAvailable : statusOf(error);
}

/// A file name unique to the pair of service and account.
std::string itemName(std::string_view service, std::string_view account) {
    return fileNameOf(service) + '@' + fileNameOf(account);
}

std::optional<struct stat> statusOf(const FileDescriptor& file) {
    struct stat status {};

    if (fstat(file.number(), &status) != 0) {
        return std::nullopt;
    }
    return status;
}

/// Why nothing in the folder can be trusted or read; std::nullopt if it can.
std::optional<CredentialStatus> objectionTo(const FileDescriptor& folder) {
    const std::optional<struct stat> status = statusOf(folder);
    if (!status) {
        return CredentialStatus::notAvailable;
    }
    if (status->st_uid != geteuid() || (status->st_mode & othersMayWrite) != 0) {
        return CredentialStatus::notTrusted;
    }
    return std::nullopt;
}

Result<FileDescriptor, CredentialStatus> existingFolder(const std::string& dataDirectory) {
    if (dataDirectory.empty()) {
        return Unexpected(CredentialStatus::notAvailable);
    }
    auto folder = openStoreFolder(dataDirectory, folderName);
    if (!folder) {
        return Unexpected(statusOf(folder.error()));
    }
    if (const std::optional<CredentialStatus> objection = objectionTo(*folder)) {
        return Unexpected(*objection);
    }
    return *std::move(folder);
}

Result<FileDescriptor, CredentialStatus> folderMadeIfMissing(const std::string& dataDirectory) {
    auto folder = makeStoreFolder(dataDirectory, folderName);
    if (!folder) {
        return Unexpected(statusOfFailedAddition(folder.error()));
    }
    if (const std::optional<CredentialStatus> objection = objectionTo(*folder)) {
        return Unexpected(*objection);
    }
    // Hides from others which items there are. If this fails, the items themselves are still private.
    fchmod(folder->number(), folderMode);
    return *std::move(folder);
}

Result<std::string, CredentialStatus> readItem(const FileDescriptor& folder, const std::string& name) {
    const auto file = openRegularFile(folder.number(), name.c_str(), O_RDONLY);
    if (!file) {
        return Unexpected(statusOf(file.error()));
    }
    const std::optional<struct stat> status = statusOf(*file);
    if (!status) {
        return Unexpected(CredentialStatus::notAvailable);
    }
    if (status->st_uid != geteuid() || (status->st_mode & othersMayAnything) != 0) {
        return Unexpected(CredentialStatus::notTrusted);
    }
    return readAll(*file, FileCredentialStore::largestValue).transform_error([](std::error_code error) {
        return error == std::errc::file_too_large ? CredentialStatus::notTrusted : statusOf(error);
    });
}

/// True if there may be an item that could be read another time.
bool isHidden(const Result<std::string, CredentialStatus>& item) {
    return !item && item.error() != CredentialStatus::itemNotFound &&
           item.error() != CredentialStatus::notTrusted;
}

/// Renames a file that is not trusted: someone may still want what is in it.
Result<void, CredentialStatus> setAside(const FileDescriptor& folder, const std::string& name) {
    if (const auto found = findRegularFile(folder.number(), name.c_str()); !found) {
        return Unexpected(statusOf(found.error()));
    }
    // No item's file has such a name.
    const std::string stem = name + "~untrusted";
    for (char digit = '1'; digit <= '9'; ++digit) {
        const auto renamed = renameToFreeName(folder.number(), name.c_str(), (stem + digit).c_str());
        if (renamed) {
            return {};
        }
        if (renamed.error() != std::errc::file_exists) {
            return Unexpected(statusOf(renamed.error()));
        }
    }
    return Unexpected(CredentialStatus::notTrusted);
}

Result<void, CredentialStatus> unlinkItem(const FileDescriptor& folder, const std::string& name) {
    if (unlinkat(folder.number(), name.c_str(), 0) != 0) {
        return Unexpected(statusOf(lastError().error()));
    }
    return {};
}

}  // namespace

FileCredentialStore::FileCredentialStore(std::string dataDirectory)
    : dataDirectory_(std::move(dataDirectory)) {}

Result<std::string, CredentialStatus> FileCredentialStore::read(std::string_view service,
                                                                std::string_view account) {
    const std::string name = itemName(service, account);
    Result<std::string, CredentialStatus> item =
        existingFolder(dataDirectory_).and_then([&name](const FileDescriptor& folder) {
            return readItem(folder, name);
        });
    const std::scoped_lock lock(mutex_);
    if (isHidden(item)) {
        hidden_.insert_or_assign(name, item.error());
    } else {
        hidden_.erase(name);
    }
    return item;
}

Result<void, CredentialStatus> FileCredentialStore::remove(std::string_view service,
                                                           std::string_view account) {
    const std::string name = itemName(service, account);
    {
        const std::scoped_lock lock(mutex_);
        // Its reader has not seen it, so it cannot be meant, even if it could be read by now.
        if (const auto hidden = hidden_.find(name); hidden != hidden_.end()) {
            return Unexpected(hidden->second);
        }
    }
    const auto folder = existingFolder(dataDirectory_);
    if (!folder) {
        return Unexpected(folder.error());
    }
    const Result<std::string, CredentialStatus> item = readItem(*folder, name);
    if (!item && item.error() != CredentialStatus::notTrusted) {
        return Unexpected(item.error());
    }
    return (item ? unlinkItem(*folder, name) : setAside(*folder, name)).and_then([&folder] {
        return syncFolder(*folder).transform_error([](std::error_code error) { return statusOf(error); });
    });
}

Result<void, CredentialStatus> FileCredentialStore::add(std::string_view service, std::string_view account,
                                                        std::string_view value) {
    if (value.size() > largestValue) {
        return Unexpected(CredentialStatus::notPermitted);
    }
    const auto folder = folderMadeIfMissing(dataDirectory_);
    if (!folder) {
        return Unexpected(folder.error());
    }
    return AtomicFile(*folder, itemName(service, account))
        .create(value)
        .transform_error(statusOfFailedAddition);
}

}  // namespace vorna
