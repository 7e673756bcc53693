// SPDX-License-Identifier: Apache-2.0
#include <tests/fuzz/Fuzz.h>

#include <vorna/events/ULID.h>

#include <optional>

using namespace vorna;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = fuzz::textOf(data, size);
    if (const std::optional<ULID> identifier = ULID::fromString(text)) {
        fuzz::require(text.size() == 26 && ULID::fromString(identifier->ulidString()) == identifier);
    }
    return 0;
}
