// SPDX-License-Identifier: Apache-2.0
#pragma once

/// What the library asks of the machine, the desktop and the application it runs in, as a port.
///
/// Two kinds of answers: facts, which are learned off the caller's thread and handed out as one immutable
/// value, and the few readings that are taken anew for every record (disk space, the age of the documents
/// folder, the offset of the time zone).

#include <vorna/base/Export.h>
#include <vorna/platform/Date.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace vorna {

/// Encoded as its number in every record.
enum class BatteryState : std::uint8_t { unknown = 0, unplugged = 1, charging = 2, full = 3 };

/// The main screen: the phone's screen, or on a desktop the window that stands for it. Logical pixels.
struct ScreenFacts {
    double width = 0;
    double height = 0;
    /// Device pixels for each logical pixel.
    double scale = 1;

    friend bool operator==(const ScreenFacts&, const ScreenFacts&) = default;
};

struct BatteryFacts {
    /// From 0 to 1; -1 when unknown.
    float level = -1;
    BatteryState state = BatteryState::unknown;
    bool isMonitoringEnabled = false;

    friend bool operator==(const BatteryFacts&, const BatteryFacts&) = default;
};

/// The application as its package describes it; each value is absent when the host has not given it.
struct BundleFacts {
    std::optional<std::string> identifier;
    std::optional<std::string> shortVersion;
    std::optional<std::string> version;

    friend bool operator==(const BundleFacts&, const BundleFacts&) = default;
};

/// Everything that changes seldom, together.
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
    /// Upper-case hyphenated UUID that is the same for all applications of one vendor on this device;
    /// absent where the device has nothing to derive it from.
    std::optional<std::string> identifierForVendor;
    /// Upper-case hyphenated UUID; all zeros where the platform has no advertising identifier.
    std::string advertisingIdentifier;
    BundleFacts bundle;

    friend bool operator==(const SystemFacts&, const SystemFacts&) = default;
};

/// Sizes of a file system in bytes; free is what the user may still fill.
struct FileSystemSize {
    std::uint64_t total = 0;
    std::uint64_t free = 0;

    friend bool operator==(const FileSystemSize&, const FileSystemSize&) = default;
};

/// When a file-system item was made. No date and no error: the item is there, but its file system does not
/// record birth times. An error: the item could not be asked; the text says why.
struct ItemCreation {
    std::optional<Date> date;
    std::optional<std::string> error;
};

/// Called from any thread, concurrently, on every recorded event: nothing here may wait for a disk beyond one
/// system call, for D-Bus, or for the network.
class VORNA_EXPORT System {
  public:
    System() = default;
    System(const System&) = delete;
    System& operator=(const System&) = delete;
    System(System&&) = delete;
    System& operator=(System&&) = delete;
    virtual ~System() = default;

    /// The facts as now known; never null. The same object as long as nothing has changed, so records can
    /// share it. What takes time to learn (battery, biometrics) has its "unknown" value until it is known.
    virtual std::shared_ptr<const SystemFacts> facts() const = 0;

    /// From now on the battery facts are kept current. Returns at once; later calls do nothing.
    virtual void enableBatteryMonitoring() = 0;

    /// The screens' module reports the main screen here, and again whenever it changes.
    virtual void setScreen(const ScreenFacts& screen) = 0;

    /// The screens' module reports how the toolkit describes the application. What the host has given in its
    /// options counts for more: only what is absent is taken from here.
    virtual void supplyBundle(const BundleFacts& bundle) = 0;

    /// The file system that holds the user's home folder; absent when it cannot be asked.
    virtual std::optional<FileSystemSize> homeFileSystem() const = 0;

    /// The application's own folder for documents, made if need be. Absent only where the user has no place
    /// for such a folder at all. The text stays the same for the life of the process.
    virtual std::optional<std::string> documentsDirectory() const = 0;

    virtual ItemCreation creation(const std::string& path) const = 0;

    /// Seconds that local time is ahead of UTC at the given moment; negative west of Greenwich.
    virtual std::int32_t secondsFromGMT(Date date) const = 0;
};

}  // namespace vorna
