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

/// Objects and processes may share a folder, without waiting for each other or for anyone's lock; the last
/// writer of a table wins. A file that is truncated or foreign counts as no table, and the next save replaces
/// it. What is not a regular file (a link, say, even to one) counts as no table and is never replaced: saving
/// fails.
///
/// Earlier versions kept all tables in one document, "preferences.json" in the data directory. A table that
/// is still there is migrated when it is first read. The document is removed once the new file is on the
/// disk, unless it has other entries or is a link.
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
    const std::string dataDirectory_;
};

}  // namespace vorna
