// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A fixture for tests of code that writes files.

#include <tests/support/TemporaryFolder.h>

#include <vorna/base/Result.h>

#include <gtest/gtest.h>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <system_error>

namespace vorna::support {

/// The permissions of what has the name itself; 0 if there is nothing.
inline mode_t modeOf(const std::filesystem::path& path) {
    struct stat status = {};

    return lstat(path.c_str(), &status) == 0 ? status.st_mode & 07777U : 0;
}

/// Leaves a socket's name behind; nobody listens. The path must be short.
inline void makeSocket(const std::filesystem::path& path) {
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    EXPECT_EQ(bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0) << path;
    close(socket);
}

inline Result<void, std::error_code> failure(std::errc reason) {
    return Unexpected(std::make_error_code(reason));
}

/// Each test has its own folder.
class InTemporaryFolder : public testing::Test {
  protected:
    const TemporaryFolder temporary_;
    const std::filesystem::path root_ = temporary_.path();
};

}  // namespace vorna::support
