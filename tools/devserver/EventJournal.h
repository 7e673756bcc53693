// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <tools/devserver/FileDescriptor.h>

#include <filesystem>
#include <string>
#include <string_view>

namespace vorna::devserver {

/// The file that recorded events are appended to, one JSON document a line.
class EventJournal {
  public:
    /// Opens the file, making it and its folder if need be. Throws std::runtime_error when it cannot be
    /// written.
    explicit EventJournal(std::filesystem::path path);

    /// Appends `document`, which holds no line break, as one line: all of it or nothing. A file that was
    /// deleted or moved away in the meantime is begun anew. Returns what went wrong, or an empty text.
    [[nodiscard]] std::string append(std::string_view document);

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

  private:
    [[nodiscard]] std::string open();
    [[nodiscard]] bool isCurrent() const;

    std::filesystem::path path_;
    FileDescriptor file_;
};

}  // namespace vorna::devserver
