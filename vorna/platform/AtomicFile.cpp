// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/AtomicFile.h>

#include <vorna/platform/FileOperations.h>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace vorna {

namespace {

using Done = Result<void, std::error_code>;

constexpr std::string_view temporaryPrefix = "~vorna-";
constexpr std::size_t temporaryDigits = 16;

bool isTemporaryName(std::string_view name) {
    return name.size() == temporaryPrefix.size() + temporaryDigits && name.starts_with(temporaryPrefix) &&
           name.find_first_not_of("0123456789abcdef", temporaryPrefix.size()) == std::string_view::npos;
}

Result<std::string, std::error_code> newTemporaryName() {
    constexpr std::string_view hexadecimal = "0123456789abcdef";
    std::uint64_t number = 0;
    if (uninterrupted([&] { return getrandom(&number, sizeof number, 0); }) != sizeof number) {
        return lastError();
    }
    std::string name(temporaryPrefix);
    for (std::size_t digit = 0; digit < temporaryDigits; ++digit, number >>= 4U) {
        name += hexadecimal[number & 15U];
    }
    return name;
}

/// A temporary file is locked as long as its writer lives, so one that can be locked was left by a process
/// that was killed.
bool lock(const FileDescriptor& file) {
    return uninterrupted([&] { return flock(file.number(), LOCK_EX | LOCK_NB); }) == 0;
}

void removeLeftovers(const FileDescriptor& folder) {
    // Listing moves the file position, so it needs its own open file.
    const int listed = openat(folder.number(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const auto closeListing = [](DIR* listing) { closedir(listing); };
    const std::unique_ptr<DIR, decltype(closeListing)> listing(listed < 0 ? nullptr : fdopendir(listed),
                                                               closeListing);
    if (!listing) {
        const FileDescriptor closedHere(listed);
        return;
    }
    std::vector<std::string> leftovers;
    while (const dirent* const entry =
               readdir(listing.get())) {  // NOLINT(concurrency-mt-unsafe): own listing
        if (isTemporaryName(entry->d_name)) {
            leftovers.emplace_back(entry->d_name);
        }
    }
    for (const std::string& name : leftovers) {
        const auto file = openRegularFile(folder.number(), name.c_str(), O_RDWR);
        if (file && lock(*file)) {
            unlinkat(folder.number(), name.c_str(), 0);
        }
    }
}

using Rename = Done (*)(const FileDescriptor& folder, const std::string& from, const std::string& to);

/// Fails if the name belongs to anything but a regular file.
Done renameReplacing(const FileDescriptor& folder, const std::string& from, const std::string& to) {
    if (const Done found = findRegularFile(folder.number(), to.c_str());
        !found && found.error() != std::errc::no_such_file_or_directory) {
        return found;
    }
    if (renameat(folder.number(), from.c_str(), folder.number(), to.c_str()) != 0) {
        return lastError();
    }
    return {};
}

/// Fails if the name is taken.
Done renameToNew(const FileDescriptor& folder, const std::string& from, const std::string& to) {
    // On a file system where this takes two calls, a kill between them leaves a second name for the new file;
    // the next write removes it.
    return renameToFreeName(folder.number(), from.c_str(), to.c_str());
}

/// On an error the folder is left as it was.
Done writeOnce(const FileDescriptor& folder, const std::string& name, std::string_view contents, mode_t mode,
               Rename rename) {
    const Result<std::string, std::error_code> temporary = newTemporaryName();
    if (!temporary) {
        return Unexpected(temporary.error());
    }
    const auto file =
        openAt(folder.number(), temporary->c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0600);
    if (!file) {
        return Unexpected(file.error());
    }
    lock(*file);
    Done done = writeAll(*file, contents);
    // The mode passed to open is subject to the process's umask; this one is not.
    if (done &&
        (fchmod(file->number(), mode) != 0 || uninterrupted([&] { return fsync(file->number()); }) != 0)) {
        done = lastError();
    }
    if (done) {
        done = rename(folder, *temporary, name);
    }
    if (!done) {
        unlinkat(folder.number(), temporary->c_str(), 0);
    }
    return done;
}

bool isNameOfAFile(std::string_view name) {
    using namespace std::string_view_literals;
    return !name.empty() && name != "." && name != ".." &&
           name.find_first_of("/\0"sv) == std::string_view::npos && !isTemporaryName(name);
}

/// The folder, once the file is in it.
Result<FileDescriptor, std::error_code> write(int base, const std::filesystem::path& folderPath,
                                              const std::string& name, std::string_view contents, mode_t mode,
                                              Rename rename) {
    if (!isNameOfAFile(name)) {
        return Unexpected(std::make_error_code(std::errc::invalid_argument));
    }
    auto folder = openAt(base, folderPath.c_str(), O_RDONLY | O_DIRECTORY);
    if (!folder) {
        return folder;
    }
    removeLeftovers(*folder);
    constexpr int mostAttempts = 8;
    for (int attempt = 1;; ++attempt) {
        const Done done = writeOnce(*folder, name, contents, mode, rename);
        if (done) {
            return folder;
        }
        // Between creating a file and locking it, another process may mistake it for a leftover.
        if (done.error() != std::errc::no_such_file_or_directory || attempt == mostAttempts) {
            return Unexpected(done.error());
        }
    }
}

}  // namespace

AtomicFile::AtomicFile(const std::filesystem::path& file)
    : base_(AT_FDCWD),
      folderPath_(file.has_parent_path() ? file.parent_path() : "."),
      name_(file.filename()) {}

AtomicFile::AtomicFile(const FileDescriptor& folder, std::string name)
    : base_(folder.number()),
      folderPath_("."),
      name_(std::move(name)) {}

Result<void, std::error_code> AtomicFile::replace(std::string_view contents, mode_t mode) const {
    const auto folder = write(base_, folderPath_, name_, contents, mode, renameReplacing);
    if (!folder) {
        return Unexpected(folder.error());
    }
    // The new file is in place even if this fails; after a loss of power it may be the former one.
    static_cast<void>(syncFolder(*folder));
    return {};
}

Result<void, std::error_code> AtomicFile::create(std::string_view contents, mode_t mode) const {
    const auto folder = write(base_, folderPath_, name_, contents, mode, renameToNew);
    if (!folder) {
        return Unexpected(folder.error());
    }
    Done flushed = syncFolder(*folder);
    if (!flushed) {
        unlinkat(folder->number(), name_.c_str(), 0);
    }
    return flushed;
}

}  // namespace vorna
