// SPDX-License-Identifier: Apache-2.0
#include <vorna/events/EventData.h>

namespace vorna {

json::Encoded encode(const EventData& event) {
    return json::encode(event);
}

json::Decoded<EventData> decodeEventData(std::string_view text) {
    return json::decode<EventData>(text);
}

}  // namespace vorna
