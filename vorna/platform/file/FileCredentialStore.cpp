// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/file/FileCredentialStore.h>

#include <vorna/platform/file/FileOperations.h>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace vorna {

namespace {

constexpr const char* folderName = "credentials";
constexpr mode_t folderMode = 0700;
constexpr mode_t fileMode = 0600;
constexpr mode_t othersMayWrite = S_IWGRP | S_IWOTH;
constexpr mode_t othersMayAnything = S_IRWXG | S_IRWXO;

/// Begins the names of files that are still being written. Items' names never contain it.
constexpr char unfinishedMark = '~';

CredentialStatus statusOf(int error) {
    switch (error) {
    case ENOENT:
        return CredentialStatus::itemNotFound;
    case EEXIST:
        return CredentialStatus::duplicateItem;
    case ELOOP:    // a symbolic link where none may be
    case ENOTDIR:  // something else than a folder in the folder's place
    case EISDIR:
    case ENXIO:  // a socket, or a pipe
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

/// Service and account as one file name that no other pair has: what is not a plain character is written as
/// its number, the mark between the two among them.
std::string itemName(std::string_view service, std::string_view account) {
    constexpr std::string_view hexadecimal = "0123456789ABCDEF";
    std::string name;
    const auto append = [&](std::string_view text) {
        for (const char character : text) {
            const bool isPlain = (character >= 'a' && character <= 'z') ||
                                 (character >= 'A' && character <= 'Z') ||
                                 (character >= '0' && character <= '9') || character == '.' ||
                                 character == '-' || character == '_';
            if (isPlain) {
                name += character;
            } else {
                const auto byte = static_cast<unsigned char>(character);
                name += {'%', hexadecimal[byte >> 4U], hexadecimal[byte & 15U]};
            }
        }
    };
    append(service);
    name += '@';
    append(account);
    return name;
}

/// Absent when it cannot be asked; errno says why.
std::optional<struct stat> statusOf(const FileDescriptor& file) {
    struct stat status {};

    if (fstat(file.number(), &status) != 0) {
        return std::nullopt;
    }
    return status;
}

using OpenedFolder = Result<FileDescriptor, CredentialStatus>;

/// The folder of the items if it can be trusted.
OpenedFolder openFolder(const FileDescriptor& dataDirectory) {
    FileDescriptor folder = openAt(dataDirectory.number(), folderName, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
    if (!folder.isOpen()) {
        return Unexpected(statusOf(errno));
    }
    const std::optional<struct stat> status = statusOf(folder);
    if (!status) {
        return Unexpected(CredentialStatus::notAvailable);
    }
    if (status->st_uid != geteuid() || (status->st_mode & othersMayWrite) != 0) {
        return Unexpected(CredentialStatus::notTrusted);
    }
    return folder;
}

OpenedFolder existingFolder(const std::string& dataDirectory) {
    if (dataDirectory.empty()) {
        return Unexpected(CredentialStatus::notAvailable);
    }
    const FileDescriptor data = openAt(AT_FDCWD, dataDirectory.c_str(), O_RDONLY | O_DIRECTORY);
    if (!data.isOpen()) {
        return Unexpected(statusOf(errno));
    }
    return openFolder(data);
}

OpenedFolder folderMadeIfMissing(std::string dataDirectory) {
    if (dataDirectory.empty()) {
        return Unexpected(CredentialStatus::notAvailable);
    }
    // With a slash at the end a path has no last component, and so no parent to make.
    while (dataDirectory.size() > 1 && dataDirectory.back() == '/') {
        dataDirectory.pop_back();
    }
    if (const int error = makeFolders(dataDirectory); error != 0) {
        return Unexpected(statusOf(error));
    }
    const FileDescriptor data = openAt(AT_FDCWD, dataDirectory.c_str(), O_RDONLY | O_DIRECTORY);
    if (!data.isOpen()) {
        // A link that leads nowhere takes the folder's place, so it could not be made and yet is not there.
        return Unexpected(errno == ENOENT ? CredentialStatus::notAvailable : statusOf(errno));
    }
    if (mkdirat(data.number(), folderName, folderMode) == 0) {
        syncFolder(data);
    } else if (errno != EEXIST) {
        return Unexpected(statusOf(errno));
    }
    OpenedFolder folder = openFolder(data);
    if (folder) {
        // Nobody else need know which items there are. Should this fail, the items themselves are still
        // private.
        fchmod(folder->number(), folderMode);
    }
    return folder;
}

/// An unfinished file is locked as long as its writer lives, so one that can be locked was left behind by a
/// process that was killed.
bool lock(const FileDescriptor& file) {
    return uninterrupted([&] { return flock(file.number(), LOCK_EX | LOCK_NB); }) == 0;
}

void removeWhatWasLeftBehind(const FileDescriptor& folder) {
    // Listing moves the position of what is listed, so it has an open file of its own.
    const int listed = openat(folder.number(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const auto closeListing = [](DIR* listing) { closedir(listing); };
    const std::unique_ptr<DIR, decltype(closeListing)> listing(listed < 0 ? nullptr : fdopendir(listed),
                                                               closeListing);
    if (!listing) {
        const FileDescriptor closedHere(listed);
        return;
    }
    std::vector<std::string> unfinished;
    while (const dirent* const entry =
               readdir(listing.get())) {  // NOLINT(concurrency-mt-unsafe): own listing
        if (entry->d_name[0] == unfinishedMark) {
            unfinished.emplace_back(entry->d_name);
        }
    }
    for (const std::string& name : unfinished) {
        const FileDescriptor file = openAt(folder.number(), name.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK);
        if (file.isOpen() && lock(file)) {
            unlinkat(folder.number(), name.c_str(), 0);
        }
    }
}

/// Gives the file its final name, unless that name is taken. 0, or the number of the error.
int renameToNew(const FileDescriptor& folder, const std::string& from, const std::string& to) {
    if (renameat2(folder.number(), from.c_str(), folder.number(), to.c_str(), RENAME_NOREPLACE) == 0) {
        return 0;
    }
    if (errno != EINVAL && errno != ENOSYS) {
        return errno;
    }
    // The file system does not know this kind of renaming. A second name is as good; what is killed between
    // the two calls leaves a name that the next add takes away.
    if (linkat(folder.number(), from.c_str(), folder.number(), to.c_str(), 0) != 0) {
        return errno;
    }
    unlinkat(folder.number(), from.c_str(), 0);
    return 0;
}

std::optional<std::string> unfinishedName() {
    std::uint64_t number = 0;
    if (uninterrupted([&] { return getrandom(&number, sizeof number, 0); }) != sizeof number) {
        return std::nullopt;
    }
    return unfinishedMark + std::to_string(number);
}

/// 0, or the number of the error; then nothing of the attempt is left in the folder.
int addOnce(const FileDescriptor& folder, const std::string& name, std::string_view value) {
    const std::optional<std::string> unfinished = unfinishedName();
    if (!unfinished) {
        return EIO;
    }
    const FileDescriptor file =
        openAt(folder.number(), unfinished->c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, fileMode);
    if (!file.isOpen()) {
        return errno;
    }
    lock(file);
    // The mode given above is cut by the process's mask; this one holds.
    const bool isWritten = fchmod(file.number(), fileMode) == 0 && writeAll(file, value) &&
                           uninterrupted([&] { return fsync(file.number()); }) == 0;
    const int error = isWritten ? renameToNew(folder, *unfinished, name) : errno;
    if (error != 0) {
        unlinkat(folder.number(), unfinished->c_str(), 0);
        return error;
    }
    if (!syncFolder(folder)) {
        const int syncError = errno;
        unlinkat(folder.number(), name.c_str(), 0);
        return syncError;
    }
    return 0;
}

}  // namespace

FileCredentialStore::FileCredentialStore(std::string dataDirectory)
    : dataDirectory_(std::move(dataDirectory)) {}

Result<std::string, CredentialStatus> FileCredentialStore::read(std::string_view service,
                                                                std::string_view account) {
    const OpenedFolder folder = existingFolder(dataDirectory_);
    if (!folder) {
        return Unexpected(folder.error());
    }
    // Opening a pipe would wait for its other end.
    const FileDescriptor file =
        openAt(folder->number(), itemName(service, account).c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK);
    if (!file.isOpen()) {
        return Unexpected(statusOf(errno));
    }
    const std::optional<struct stat> status = statusOf(file);
    if (!status) {
        return Unexpected(CredentialStatus::notAvailable);
    }
    if (!S_ISREG(status->st_mode) || status->st_uid != geteuid() ||
        (status->st_mode & othersMayAnything) != 0) {
        return Unexpected(CredentialStatus::notTrusted);
    }
    std::string value;
    std::vector<char> chunk(std::size_t{16} * 1024);
    while (value.size() <= largestValue) {
        const ssize_t count =
            uninterrupted([&] { return ::read(file.number(), chunk.data(), chunk.size()); });
        if (count < 0) {
            return Unexpected(statusOf(errno));
        }
        if (count == 0) {
            return value;
        }
        value.append(chunk.data(), static_cast<std::size_t>(count));
    }
    return Unexpected(CredentialStatus::notTrusted);
}

Result<void, CredentialStatus> FileCredentialStore::remove(std::string_view service,
                                                           std::string_view account) {
    const OpenedFolder folder = existingFolder(dataDirectory_);
    if (!folder) {
        return Unexpected(folder.error());
    }
    if (unlinkat(folder->number(), itemName(service, account).c_str(), 0) != 0 || !syncFolder(*folder)) {
        return Unexpected(statusOf(errno));
    }
    return {};
}

Result<void, CredentialStatus> FileCredentialStore::add(std::string_view service, std::string_view account,
                                                        std::string_view value) {
    if (value.size() > largestValue) {
        return Unexpected(CredentialStatus::notPermitted);
    }
    const OpenedFolder folder = folderMadeIfMissing(dataDirectory_);
    if (!folder) {
        return Unexpected(folder.error());
    }
    removeWhatWasLeftBehind(*folder);
    const std::string name = itemName(service, account);
    // In the moment between making a file and locking it, another process can take it for one left behind.
    int error = ENOENT;
    for (int attempt = 0; attempt < 8 && error == ENOENT; ++attempt) {
        error = addOnce(*folder, name, value);
    }
    if (error != 0) {
        return Unexpected(error == ENOENT ? CredentialStatus::notAvailable : statusOf(error));
    }
    return {};
}

}  // namespace vorna
