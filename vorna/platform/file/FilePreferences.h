// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Preferences in files: one JSON object of texts for each table, readable to people and private to their
/// owner (mode 0600), in the folder "preferences" of the application's data directory.

#include <vorna/platform/Preferences.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace vorna {

/// Objects and processes may share a folder; the last writer of a table wins. A file that is truncated,
/// foreign or not a regular file counts as no table, and the next save replaces it.
///
/// Earlier versions kept all tables in one document, "preferences.json" in the data directory. A table that
/// is still there is migrated when it is first read, and the document is removed unless it has other entries.
class FilePreferences final : public Preferences {
  public:
    /// A larger file is not read.
    static constexpr std::size_t largestFile = std::size_t{64} * 1024 * 1024;

    /// The folders are created by the first save, with mode 0700. If the data directory is empty text, there
    /// are no tables and none can be saved.
    explicit FilePreferences(std::string dataDirectory);

    std::optional<Table> table(std::string_view key) const override;

    /// Fails with EILSEQ for text that is not UTF-8, with EFBIG for a table too large to be read again. Waits
    /// for the disk.
    Result<void, std::error_code> setTable(std::string_view key, const Table& table) override;

    bool
    readTable(std::string_view key,
              const std::function<void(std::string_view entry, std::string_view text)>& visit) const override;

    Result<void, std::error_code> writeTable(std::string_view key, const TextTable& table) override;

  private:
    Result<std::string, std::error_code> readDocument(std::string_view key) const;

    const std::string dataDirectory_;
};

}  // namespace vorna
