// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Owns an open file, socket or event and closes it.

#include <unistd.h>

#include <utility>

namespace vorna {

class FileDescriptor {
  public:
    FileDescriptor() = default;

    /// Takes ownership of a system call's result; a negative number means no descriptor.
    explicit FileDescriptor(int number) noexcept : number_(number) {}

    FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}

    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }

    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    ~FileDescriptor() {
        if (isOpen()) {
            close(number_);
        }
    }

    bool isOpen() const noexcept { return number_ >= 0; }

    int number() const noexcept { return number_; }

  private:
    int number_ = -1;
};

}  // namespace vorna
