// SPDX-License-Identifier: Apache-2.0
#include <tests/fuzz/Fuzz.h>

#include <vorna/events/EventData.h>

#include <string>

using namespace vorna;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = fuzz::textOf(data, size);
    if (const json::Decoded<EventData> event = decodeEventData(text)) {
        const std::string encoded = encode(*event).value();
        fuzz::require(encode(decodeEventData(encoded).value()).value() == encoded);
    }
    return 0;
}
