// SPDX-License-Identifier: Apache-2.0
#include <tools/devserver/EventJournal.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <utility>

namespace vorna::devserver {

std::string describe(const JournalError& error) {
    return "cannot write " + error.path.string() + ": " + error.reason.message() +
           (error.isLastLineIncomplete ? " (and its last line is incomplete)" : "");
}

EventJournal::EventJournal(std::filesystem::path path) : path_(std::move(path)) {
    if (const auto opened = open(); !opened) {
        throw std::runtime_error(describe(opened.error()));
    }
}

Result<void, JournalError> EventJournal::open() {
    if (path_.has_parent_path()) {
        std::error_code ignored;  // a failure shows when the file is opened
        std::filesystem::create_directories(path_.parent_path(), ignored);
    }
    file_ = FileDescriptor(::open(path_.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644));
    if (!file_.isOpen()) {
        return Unexpected(lastError());
    }
    return {};
}

bool EventJournal::isCurrent() const {
    struct stat opened {};

    struct stat named {};

    return file_.isOpen() && ::fstat(file_.number(), &opened) == 0 && ::stat(path_.c_str(), &named) == 0 &&
           opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

JournalError EventJournal::lastError() const {
    return {path_, std::error_code(errno, std::generic_category())};
}

Result<void, JournalError> EventJournal::append(std::string_view document) {
    if (!isCurrent()) {
        if (auto opened = open(); !opened) {
            return opened;
        }
    }

    struct stat before {};

    const bool isFile = ::fstat(file_.number(), &before) == 0 && S_ISREG(before.st_mode);

    std::string line;
    line.reserve(document.size() + 1);
    line.append(document).push_back('\n');
    std::string_view rest = line;
    while (!rest.empty()) {
        const ssize_t written = ::write(file_.number(), rest.data(), rest.size());
        if (written >= 0) {
            rest.remove_prefix(static_cast<std::size_t>(written));
            continue;
        }
        if (errno == EINTR) {
            continue;
        }
        JournalError error = lastError();
        // A partial document would corrupt the next line too.
        error.isLastLineIncomplete =
            isFile && rest.size() < line.size() && ::ftruncate(file_.number(), before.st_size) != 0;
        return Unexpected(std::move(error));
    }
    return {};
}

}  // namespace vorna::devserver
