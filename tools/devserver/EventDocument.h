// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Analytics events as clients send them.

#include <tools/devserver/DocumentError.h>
#include <vorna/base/Result.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace vorna::devserver {

struct EventDocument {
    std::string name;
    std::string customValue;
    std::uint64_t createDate = 0;  ///< seconds since 1970
    std::uint64_t endDate = 0;     ///< seconds since 1970; may be before createDate
    std::string line;  ///< the document itself, without a line break: the received bytes if they have none
};

/// Accepts an object with exactly the keys name, createDate, endDate, customValue and deviceData, each of its
/// right type.
[[nodiscard]] Result<EventDocument, DocumentError> readEventDocument(std::string_view body);

}  // namespace vorna::devserver
