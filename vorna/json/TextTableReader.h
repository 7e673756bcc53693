// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Reads a table of texts from JSON entry by entry. A tree of the same text would take ten times its memory.

#include <vorna/base/Result.h>
#include <vorna/json/DecodingError.h>

#include <optional>
#include <string_view>

namespace vorna::json {

/// Receives the entries of a table.
class TextTableSink {
  public:
    TextTableSink() = default;
    TextTableSink(const TextTableSink&) = delete;
    TextTableSink& operator=(const TextTableSink&) = delete;
    TextTableSink(TextTableSink&&) = delete;
    TextTableSink& operator=(TextTableSink&&) = delete;
    virtual ~TextTableSink() = default;

    /// Forgets all entries: the table's key has occurred again, and the last one counts.
    virtual void clear() = 0;

    /// Adds an entry. The views are valid during the call. The last of duplicate keys counts.
    virtual void add(std::string_view key, std::string_view value) = 0;
};

/// Passes on the entries of an object of strings: of the member with that key of the object in the text, or
/// of the text's own object if there is no key. One value in it that is not a string fails the whole, and the
/// error has its path. As strict as `parse`. If the reading fails, what the sink has received means nothing.
/// Any thread; any bytes.
Result<void, DecodingError> readTextTable(std::string_view text, std::optional<std::string_view> member,
                                          TextTableSink& sink);

}  // namespace vorna::json
