// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Scans a text that is known to be JSON for the offsets of its values. Each offset passed in must come from
/// such a scan. Nothing here recurses.

#include <vorna/json/Kind.h>
#include <vorna/json/Path.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace vorna::json {

/// The first byte at or after `at` that is not white space; the end of the text if there is none.
std::size_t skipSpace(std::string_view text, std::size_t at) noexcept;

/// The byte after the string that begins at `at`.
std::size_t endOfString(std::string_view text, std::size_t at) noexcept;

/// The byte after the value that begins at `at`.
std::size_t endOfValue(std::string_view text, std::size_t at) noexcept;

/// The kind of the value that begins at `at`.
Kind kindAt(std::string_view text, std::size_t at) noexcept;

/// Decodes a key or string that is given with its quotation marks.
std::string unquoted(std::string_view quoted);

/// The offset of the value at the path, under the last of duplicate keys; std::nullopt if there is none.
std::optional<std::size_t> findValue(std::string_view text, const Path& path);

}  // namespace vorna::json
