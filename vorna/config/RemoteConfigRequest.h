// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The body of a request for the remote configuration: one JSON object with the single key "deviceData".

#include <vorna/config/RemoteConfigData.h>
#include <vorna/json/Encoding.h>

namespace vorna {

struct RemoteConfigRequest {
    /// From the task that requested the configuration.
    DeviceMetadata deviceData;

    friend bool operator==(const RemoteConfigRequest&, const RemoteConfigRequest&) = default;

    template <class Self, class Visit>
    static void visitFields(Self& self, Visit&& visit) {
        visit("deviceData", self.deviceData);
    }
};

/// Returns the text of the body, or an error for text that is not UTF-8 or a number that JSON cannot
/// represent. Any thread.
json::Encoded encodeRemoteConfigRequest(const RemoteConfigRequest& request);

}  // namespace vorna
