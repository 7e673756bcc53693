// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Publishes the facts about the system: read for every recorded event, rarely changed.

#include <vorna/platform/Mutex.h>
#include <vorna/platform/System.h>

#include <functional>
#include <memory>
#include <mutex>
#include <string>

namespace vorna {

/// Any thread, concurrently. Readers wait at most for a pointer swap, never while a change is prepared.
class FactsBoard {
  public:
    explicit FactsBoard(SystemFacts facts);

    /// Never null; the same object until the facts change.
    std::shared_ptr<const SystemFacts> facts() const;

    /// Sets the screen as reported by the toolkit that draws on it.
    void reportScreen(const ScreenFacts& screen);

    /// Sets the parts of the application's description that the options did not give.
    void supplyBundle(const BundleFacts& bundle);

    /// Sets the screen as reported by the kernel; ignored once the toolkit has reported one.
    void detectScreen(const ScreenFacts& screen);

    /// Includes the battery in the facts from now on.
    void showBattery();

    /// Sets the battery's level and state, for now or for when the battery is included.
    void setBattery(const BatteryFacts& battery);

    void setBiometricSupported(bool isSupported);

    void setNameAndVersion(const std::string& deviceName, const std::string& osVersion);

  private:
    void change(const std::function<void(SystemFacts&)>& edit);

    /// Held throughout a change; locked before the other one.
    Mutex changing_;
    bool isScreenReported_ = false;
    bool isBatteryShown_ = false;
    BatteryFacts battery_;

    mutable Mutex exchanging_;
    std::shared_ptr<const SystemFacts> facts_;
};

}  // namespace vorna
