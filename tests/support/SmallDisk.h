// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A file system of a few kilobytes, in memory, that a test can fill up or make read-only.

#include <cstddef>
#include <filesystem>
#include <string>

namespace vorna::support {

/// It is mounted where only the test's own process sees it, and gone with it.
class SmallDisk {
  public:
    /// Empty when this system lets the test mount something; otherwise why it does not.
    static std::string whyNot();

    SmallDisk();
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;
    SmallDisk(SmallDisk&&) = delete;
    SmallDisk& operator=(SmallDisk&&) = delete;
    ~SmallDisk();

    const std::filesystem::path& path() const { return path_; }

    /// Fills the disk but for this many pages of 4096 bytes.
    void fillUpTo(std::size_t pagesLeft) const;

    void makeReadOnly() const;
    void makeWritable() const;

  private:
    std::filesystem::path path_;
};

}  // namespace vorna::support
