// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The body of a request for the remote configuration: one JSON object with the single key "deviceData".

#include <vorna/device/DeviceMetadata.h>

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

}  // namespace vorna
