// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Takes the snapshots described in DeviceMetadata.h.

#include <vorna/device/DeviceMetadata.h>
#include <vorna/platform/Clock.h>
#include <vorna/platform/SharedValue.h>
#include <vorna/platform/System.h>

#include <memory>
#include <mutex>

namespace vorna {

/// Any thread, concurrently. One statvfs and one statx a snapshot; no other system call, no waiting.
class DeviceMetadataCollector {
  public:
    DeviceMetadataCollector(std::shared_ptr<System> system, std::shared_ptr<const Clock> clock);

    /// The state of this moment. Battery monitoring is switched on by the first snapshot and stays on. A file
    /// system that cannot be asked leaves both disk sizes out; a documents folder that cannot be asked is
    /// reported on the console, always, and gives 0; a system without any place for documents is fatal.
    DeviceMetadata collect(SharedValue<IdentityDescription> identity);

  private:
    SharedValue<DeviceDescription> describe();

    const std::shared_ptr<System> system_;
    const std::shared_ptr<const Clock> clock_;

    std::mutex mutex_;
    /// The facts that the description was made from; it is made anew only when they have changed.
    std::shared_ptr<const SystemFacts> describedFacts_;
    SharedValue<DeviceDescription> description_;
};

}  // namespace vorna
