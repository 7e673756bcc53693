// SPDX-License-Identifier: Apache-2.0
#include <vorna/device/DeviceMetadataCollector.h>

#include <vorna/platform/FatalError.h>
#include <vorna/platform/Log.h>

#include <string>
#include <utility>

namespace vorna {

namespace {

SharedValue<DeviceDescription> described(const SystemFacts& facts) {
    DeviceDescription description;
    description.deviceModel = facts.deviceModel;
    description.deviceName = facts.deviceName;
    description.osVersion = facts.osVersion;
    description.locale = facts.locale;
    description.screenWidth = facts.screen.width;
    description.screenHeight = facts.screen.height;
    description.screenScale = facts.screen.scale;
    description.batteryLevel = facts.battery.level;
    description.isBatteryMonitoringEnabled = facts.battery.isMonitoringEnabled;
    description.batteryState = facts.battery.state;
    description.isBoldTextEnabled = facts.isBoldTextEnabled;
    description.isBiometricSupported = facts.isBiometricSupported;
    description.idfv = facts.identifierForVendor.value_or("");
    description.idfa = facts.advertisingIdentifier;
    description.appVersion = facts.bundle.shortVersion.value_or("Unknown version");
    description.buildNumber = facts.bundle.version.value_or("Unknown build");
    // The protocol's only platform name, regardless of the client's system.
    description.platform = "ios";
    description.bundle = facts.bundle.identifier.value_or("Unknown Identifier");
    return SharedValue<DeviceDescription>(std::move(description));
}

std::uint64_t documentsCreationTime(const System& system) {
    const std::optional<std::string> documents = system.documentsDirectory();
    if (!documents) {
        fatalError("there is no folder for the application's documents");
    }
    const ItemCreation creation = system.creation(*documents);
    if (!creation) {
        log::always({"Error retrieving file attributes: ", creation.error()});
        return 0;
    }
    return *creation ? wholeSeconds(**creation) : 0;
}

}  // namespace

DeviceMetadataCollector::DeviceMetadataCollector(std::shared_ptr<System> system,
                                                 std::shared_ptr<const Clock> clock)
    : system_(std::move(system)),
      clock_(std::move(clock)) {}

SharedValue<DeviceDescription> DeviceMetadataCollector::describe() {
    std::shared_ptr<const SystemFacts> facts = system_->facts();
    const std::scoped_lock lock(mutex_);
    if (facts != describedFacts_) {
        description_ = described(*facts);
        describedFacts_ = std::move(facts);
    }
    return description_;
}

DeviceMetadata DeviceMetadataCollector::collect(SharedValue<IdentityDescription> identity) {
    system_->enableBatteryMonitoring();

    DeviceMetadata metadata;
    if (const std::optional<FileSystemSize> size = system_->homeFileSystem()) {
        metadata.totalDiskSpace = size->total;
        metadata.freeDiskSpace = size->free;
    }
    metadata.timezoneOffset = timezoneText(system_->secondsFromGMT(clock_->now()));
    metadata.localInstallTime = documentsCreationTime(*system_);
    metadata.identity = std::move(identity);
    metadata.device = describe();
    return metadata;
}

}  // namespace vorna
