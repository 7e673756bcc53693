// SPDX-License-Identifier: Apache-2.0
#pragma once

/// One recorded event, and its form on the wire.

#include <vorna/device/DeviceMetadata.h>
#include <vorna/json/Decoding.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vorna {

/// A plain value. It carries no identifier of its own and none of the session.
struct EventData {
    std::string name;
    /// Seconds since 1970; the end may lie before the start when the caller said so.
    std::uint64_t createDate = 0;
    std::uint64_t endDate = 0;
    /// Empty when the caller gave none.
    std::string customValue;
    DeviceMetadata deviceData;

    friend bool operator==(const EventData&, const EventData&) = default;

    /// The fields in the order of the wire.
    template <class Self, class Visit>
    static void visitFields(Self& self, Visit&& visit) {
        visit("name", self.name);
        visit("createDate", self.createDate);
        visit("endDate", self.endDate);
        visit("customValue", self.customValue);
        visit("deviceData", self.deviceData);
    }
};

/// The body of the event's request: one JSON object of five keys. Fails for text that is not UTF-8.
json::Encoded encode(const EventData& event);

/// The same shape read back; all five keys are required.
json::Decoded<EventData> decodeEventData(std::string_view text);

}  // namespace vorna
