// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A fake system: the test sets every answer. Records some of the calls.

#include <vorna/platform/System.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

namespace vorna::support {

class FixedSystem final : public System {
  public:
    // The knobs. Except for `setFacts`, set them before the system is shared between threads.
    std::optional<FileSystemSize> fileSystem = FileSystemSize{64'000'000'000, 12'345'678'901};
    std::optional<std::string> documents = "/documents";
    ItemCreation documentsCreation = Date{1'700'000'000.5};
    std::int32_t offsetFromGMT = 10'800;

    void setFacts(SystemFacts facts) {
        const std::scoped_lock lock(mutex_);
        facts_ = std::make_shared<const SystemFacts>(std::move(facts));
    }

    static SystemFacts sampleFacts() {
        SystemFacts facts;
        facts.deviceModel = "Librem 5";
        facts.deviceName = "Deniz'in telefonu";
        facts.osVersion = "12";
        facts.locale = "tr_TR";
        facts.screen = {360, 720, 2};
        facts.battery = {0.87F, BatteryState::charging, true};
        facts.isBiometricSupported = true;
        facts.identifierForVendor = "5F0C4C7E-8E0B-8E1F-9A2B-0123456789AB";
        facts.advertisingIdentifier = "00000000-0000-0000-0000-000000000000";
        facts.bundle = {"com.example.app", "1.2.3", "45"};
        return facts;
    }

    int timesMonitoringWasEnabled() const { return monitoringEnabled_; }

    /// The bundle supplied last by the screens; the facts remain as set.
    std::optional<BundleFacts> suppliedBundle() const {
        const std::scoped_lock lock(mutex_);
        return suppliedBundle_;
    }

    std::shared_ptr<const SystemFacts> facts() const override {
        const std::scoped_lock lock(mutex_);
        return facts_;
    }

    /// Reflected in the facts.
    void enableBatteryMonitoring() override {
        ++monitoringEnabled_;
        const std::scoped_lock lock(mutex_);
        if (!facts_->battery.isMonitoringEnabled) {
            auto changed = std::make_shared<SystemFacts>(*facts_);
            changed->battery.isMonitoringEnabled = true;
            facts_ = std::move(changed);
        }
    }

    void setScreen(const ScreenFacts& screen) override {
        const std::scoped_lock lock(mutex_);
        auto changed = std::make_shared<SystemFacts>(*facts_);
        changed->screen = screen;
        facts_ = std::move(changed);
    }

    void supplyBundle(const BundleFacts& bundle) override {
        const std::scoped_lock lock(mutex_);
        suppliedBundle_ = bundle;
    }

    std::optional<FileSystemSize> homeFileSystem() const override { return fileSystem; }

    std::optional<std::string> documentsDirectory() const override { return documents; }

    ItemCreation creation(const std::string& path) const override {
        return path == documents ? documentsCreation : Unexpected("asked for " + path);
    }

    std::int32_t secondsFromGMT(Date) const override { return offsetFromGMT; }

  private:
    mutable std::mutex mutex_;
    std::shared_ptr<const SystemFacts> facts_ = std::make_shared<const SystemFacts>(sampleFacts());
    std::optional<BundleFacts> suppliedBundle_;
    std::atomic<int> monitoringEnabled_ = 0;
};

}  // namespace vorna::support
