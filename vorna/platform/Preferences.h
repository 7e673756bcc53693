// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The application's key-value preferences, as a port. The library keeps one entry there: the table of the
/// last fetched remote configuration.

#include <vorna/base/Export.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace vorna {

/// One typed value: text, a truth value, an integer, a real number, a list, or a dictionary of such values,
/// so that an entry of another kind than expected can be told apart from no entry.
struct PreferenceValue {
    using Array = std::vector<PreferenceValue>;
    using Dictionary = std::map<std::string, PreferenceValue, std::less<>>;

    std::variant<std::string, bool, std::int64_t, double, Array, Dictionary> value;

    friend bool operator==(const PreferenceValue&, const PreferenceValue&) = default;
};

/// Calls come from any thread, concurrently. Reading may touch the disk, so it is not for hot paths.
class VORNA_EXPORT Preferences {
  public:
    Preferences() = default;
    Preferences(const Preferences&) = delete;
    Preferences& operator=(const Preferences&) = delete;
    Preferences(Preferences&&) = delete;
    Preferences& operator=(Preferences&&) = delete;
    virtual ~Preferences() = default;

    /// The value under the key; absent when there is none or the store cannot be read.
    virtual std::optional<PreferenceValue> value(std::string_view key) const = 0;

    /// Replaces the value under the key and keeps all others. Whole or not at all, also across a loss of
    /// power. False when it could not be written; the former value then stays.
    virtual bool setValue(std::string_view key, PreferenceValue value) = 0;
};

}  // namespace vorna
