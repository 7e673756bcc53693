// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A map of a JSON text: the offset and kind of every member and element, and which keys are duplicates. For
/// tools that report on documents; decoders keep no such map.

#include <vorna/base/Export.h>
#include <vorna/base/Result.h>
#include <vorna/json/DecodingError.h>
#include <vorna/json/Kind.h>
#include <vorna/json/Path.h>
#include <vorna/json/Position.h>

#include <cstddef>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vorna::json {

/// Refers to the text that it was read from, which must outlive it. Immutable; any thread.
class VORNA_EXPORT SourceMap {
  public:
    /// The parent of the top, the key of an element.
    static constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

    /// One value of the text. Offsets are in bytes.
    struct Entry {
        /// Number of the object or array that contains this value; `none` for the top.
        std::size_t parent = none;
        /// Number of values that precede this one in its parent.
        std::size_t index = 0;
        /// The key with its quotation marks, up to but excluding `keyEnd`; `none` unless a member of an
        /// object.
        std::size_t keyBegin = none;
        std::size_t keyEnd = none;
        /// The value, up to but excluding `valueEnd`.
        std::size_t valueBegin = 0;
        std::size_t valueEnd = 0;
        Kind kind = Kind::null;
        /// The object has the same key earlier; this value replaces that one.
        bool repeatsKey = false;
        /// The object has the same key again later; that value replaces this one.
        bool isSuperseded = false;

        bool isMember() const noexcept { return keyBegin != none; }
    };

    /// The map, or why the text is not JSON. As strict as the decoders: UTF-8 without a byte-order mark, one
    /// value, at most 512 levels deep.
    static Result<SourceMap, DecodingError> read(std::string_view text);

    /// In the order of the text, so a value precedes those it contains; the first is the top.
    std::span<const Entry> entries() const noexcept { return entries_; }

    std::string_view text() const noexcept { return text_; }

    /// The member's key with its escapes decoded; empty for an element or the top.
    std::string key(std::size_t entry) const;

    Path path(std::size_t entry) const;

    /// The value as written.
    std::string_view valueText(std::size_t entry) const;

    /// Position of a member's key, or of any other value itself.
    Position position(std::size_t entry) const;
    Position valuePosition(std::size_t entry) const;
    Position positionAt(std::size_t offset) const;

    /// The value that a decoder finds at the path, that is, under the last of duplicate keys; std::nullopt if
    /// there is none.
    std::optional<std::size_t> find(const Path& path) const;

  private:
    SourceMap() = default;

    std::string_view text_;
    std::vector<Entry> entries_;
    /// Offset of the first byte of each line.
    std::vector<std::size_t> lines_;
};

}  // namespace vorna::json
