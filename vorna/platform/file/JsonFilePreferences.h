// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Preferences in one JSON file, readable to people and private to their owner (mode 0600).
///
/// A save writes a new file beside the old one, brings it to the disk and gives it the old one's name, so
/// that a crash or a loss of power leaves the old file or the new one. A torn, unreadable or foreign file
/// counts as no values; the next save replaces it whole. Values of other programs in the file are kept as
/// they are.

#include <vorna/platform/Preferences.h>

#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>

namespace vorna {

/// Several objects, and several processes, may use one file: each save adds to what it finds, one save at a
/// time, and the last writer of a key wins.
class JsonFilePreferences final : public Preferences {
  public:
    /// A larger file counts as unreadable, and none is made.
    static constexpr std::size_t largestFile = std::size_t{64} * 1024 * 1024;

    /// The file and its folder are made by the first save, the folder with mode 0700. Where the name is a
    /// symbolic link, the file that it leads to is replaced and the link stays. With empty text there are no
    /// values, and none can be saved.
    explicit JsonFilePreferences(std::string file);

    /// Reads the file anew. Absent also for null and for what contains null.
    std::optional<PreferenceValue> value(std::string_view key) const override;

    /// False also for a key or text that is not UTF-8, a number that is not finite, and a value nested deeper
    /// than 511. Waits for the disk, and at most ten seconds for another process's save.
    bool setValue(std::string_view key, PreferenceValue value) override;

  private:
    const std::string file_;
    /// Held while saving.
    std::mutex mutex_;
};

}  // namespace vorna
