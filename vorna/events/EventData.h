// SPDX-License-Identifier: Apache-2.0
#pragma once

/// One recorded event and its JSON form.

#include <vorna/device/DeviceMetadata.h>
#include <vorna/json/Decoding.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vorna {

/// A plain value. It has no identifier, neither its own nor the session's.
struct EventData {
    std::string name;
    /// Seconds since 1970; the end may precede the start if the caller passes such dates.
    std::uint64_t createDate = 0;
    std::uint64_t endDate = 0;
    /// Empty if the caller gave none.
    std::string customValue;
    DeviceMetadata deviceData;

    friend bool operator==(const EventData&, const EventData&) = default;

    /// Visits the fields in the order of the JSON.
    template <class Self, class Visit>
    static void visitFields(Self& self, Visit&& visit) {
        visit("name", self.name);
        visit("createDate", self.createDate);
        visit("endDate", self.endDate);
        visit("customValue", self.customValue);
        visit("deviceData", self.deviceData);
    }
};

/// Encodes the body of the event's request: one JSON object with five keys. Fails for text that is not UTF-8.
json::Encoded encode(const EventData& event);

/// Decodes the same form; all five keys are required.
json::Decoded<EventData> decodeEventData(std::string_view text);

}  // namespace vorna
