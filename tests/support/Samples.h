// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Sample records for tests that need one but do not care what it contains.

#include <tests/support/FixedSystem.h>
#include <tests/support/SettableClock.h>

#include <vorna/device/DeviceMetadataCollector.h>
#include <vorna/events/EventData.h>

#include <memory>
#include <string>
#include <utility>

namespace vorna::support {

inline DeviceMetadata sampleDeviceMetadata() {
    DeviceMetadataCollector collector(std::make_shared<FixedSystem>(), std::make_shared<SettableClock>());
    return collector.collect(SharedValue<IdentityDescription>({1'690'000'000, "", "user", "app"}));
}

inline EventData sampleEvent(std::string name = "level_up", std::string customValue = "7") {
    return {std::move(name), 1'704'067'200, 1'704'067'201, std::move(customValue), sampleDeviceMetadata()};
}

}  // namespace vorna::support
