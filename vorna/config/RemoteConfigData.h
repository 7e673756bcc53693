// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The data of a task to fetch the remote configuration.

#include <vorna/device/DeviceMetadata.h>

namespace vorna {

struct RemoteConfigData {
    /// Collected when the task was made.
    DeviceMetadata deviceData;

    friend bool operator==(const RemoteConfigData&, const RemoteConfigData&) = default;

    template <class Self, class Visit>
    static void visitFields(Self& self, Visit&& visit) {
        visit("deviceData", self.deviceData);
    }
};

}  // namespace vorna
