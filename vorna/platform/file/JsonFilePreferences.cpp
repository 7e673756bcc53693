// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/file/JsonFilePreferences.h>

#include <vorna/platform/file/FileOperations.h>
#include <vorna/platform/file/PreferencesDocument.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <thread>
#include <utility>
#include <variant>

namespace vorna {

namespace {

enum class NoText : std::uint8_t {
    /// There is no file, or none of ours.
    none,
    /// The process lacks the means to look.
    unknown
};

std::variant<std::string, NoText> readText(const char* path) {
    // Opening a pipe would otherwise wait for its other end.
    const FileDescriptor file = openAt(AT_FDCWD, path, O_RDONLY | O_NONBLOCK);
    if (!file.isOpen()) {
        const bool isForWantOfMeans = errno == EMFILE || errno == ENFILE || errno == ENOMEM;
        return isForWantOfMeans ? NoText::unknown : NoText::none;
    }

    struct stat status {};

    constexpr auto largest = static_cast<off_t>(JsonFilePreferences::largestFile);
    if (fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_size > largest) {
        return NoText::none;
    }
    std::string text(static_cast<std::size_t>(status.st_size), '\0');
    std::size_t size = 0;
    while (size < text.size()) {
        const ssize_t count =
            uninterrupted([&] { return read(file.number(), text.data() + size, text.size() - size); });
        if (count < 0) {
            return NoText::none;
        }
        if (count == 0) {
            break;
        }
        size += static_cast<std::size_t>(count);
    }
    text.resize(size);
    return text;
}

std::optional<PreferencesDocument> readDocument(const char* path) {
    const std::variant<std::string, NoText> text = readText(path);
    if (const NoText* const reason = std::get_if<NoText>(&text)) {
        return *reason == NoText::none ? std::optional<PreferencesDocument>(std::in_place) : std::nullopt;
    }
    return readPreferencesDocument(std::get<std::string>(text)).value_or(PreferencesDocument());
}

/// The file that a chain of symbolic links leads to, whether it exists or not; the path itself where it is no
/// link. Absent for a chain without an end.
std::optional<std::filesystem::path> whereLinksLead(std::filesystem::path path) {
    constexpr int longestChain = 40;
    for (int link = 0; link < longestChain; ++link) {
        std::error_code error;
        const std::filesystem::path target = std::filesystem::read_symlink(path, error);
        if (error) {
            return path;
        }
        path = path.parent_path() / target;
    }
    return std::nullopt;
}

/// Keeps other savers out of a folder while it lives, as far as the file system and their patience go.
class FolderLock {
  public:
    explicit FolderLock(const FileDescriptor& folder) : folder_(folder) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        do {
            isHeld_ = uninterrupted([&] { return flock(folder.number(), LOCK_EX | LOCK_NB); }) == 0;
            if (isHeld_ || errno != EWOULDBLOCK) {
                return;
            }
            // Short, because a process that saves again and again leaves the folder only for a moment.
            std::this_thread::sleep_for(std::chrono::microseconds(200));
        } while (std::chrono::steady_clock::now() < deadline);
    }

    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;
    FolderLock(FolderLock&&) = delete;
    FolderLock& operator=(FolderLock&&) = delete;

    ~FolderLock() {
        if (isHeld_) {
            flock(folder_.number(), LOCK_UN);
        }
    }

    bool isHeld() const noexcept { return isHeld_; }

  private:
    const FileDescriptor& folder_;
    bool isHeld_ = false;
};

/// A name for the file that is being written. Under the lock it is always the same, so that what a killed
/// process left behind is taken away by the next save; without it nobody else may have the same.
std::string unfinishedName(const std::string& name, bool isLocked) {
    std::string unfinished = "." + name + ".new";
    if (!isLocked) {
        static constinit std::atomic<std::uint64_t> count = 0;
        unfinished += "." + std::to_string(getpid()) + "." + std::to_string(++count);
    }
    return unfinished;
}

/// False when the file named so is still what it was; nothing of the attempt is left then.
bool replaceFile(const FileDescriptor& folder, const std::string& name, const std::string& unfinished,
                 std::string_view text) {
    constexpr mode_t fileMode = 0600;
    unlinkat(folder.number(), unfinished.c_str(), 0);
    const FileDescriptor file =
        openAt(folder.number(), unfinished.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, fileMode);
    if (!file.isOpen()) {
        return false;
    }
    // The mode given above is cut by the process's mask; this one holds.
    const bool isReplaced = fchmod(file.number(), fileMode) == 0 && writeAll(file, text) &&
                            uninterrupted([&file] { return fsync(file.number()); }) == 0 &&
                            renameat(folder.number(), unfinished.c_str(), folder.number(), name.c_str()) == 0;
    if (!isReplaced) {
        unlinkat(folder.number(), unfinished.c_str(), 0);
        return false;
    }
    // The new file is in place whatever comes of this; that decides what a loss of power leaves.
    syncFolder(folder);
    return true;
}

}  // namespace

JsonFilePreferences::JsonFilePreferences(std::string file) : file_(std::move(file)) {}

std::optional<PreferenceValue> JsonFilePreferences::value(std::string_view key) const {
    const std::optional<PreferencesDocument> document = readDocument(file_.c_str());
    if (!document) {
        return std::nullopt;
    }
    const auto entry = document->find(key);
    return entry == document->end() ? std::nullopt : preferenceValue(entry->second);
}

bool JsonFilePreferences::setValue(std::string_view key, PreferenceValue value) {
    std::optional<StoredValue> stored = storedValue(std::move(value));
    if (!stored) {
        return false;
    }
    const std::scoped_lock lock(mutex_);
    const std::optional<std::filesystem::path> path = whereLinksLead(file_);
    if (!path || !path->has_filename()) {
        return false;
    }
    const std::filesystem::path parent = path->has_parent_path() ? path->parent_path() : ".";
    if (makeFolders(parent) != 0) {
        return false;
    }
    const FileDescriptor folder = openAt(AT_FDCWD, parent.c_str(), O_RDONLY | O_DIRECTORY);
    if (!folder.isOpen()) {
        return false;
    }
    const FolderLock folderLock(folder);
    std::optional<PreferencesDocument> document = readDocument(path->c_str());
    if (!document) {
        return false;
    }
    document->insert_or_assign(std::string(key), std::move(*stored));
    const std::optional<std::string> text = writePreferencesDocument(*document);
    const std::string name = path->filename();
    return text && text->size() <= largestFile &&
           replaceFile(folder, name, unfinishedName(name, folderLock.isHeld()), *text);
}

}  // namespace vorna
