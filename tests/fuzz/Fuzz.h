// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Shared by all fuzz targets.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace vorna::fuzz {

inline std::string_view textOf(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

/// Aborts if a property does not hold for the input.
inline void require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

}  // namespace vorna::fuzz
