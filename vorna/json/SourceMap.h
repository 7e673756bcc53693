// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A map of a JSON text: where each member and each element stands, what kind it is, and which members are
/// written twice. For programs that tell an author about a document: a decoder keeps none of this.

#include <vorna/base/Export.h>
#include <vorna/json/DecodingError.h>
#include <vorna/json/Kind.h>
#include <vorna/json/Position.h>

#include <cstddef>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace vorna::json {

/// Refers to the text that it was read from, which must outlive it. Immutable; any thread.
class VORNA_EXPORT SourceMap {
  public:
    /// Where there is none: the parent of the top, the key of an element.
    static constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

    /// One value of the text. Offsets count bytes.
    struct Entry {
        /// Number of the object or array that this value stands in; none for the top.
        std::size_t parent = none;
        /// How many of the parent's values stand before this one.
        std::size_t index = 0;
        /// Of the quotation mark that the key begins with, and of the byte behind the one that it ends with;
        /// none for what is no member of an object.
        std::size_t keyBegin = none;
        std::size_t keyEnd = none;
        /// Of the first byte of the value and of the byte behind the last.
        std::size_t valueBegin = 0;
        std::size_t valueEnd = 0;
        Kind kind = Kind::null;
        /// The same key stands before in this object: this value holds and the one before does not.
        bool repeatsKey = false;
        /// The same key stands later in this object, and the value there holds.
        bool isSuperseded = false;

        bool isMember() const noexcept { return keyBegin != none; }
    };

    /// The map, or why the text is not JSON. Strict as the decoders are: UTF-8 without a byte-order mark, one
    /// value, nesting up to 512.
    static std::variant<SourceMap, DecodingError> read(std::string_view text);

    /// In the order of the text, so that a value stands before what it contains; the first is the top.
    std::span<const Entry> entries() const noexcept { return entries_; }

    std::string_view text() const noexcept { return text_; }

    /// The member's key, with its escapes resolved; empty for what is no member.
    std::string key(std::size_t entry) const;

    /// As in "paidProducts[1].price", empty for the top. A key that is more than ASCII letters, digits, '_',
    /// '-' and '$' stands quoted in brackets, as in ["a.b"][0], so that paths differ and keep to one line.
    std::string path(std::size_t entry) const;

    /// The value as it is written.
    std::string_view valueText(std::size_t entry) const;

    /// Of the key of a member, of the value of everything else.
    Position position(std::size_t entry) const;
    Position valuePosition(std::size_t entry) const;
    Position positionAt(std::size_t offset) const;

    /// The value that a decoder would find under such a path: of equal keys the last. Absent when there is
    /// none.
    std::optional<std::size_t> find(std::string_view path) const;

  private:
    SourceMap() = default;

    std::string_view text_;
    std::vector<Entry> entries_;
    /// Offset of the first byte of each line.
    std::vector<std::size_t> lines_;
};

}  // namespace vorna::json
