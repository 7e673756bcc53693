// SPDX-License-Identifier: Apache-2.0
#pragma once

/// What a task to fetch the remote configuration carries.

#include <vorna/device/DeviceMetadata.h>

namespace vorna {

struct RemoteConfigData {
    /// Taken when the task was made.
    DeviceMetadata deviceData;

    friend bool operator==(const RemoteConfigData&, const RemoteConfigData&) = default;

    template <class Self, class Visit>
    static void visitFields(Self& self, Visit&& visit) {
        visit("deviceData", self.deviceData);
    }
};

}  // namespace vorna
