// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The snapshot of device, application and identity in every event and every configuration request.
///
/// It behaves like a plain record of 26 fields. Fields that rarely change between snapshots are in two shared
/// parts, so that a hundred thousand queued events hold a single description of the device.

#include <vorna/json/Decoding.h>
#include <vorna/platform/SharedValue.h>
#include <vorna/platform/System.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vorna {

/// The device and the application running on it.
struct DeviceDescription {
    std::string deviceModel;
    std::string deviceName;
    std::string osVersion;
    std::string locale;
    double screenWidth = 0;
    double screenHeight = 0;
    double screenScale = 0;
    float batteryLevel = -1;
    bool isBatteryMonitoringEnabled = false;
    BatteryState batteryState = BatteryState::unknown;
    bool isBoldTextEnabled = false;
    bool isBiometricSupported = false;
    std::optional<std::string> idfv;
    std::optional<std::string> idfa;
    std::optional<std::string> appVersion;
    std::optional<std::string> buildNumber;
    std::string platform;
    std::string bundle;

    friend bool operator==(const DeviceDescription&, const DeviceDescription&) = default;
};

/// The user, as known to the facade when the snapshot is taken.
struct IdentityDescription {
    /// Seconds since 1970.
    std::optional<std::uint64_t> installTime;
    std::string adid;
    std::string userId;
    std::string appId;

    friend bool operator==(const IdentityDescription&, const IdentityDescription&) = default;
};

/// True for the four states that a device can report.
constexpr bool isKnownValue(BatteryState state) noexcept {
    return state <= BatteryState::full;
}

/// A value; snapshots may be copied and passed between threads freely.
struct DeviceMetadata {
    SharedValue<DeviceDescription> device;
    SharedValue<IdentityDescription> identity;
    /// Bytes; std::nullopt if the file system's size cannot be read.
    std::optional<std::uint64_t> totalDiskSpace;
    std::optional<std::uint64_t> freeDiskSpace;
    /// As in "UTC+3:00".
    std::optional<std::string> timezoneOffset;
    /// When the application's documents folder was created, in seconds since 1970; 0 if unknown.
    std::optional<std::uint64_t> localInstallTime;

    friend bool operator==(const DeviceMetadata&, const DeviceMetadata&) = default;

    /// Visits the fields in the order in which they are sent.
    template <class Self, class Visit>
    static void visitFields(Self& self, Visit&& visit) {
        auto& device = part(self.device);
        auto& identity = part(self.identity);
        visit("deviceModel", device.deviceModel);
        visit("deviceName", device.deviceName);
        visit("osVersion", device.osVersion);
        visit("locale", device.locale);
        visit("screenWidth", device.screenWidth);
        visit("screenHeight", device.screenHeight);
        visit("screenScale", device.screenScale);
        visit("batteryLevel", device.batteryLevel);
        visit("isBatteryMonitoringEnabled", device.isBatteryMonitoringEnabled);
        visit("batteryState", device.batteryState);
        visit("isBoldTextEnabled", device.isBoldTextEnabled);
        visit("isBiometricSupported", device.isBiometricSupported);
        visit("totalDiskSpace", self.totalDiskSpace);
        visit("freeDiskSpace", self.freeDiskSpace);
        visit("idfv", device.idfv);
        visit("idfa", device.idfa);
        visit("timezoneOffset", self.timezoneOffset);
        visit("localInstallTime", self.localInstallTime);
        visit("installTime", identity.installTime);
        visit("appVersion", device.appVersion);
        visit("buildNumber", device.buildNumber);
        visit("platform", device.platform);
        visit("bundle", device.bundle);
        visit("adid", identity.adid);
        visit("userId", identity.userId);
        visit("appId", identity.appId);
    }

  private:
    template <class T>
    static const T& part(const SharedValue<T>& value) {
        return *value;
    }

    template <class T>
    static T& part(SharedValue<T>& value) {
        return value.edit();
    }
};

/// Returns "UTC+3:00" for 10800 seconds ahead of UTC. West of UTC the sign is doubled, as in "UTC--5:00": the
/// service expects this form.
std::string timezoneText(std::int32_t secondsFromGMT);

}  // namespace vorna
