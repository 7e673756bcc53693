// SPDX-License-Identifier: Apache-2.0
#include <tests/fuzz/Fuzz.h>

#include <vorna/events/EventData.h>

#include <string>
#include <variant>

using namespace vorna;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = fuzz::textOf(data, size);
    const json::Decoded<EventData> decoded = decodeEventData(text);
    if (const EventData* const event = std::get_if<EventData>(&decoded)) {
        // What was read can be written, and what was written reads back as the same.
        const std::string written = std::get<std::string>(encode(*event));
        fuzz::require(std::get<std::string>(encode(std::get<EventData>(decodeEventData(written)))) ==
                      written);
    }
    return 0;
}
