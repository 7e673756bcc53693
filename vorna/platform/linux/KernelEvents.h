// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The kernel's announcements that a device has appeared, changed or gone (netlink, NETLINK_KOBJECT_UEVENT).

#include <vorna/platform/FileDescriptor.h>

#include <string_view>

namespace vorna {

/// True for an announcement about a power supply: a header, then assignments, each ended by a zero byte.
bool concernsPowerSupply(std::string_view announcement) noexcept;

/// One listener; used on one thread. Where the system refuses such a socket it stays closed.
class KernelEvents {
  public:
    /// Begins to listen.
    void open() noexcept;

    /// What to wait for readability of; negative while closed, which poll() passes over.
    int descriptor() const noexcept { return socket_.number(); }

    /// Takes all announcements that have arrived, without waiting. True when one concerned a power supply, or
    /// some were lost. A socket that fails for good is closed.
    bool takePowerSupplyChange() noexcept;

  private:
    FileDescriptor socket_;
};

}  // namespace vorna
