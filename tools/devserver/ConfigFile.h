// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <tools/devserver/Complaint.h>

#include <filesystem>
#include <string>
#include <string_view>

namespace vorna::devserver {

/// The remote configuration that the server hands out: a file with one JSON object of strings, which a
/// developer edits while the server runs.
class ConfigFile {
  public:
    explicit ConfigFile(std::filesystem::path path) : path_(std::move(path)) {}

    /// The file's text as it stands at this moment, byte for byte; "{}" when there is no such file. It is
    /// JSON, but otherwise as the developer wrote it: values of a wrong type are served too. The complaint
    /// names the file.
    [[nodiscard]] Reading<std::string> read() const;

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_;
};

/// Nothing, or why `body` is not a configuration request: an object whose only key is deviceData, itself an
/// object.
[[nodiscard]] std::string complaintAboutConfigRequest(std::string_view body);

}  // namespace vorna::devserver
