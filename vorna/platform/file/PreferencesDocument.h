// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The text of a preferences file, and the values in it as they stand there.
///
/// A value that some other program wrote is carried through a rewriting unharmed, whatever its kind: null is
/// kept, and a number keeps its digits, however many there are.

#include <vorna/platform/Preferences.h>

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace vorna {

struct StoredValue {
    /// As written: an integer when it has neither a fraction nor an exponent, a real number otherwise.
    struct Number {
        std::string digits;
    };

    using Array = std::vector<StoredValue>;
    using Object = std::map<std::string, StoredValue, std::less<>>;

    /// Nothing stands for null.
    std::variant<std::monostate, std::string, bool, Number, Array, Object> value;
};

/// The entries of a whole file.
using PreferencesDocument = StoredValue::Object;

/// Absent when the text is anything but one JSON object: torn, foreign, nested deeper than 512. Any bytes.
std::optional<PreferencesDocument> readPreferencesDocument(std::string_view text);

/// Absent when some text in it is not UTF-8.
std::optional<std::string> writePreferencesDocument(const PreferencesDocument& document);

/// The value in the terms of Preferences; absent for null, and for what contains null or a number beyond the
/// range of all kinds.
std::optional<PreferenceValue> preferenceValue(const StoredValue& stored);

/// The other way: absent when the value cannot be an entry of a file that is read again, being not a number,
/// infinite, or nested too deeply.
std::optional<StoredValue> storedValue(PreferenceValue value);

}  // namespace vorna
