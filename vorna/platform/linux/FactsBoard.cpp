// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/linux/FactsBoard.h>

#include <utility>

namespace vorna {

FactsBoard::FactsBoard(SystemFacts facts) : facts_(std::make_shared<const SystemFacts>(std::move(facts))) {}

std::shared_ptr<const SystemFacts> FactsBoard::facts() const {
    const std::scoped_lock lock(exchanging_);
    return facts_;
}

void FactsBoard::change(const std::function<void(SystemFacts&)>& edit) {
    const std::shared_ptr<const SystemFacts> before = facts();
    SystemFacts after = *before;
    edit(after);
    if (after == *before) {
        return;
    }
    std::shared_ptr<const SystemFacts> posted = std::make_shared<const SystemFacts>(std::move(after));
    const std::scoped_lock lock(exchanging_);
    facts_.swap(posted);
}

void FactsBoard::reportScreen(const ScreenFacts& screen) {
    const std::scoped_lock lock(changing_);
    isScreenReported_ = true;
    change([&](SystemFacts& facts) { facts.screen = screen; });
}

void FactsBoard::supplyBundle(const BundleFacts& bundle) {
    const std::scoped_lock lock(changing_);
    change([&](SystemFacts& facts) {
        const auto supply = [](std::optional<std::string>& known,
                               const std::optional<std::string>& supplied) {
            if (!known) {
                known = supplied;
            }
        };
        supply(facts.bundle.identifier, bundle.identifier);
        supply(facts.bundle.shortVersion, bundle.shortVersion);
        supply(facts.bundle.version, bundle.version);
    });
}

void FactsBoard::detectScreen(const ScreenFacts& screen) {
    const std::scoped_lock lock(changing_);
    if (!isScreenReported_) {
        change([&](SystemFacts& facts) { facts.screen = screen; });
    }
}

void FactsBoard::showBattery() {
    const std::scoped_lock lock(changing_);
    isBatteryShown_ = true;
    change([&](SystemFacts& facts) {
        facts.battery = battery_;
        facts.battery.isMonitoringEnabled = true;
    });
}

void FactsBoard::setBattery(const BatteryFacts& battery) {
    const std::scoped_lock lock(changing_);
    battery_ = battery;
    if (isBatteryShown_) {
        change([&](SystemFacts& facts) {
            facts.battery = battery_;
            facts.battery.isMonitoringEnabled = true;
        });
    }
}

void FactsBoard::setBiometricSupported(bool isSupported) {
    const std::scoped_lock lock(changing_);
    change([&](SystemFacts& facts) { facts.isBiometricSupported = isSupported; });
}

void FactsBoard::setNameAndVersion(const std::string& deviceName, const std::string& osVersion) {
    const std::scoped_lock lock(changing_);
    change([&](SystemFacts& facts) {
        facts.deviceName = deviceName;
        facts.osVersion = osVersion;
    });
}

}  // namespace vorna
