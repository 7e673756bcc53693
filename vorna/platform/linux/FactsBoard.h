// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Where the facts about the system are posted: read by every recorded event, changed seldom.

#include <vorna/platform/System.h>

#include <functional>
#include <memory>
#include <mutex>

namespace vorna {

/// Any thread, concurrently. Readers wait at most for the exchange of one pointer, never for a change being
/// prepared.
class FactsBoard {
  public:
    explicit FactsBoard(SystemFacts facts);

    /// Never null, and the same object as long as the facts are the same.
    std::shared_ptr<const SystemFacts> facts() const;

    /// The screen as those who draw on it know it.
    void reportScreen(const ScreenFacts& screen);

    /// What the options left open of the application's own values.
    void supplyBundle(const BundleFacts& bundle);

    /// The screen as the kernel knows it; counts until one has been reported.
    void detectScreen(const ScreenFacts& screen);

    /// From now on the battery is shown.
    void showBattery();

    /// The battery's level and state, shown now or as soon as it is to be shown at all.
    void setBattery(const BatteryFacts& battery);

    void setBiometricSupported(bool isSupported);

  private:
    void change(const std::function<void(SystemFacts&)>& edit);

    /// Taken by those who change, for the whole change; before the other one.
    std::mutex changing_;
    bool isScreenReported_ = false;
    bool isBatteryShown_ = false;
    BatteryFacts battery_;

    mutable std::mutex exchanging_;
    std::shared_ptr<const SystemFacts> facts_;
};

}  // namespace vorna
