// SPDX-License-Identifier: Apache-2.0
#pragma once

/// What every fuzz target shares.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace vorna::fuzz {

inline std::string_view textOf(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

/// What must hold whatever the input.
inline void require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

}  // namespace vorna::fuzz
