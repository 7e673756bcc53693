// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Takes the snapshots described in DeviceMetadata.h.

#include <vorna/device/DeviceMetadata.h>
#include <vorna/platform/Clock.h>
#include <vorna/platform/Mutex.h>
#include <vorna/platform/SharedValue.h>
#include <vorna/platform/System.h>

#include <memory>
#include <mutex>

namespace vorna {

/// Any thread, concurrently. Each snapshot takes one statvfs and one statx; it never waits.
class DeviceMetadataCollector {
  public:
    DeviceMetadataCollector(std::shared_ptr<System> system, std::shared_ptr<const Clock> clock);

    /// Takes a snapshot of the current state. The first one turns on battery monitoring permanently. If the
    /// file system's size cannot be read, both disk sizes are absent; if the documents folder's creation time
    /// cannot be read, that is always printed and the time is 0. A system without a documents folder is
    /// fatal.
    DeviceMetadata collect(SharedValue<IdentityDescription> identity);

  private:
    SharedValue<DeviceDescription> describe();

    const std::shared_ptr<System> system_;
    const std::shared_ptr<const Clock> clock_;

    Mutex mutex_;
    /// The facts from which the description was made; it is remade only when they change.
    std::shared_ptr<const SystemFacts> describedFacts_;
    SharedValue<DeviceDescription> description_;
};

}  // namespace vorna
