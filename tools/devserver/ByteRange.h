// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string_view>
#include <variant>

namespace vorna::devserver {

/// A stretch of a file.
struct ByteRange {
    std::uint64_t offset = 0;
    std::uint64_t length = 0;

    friend bool operator==(const ByteRange&, const ByteRange&) = default;
};

struct WholeFile {};  ///< no range was asked for, or in a form we need not answer: the whole file is right

struct UnsatisfiableRange {};  ///< well-formed, but nothing of the file lies in it

/// What a Range header asks of a file of `size` bytes. One range is answered; several are answered with the
/// whole file, as HTTP allows.
[[nodiscard]] std::variant<WholeFile, ByteRange, UnsatisfiableRange> readByteRange(std::string_view header,
                                                                                   std::uint64_t size);

}  // namespace vorna::devserver
