// SPDX-License-Identifier: Apache-2.0
#include <tests/support/SmallDisk.h>

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <system_error>

namespace vorna::support {

namespace {

constexpr std::size_t pageSize = 4096;
constexpr const char* options = "size=256k,mode=0700";

std::string errorText() {
    return std::error_code(errno, std::system_category()).message();
}

[[noreturn]] void fail(const std::string& what) {
    throw std::runtime_error("small disk: " + what + ": " + errorText());
}

/// Moves this process into its own mount namespace; without root, into its own user namespace first.
std::string enterOwnNamespace() {
    const uid_t user = geteuid();
    const gid_t group = getegid();
    if (unshare(user == 0 ? CLONE_NEWNS : CLONE_NEWNS | CLONE_NEWUSER) != 0) {
        return std::string("no mounts of one's own: ") + errorText();
    }
    if (user != 0) {
        std::ofstream("/proc/self/setgroups") << "deny";
        std::ofstream("/proc/self/uid_map") << "0 " << user << " 1";
        std::ofstream("/proc/self/gid_map") << "0 " << group << " 1";
    }
    if (mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) {
        return std::string("mounts cannot be made private: ") + errorText();
    }
    return {};
}

std::filesystem::path newFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "vorna-disk-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) {
        fail("no folder");
    }
    return pattern;
}

}  // namespace

std::string SmallDisk::whyNot() {
    static const std::string reason = [] {
        std::string problem = enterOwnNamespace();
        if (problem.empty()) {
            const std::filesystem::path folder = newFolder();
            if (mount("none", folder.c_str(), "tmpfs", 0, options) != 0) {
                problem = std::string("no file system in memory: ") + errorText();
            } else {
                umount(folder.c_str());
            }
            std::filesystem::remove(folder);
        }
        return problem;
    }();
    return reason;
}

SmallDisk::SmallDisk() {
    if (!whyNot().empty()) {
        throw std::runtime_error("small disk: " + whyNot());
    }
    path_ = newFolder();
    if (mount("none", path_.c_str(), "tmpfs", 0, options) != 0) {
        fail("no mount");
    }
}

SmallDisk::~SmallDisk() {
    umount2(path_.c_str(), MNT_DETACH);
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
}

void SmallDisk::fillUpTo(std::size_t pagesLeft) const {
    const std::filesystem::path filler = path_ / "filler";
    const int file = open(filler.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (file < 0) {
        fail("no filler");
    }
    const std::array<char, pageSize> page{};
    std::size_t pages = 0;
    while (write(file, page.data(), page.size()) == static_cast<ssize_t>(page.size())) {
        ++pages;
    }
    if (errno != ENOSPC || pages < pagesLeft ||
        ftruncate(file, static_cast<off_t>((pages - pagesLeft) * pageSize)) != 0) {
        fail("it does not fill up");
    }
    close(file);
}

void SmallDisk::makeReadOnly() const {
    if (mount("none", path_.c_str(), "tmpfs", MS_REMOUNT | MS_RDONLY, options) != 0) {
        fail("it does not become read-only");
    }
}

void SmallDisk::makeWritable() const {
    if (mount("none", path_.c_str(), "tmpfs", MS_REMOUNT, options) != 0) {
        fail("it does not become writable");
    }
}

}  // namespace vorna::support
