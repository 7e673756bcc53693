// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A file system of a few kilobytes, in memory, that a test can fill up or make read-only.

#include <cstddef>
#include <filesystem>
#include <string>

namespace vorna::support {

/// Mounted where only the test's process sees it; it disappears with the process.
class SmallDisk {
  public:
    /// Returns why this system does not let the test mount anything; empty if it does.
    static std::string whyNot();

    SmallDisk();
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;
    SmallDisk(SmallDisk&&) = delete;
    SmallDisk& operator=(SmallDisk&&) = delete;
    ~SmallDisk();

    const std::filesystem::path& path() const { return path_; }

    /// Fills the disk except for this many pages of 4096 bytes.
    void fillUpTo(std::size_t pagesLeft) const;

    void makeReadOnly() const;
    void makeWritable() const;

  private:
    std::filesystem::path path_;
};

}  // namespace vorna::support
