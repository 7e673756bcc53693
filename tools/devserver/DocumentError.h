// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Why the server does not accept a JSON document.

#include <cstddef>
#include <string>
#include <system_error>
#include <variant>
#include <vector>

namespace vorna::devserver {

/// The text is not strict JSON.
struct NotJson {
    std::size_t offset = 0;  ///< the byte at which parsing stopped
    std::error_code reason;
};

/// A value, or the whole document if `key` is empty, is not what it should be.
struct WrongValue {
    std::string key;
    std::string expected;
    std::string found;
};

/// An object lacks keys, or has keys that it must not have.
struct WrongKeys {
    std::vector<std::string> missing;
    std::vector<std::string> repeated;
    std::vector<std::string> unexpected;

    [[nodiscard]] bool areNone() const { return missing.empty() && repeated.empty() && unexpected.empty(); }
};

using DocumentError = std::variant<NotJson, WrongValue, WrongKeys>;

/// Describes the error in one line without a final full stop. Names each wrong key, up to five unexpected
/// ones.
[[nodiscard]] std::string describe(const DocumentError& error);

}  // namespace vorna::devserver
