// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The remote configuration that the server serves.

#include <tools/devserver/DocumentError.h>
#include <vorna/base/Result.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <variant>

namespace vorna::devserver {

/// The configuration file cannot be read, or is not JSON.
struct ConfigFileError {
    std::filesystem::path path;
    std::variant<std::error_code, DocumentError> reason;
};

/// "PATH: REASON".
[[nodiscard]] std::string describe(const ConfigFileError& error);

/// A file with one JSON object of strings, which a developer edits while the server runs.
class ConfigFile {
  public:
    explicit ConfigFile(std::filesystem::path path) : path_(std::move(path)) {}

    /// Returns the file's current text, byte for byte; "{}" if there is no such file. It is JSON, but
    /// otherwise as the developer wrote it: values of a wrong type are served too.
    [[nodiscard]] Result<std::string, ConfigFileError> read() const;

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_;
};

/// Checks that `body` is a configuration request: an object whose only key is deviceData, itself an object.
[[nodiscard]] Result<void, DocumentError> checkConfigRequest(std::string_view body);

}  // namespace vorna::devserver
