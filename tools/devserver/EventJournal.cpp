// SPDX-License-Identifier: Apache-2.0
#include <tools/devserver/EventJournal.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace vorna::devserver {
namespace {

std::string describe(const std::filesystem::path& path, int error) {
    return "cannot write " + path.string() + ": " + std::generic_category().message(error);
}

}  // namespace

EventJournal::EventJournal(std::filesystem::path path) : path_(std::move(path)) {
    if (const std::string problem = open(); !problem.empty()) {
        throw std::runtime_error(problem);
    }
}

std::string EventJournal::open() {
    std::error_code error;
    if (path_.has_parent_path()) {
        std::filesystem::create_directories(path_.parent_path(),
                                            error);  // a failure shows when the file is opened
    }
    file_ = FileDescriptor(::open(path_.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644));
    return file_.isOpen() ? std::string() : describe(path_, errno);
}

bool EventJournal::isCurrent() const {
    struct stat opened {};

    struct stat named {};

    return file_.isOpen() && ::fstat(file_.number(), &opened) == 0 && ::stat(path_.c_str(), &named) == 0 &&
           opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

std::string EventJournal::append(std::string_view document) {
    if (!isCurrent()) {
        if (std::string problem = open(); !problem.empty()) {
            return problem;
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
        const int error = errno;
        // Half a document would spoil the line after it too.
        if (isFile && rest.size() < line.size() && ::ftruncate(file_.number(), before.st_size) != 0) {
            return describe(path_, error) + " (and its last line is incomplete)";
        }
        return describe(path_, error);
    }
    return {};
}

}  // namespace vorna::devserver
