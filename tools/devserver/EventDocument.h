// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <tools/devserver/Complaint.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace vorna::devserver {

/// One analytics event as a client sent it.
struct EventDocument {
    std::string name;
    std::string customValue;
    std::uint64_t createDate = 0;  ///< seconds since 1970
    std::uint64_t endDate = 0;     ///< seconds since 1970; may lie before createDate
    std::string line;  ///< the document itself, without a line break: the received bytes where they have none
};

/// Accepts an object with exactly the keys name, createDate, endDate, customValue and deviceData, each of its
/// right type. A complaint names the key.
[[nodiscard]] Reading<EventDocument> readEventDocument(std::string_view body);

}  // namespace vorna::devserver
