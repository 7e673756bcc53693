// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <unistd.h>

#include <utility>

namespace vorna::devserver {

/// Owns one POSIX file descriptor and closes it at the end of its life. Empty when the number is negative.
class FileDescriptor {
  public:
    FileDescriptor() = default;

    explicit FileDescriptor(int number) : number_(number) {}

    FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}

    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }

    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    ~FileDescriptor() {
        if (number_ >= 0) {
            ::close(number_);
        }
    }

    [[nodiscard]] int number() const { return number_; }

    [[nodiscard]] bool isOpen() const { return number_ >= 0; }

  private:
    int number_ = -1;
};

}  // namespace vorna::devserver
