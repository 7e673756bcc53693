// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The port to the machine, the desktop and the application that the library runs in.
///
/// It provides two kinds of information: facts, which are never read on the calling thread and are returned
/// as one immutable value, and the few readings taken for every record (disk space, the age of the documents
/// folder, the time zone's offset).

#include <vorna/base/Export.h>
#include <vorna/base/Result.h>
#include <vorna/platform/Date.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace vorna {

/// Encoded as its number in every record.
enum class BatteryState : std::uint8_t { unknown = 0, unplugged = 1, charging = 2, full = 3 };

/// The main screen: a phone's screen, or on a desktop the window in its place. In logical pixels.
struct ScreenFacts {
    double width = 0;
    double height = 0;
    /// Device pixels per logical pixel.
    double scale = 1;

    friend bool operator==(const ScreenFacts&, const ScreenFacts&) = default;
};

struct BatteryFacts {
    /// From 0 to 1, or -1 if unknown.
    float level = -1;
    BatteryState state = BatteryState::unknown;
    bool isMonitoringEnabled = false;

    friend bool operator==(const BatteryFacts&, const BatteryFacts&) = default;
};

/// The application as its package describes it. Values that the host has not given are std::nullopt.
struct BundleFacts {
    std::optional<std::string> identifier;
    std::optional<std::string> shortVersion;
    std::optional<std::string> version;

    friend bool operator==(const BundleFacts&, const BundleFacts&) = default;
};

/// Everything that rarely changes.
struct SystemFacts {
    std::string deviceModel;
    std::string deviceName;
    std::string osVersion;
    /// As in "tr_TR": language and region, no codeset.
    std::string locale;
    ScreenFacts screen;
    BatteryFacts battery;
    bool isBoldTextEnabled = false;
    bool isBiometricSupported = false;
    /// Upper-case hyphenated UUID, the same for all applications of one vendor on this device; std::nullopt
    /// if the device offers nothing to derive it from.
    std::optional<std::string> identifierForVendor;
    /// Upper-case hyphenated UUID; all zeros if the platform has no advertising identifier.
    std::string advertisingIdentifier;
    BundleFacts bundle;

    friend bool operator==(const SystemFacts&, const SystemFacts&) = default;
};

/// Sizes of a file system in bytes; `free` is what the user may still use.
struct FileSystemSize {
    std::uint64_t total = 0;
    std::uint64_t free = 0;

    friend bool operator==(const FileSystemSize&, const FileSystemSize&) = default;
};

/// When a file or folder was created: std::nullopt if its file system does not record that, or a message if
/// it cannot be read.
using ItemCreation = Result<std::optional<Date>, std::string>;

/// Called from any thread, concurrently, for every recorded event. Implementations must not wait for D-Bus or
/// the network, nor for a disk beyond one system call.
class VORNA_EXPORT System {
  public:
    System() = default;
    System(const System&) = delete;
    System& operator=(const System&) = delete;
    System(System&&) = delete;
    System& operator=(System&&) = delete;
    virtual ~System() = default;

    /// Returns the facts known so far; never null. The same object until something changes, so that records
    /// can share it. Facts that are slow to read (battery, biometrics) are "unknown" at first.
    virtual std::shared_ptr<const SystemFacts> facts() const = 0;

    /// Keeps the battery facts current from now on. Returns immediately; later calls do nothing.
    virtual void enableBatteryMonitoring() = 0;

    /// Sets the main screen. Called by the screens' module, again whenever it changes.
    virtual void setScreen(const ScreenFacts& screen) = 0;

    /// Supplies the application's description by the toolkit. Called by the screens' module. Used only for
    /// what the host's options do not give.
    virtual void supplyBundle(const BundleFacts& bundle) = 0;

    /// Returns the size of the file system of the user's home folder; std::nullopt if it cannot be read.
    virtual std::optional<FileSystemSize> homeFileSystem() const = 0;

    /// Returns the application's documents folder, creating it if necessary. std::nullopt only if there is
    /// nowhere to put one. Never changes during the life of the process.
    virtual std::optional<std::string> documentsDirectory() const = 0;

    virtual ItemCreation creation(const std::string& path) const = 0;

    /// Returns by how many seconds local time is ahead of UTC at that date; negative west of Greenwich.
    virtual std::int32_t secondsFromGMT(Date date) const = 0;
};

}  // namespace vorna
