// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The snapshot of device, application and identity that every event and every configuration request carries.
///
/// It behaves as a plain record of 26 fields. What seldom changes between two snapshots is held in two shared
/// parts, so that a hundred thousand waiting events keep one description of the device and not as many.

#include <vorna/json/Decoding.h>
#include <vorna/platform/SharedValue.h>
#include <vorna/platform/System.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vorna {

/// The device and the application that runs on it.
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

/// Who is using it, as far as the facade knows when the snapshot is taken.
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

/// A value; snapshots may be copied and moved between threads freely.
struct DeviceMetadata {
    SharedValue<DeviceDescription> device;
    SharedValue<IdentityDescription> identity;
    /// Bytes; absent when the file system could not be asked.
    std::optional<std::uint64_t> totalDiskSpace;
    std::optional<std::uint64_t> freeDiskSpace;
    /// As in "UTC+3:00".
    std::optional<std::string> timezoneOffset;
    /// Seconds since 1970 at which the application's documents folder was made; 0 when that is not known.
    std::optional<std::uint64_t> localInstallTime;

    friend bool operator==(const DeviceMetadata&, const DeviceMetadata&) = default;

    /// The fields in the order of the wire.
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

/// "UTC+3:00" for 10800 seconds ahead of UTC. West of UTC the sign stands twice, as in "UTC--5:00": the
/// service has always received it so.
std::string timezoneText(std::int32_t secondsFromGMT);

}  // namespace vorna
