// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string_view>
#include <variant>

namespace vorna::devserver {

/// Part of a file.
struct ByteRange {
    std::uint64_t offset = 0;
    std::uint64_t length = 0;

    friend bool operator==(const ByteRange&, const ByteRange&) = default;
};

/// No range was requested, or in a form that may be answered with the whole file.
struct WholeFile {};

/// A well-formed range outside the file.
struct UnsatisfiableRange {};

/// Parses a Range header for a file of `size` bytes. A request for several ranges gets the whole file, as
/// HTTP allows.
[[nodiscard]] std::variant<WholeFile, ByteRange, UnsatisfiableRange> readByteRange(std::string_view header,
                                                                                   std::uint64_t size);

}  // namespace vorna::devserver
