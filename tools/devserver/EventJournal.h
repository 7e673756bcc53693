// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The file that recorded events are appended to.

#include <vorna/base/Result.h>
#include <vorna/platform/FileDescriptor.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace vorna::devserver {

struct JournalError {
    std::filesystem::path path;
    std::error_code reason;
    bool isLastLineIncomplete = false;
};

/// "cannot write PATH: REASON".
[[nodiscard]] std::string describe(const JournalError& error);

/// Holds one JSON document per line.
class EventJournal {
  public:
    /// Opens the file; creates it and its folder if necessary. Throws std::runtime_error if it cannot be
    /// written.
    explicit EventJournal(std::filesystem::path path);

    /// Appends `document`, which contains no line break, as one complete line or not at all. A file that has
    /// been deleted or moved in the meantime is created again.
    [[nodiscard]] Result<void, JournalError> append(std::string_view document);

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

  private:
    [[nodiscard]] Result<void, JournalError> open();
    [[nodiscard]] bool isCurrent() const;
    [[nodiscard]] JournalError lastError() const;

    std::filesystem::path path_;
    FileDescriptor file_;
};

}  // namespace vorna::devserver
