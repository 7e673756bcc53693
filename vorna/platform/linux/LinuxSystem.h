// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The system port on Linux. Sources of the facts:
///
///   device model      the device tree, else DMI's product name, else the processor architecture
///   device name       PRETTY_HOSTNAME in /etc/machine-info, else the host name
///   system version    VERSION_ID in os-release, else the kernel's release
///   locale            $LC_ALL, $LC_MESSAGES, $LANG, read at construction
///   screen            setScreen(), until then the kernel's list of connected displays
///   battery           /sys/class/power_supply
///   bold text         always false: desktops have a text size, but no bold text setting
///   biometrics        whether fprintd has a finger of the user enrolled
///   vendor id         a keyed hash of /etc/machine-id
///   advertising id    all zeros: Linux has none
///
/// Construction reads a handful of small files from kernel memory. The battery, the display and the
/// fingerprint reader are queried on a background thread, which also follows changes of the device's name and
/// the system's version.

#include <vorna/platform/System.h>
#include <vorna/platform/linux/Environment.h>
#include <vorna/platform/linux/FactsBoard.h>
#include <vorna/platform/linux/SystemWatch.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace vorna {

struct LinuxSystemOptions {
    BundleFacts bundle;
    /// The application's folder, as an absolute path. std::nullopt or empty: defaultDataDirectory().
    std::optional<std::string> dataDirectory;
    /// The folder used as "/" when reading the system's own files.
    std::string root = "/";
    Environment environment = processEnvironment();
    /// See SystemWatchSources.
    FingerprintQuery isFingerEnrolled;
    /// How often the battery, the display, the time zone, the device's name and the system's version are read
    /// again.
    std::chrono::milliseconds pollInterval{30'000};
};

class LinuxSystem final : public System {
  public:
    explicit LinuxSystem(const LinuxSystemOptions& options = {});

    std::shared_ptr<const SystemFacts> facts() const override;
    void enableBatteryMonitoring() override;
    void setScreen(const ScreenFacts& screen) override;
    void supplyBundle(const BundleFacts& bundle) override;
    std::optional<FileSystemSize> homeFileSystem() const override;
    std::optional<std::string> documentsDirectory() const override;
    ItemCreation creation(const std::string& path) const override;
    std::int32_t secondsFromGMT(Date date) const override;

  private:
    const std::optional<std::string> home_;
    const std::optional<std::string> dataDirectory_;
    mutable std::once_flag dataDirectoryMade_;
    std::atomic<bool> isBatteryMonitored_ = false;
    const std::shared_ptr<FactsBoard> board_;
    SystemWatch watch_;
};

}  // namespace vorna
