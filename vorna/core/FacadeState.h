// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The facade's state about the application and its user: set by `Init` and `SetAdid`, read by the getters
/// and for every record.

#include <vorna/device/DeviceMetadata.h>
#include <vorna/platform/Mutex.h>
#include <vorna/platform/SharedValue.h>

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

namespace vorna {

/// Any thread.
class FacadeState {
  public:
    std::optional<std::string> appID() const { return read(appID_); }

    std::optional<std::string> adid() const { return read(adid_); }

    std::optional<std::string> userID() const { return read(userID_); }

    std::optional<std::uint64_t> installTime() const { return read(installTime_); }

    void setAppID(std::string appID);
    void setAdid(std::string adid);
    void setIdentity(std::string userID, std::uint64_t installTime);

    /// Returns the same values for records, with empty text and 0 for absent ones.
    SharedValue<IdentityDescription> description() const { return read(description_); }

  private:
    template <class Value>
    Value read(const Value& value) const {
        const std::scoped_lock lock(mutex_);
        return value;
    }

    mutable Mutex mutex_;
    std::optional<std::string> appID_;
    std::optional<std::string> adid_;
    std::optional<std::string> userID_;
    std::optional<std::uint64_t> installTime_;
    SharedValue<IdentityDescription> description_{IdentityDescription{0, {}, {}, {}}};
};

}  // namespace vorna
