// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/linux/LinuxSystem.h>

#include <vorna/platform/FileOperations.h>
#include <vorna/platform/Log.h>
#include <vorna/platform/linux/DataDirectory.h>
#include <vorna/platform/linux/DeviceModel.h>
#include <vorna/platform/linux/DeviceName.h>
#include <vorna/platform/linux/LocaleName.h>
#include <vorna/platform/linux/OsRelease.h>
#include <vorna/platform/linux/TimeZoneWatch.h>
#include <vorna/platform/linux/VendorIdentifier.h>
#include <vorna/text/Utf8.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/utsname.h>

#include <cerrno>
#include <cmath>
#include <ctime>
#include <limits>
#include <optional>
#include <system_error>
#include <tuple>
#include <utility>

namespace vorna {

namespace {

std::string withoutTrailingSlash(std::string path) {
    while (path.ends_with('/')) {
        path.pop_back();
    }
    return path;
}

/// A single byte here that is not UTF-8 would keep every record from being sent.
BundleFacts repaired(BundleFacts bundle) {
    if (bundle.identifier && bundle.identifier->empty()) {
        bundle.identifier.reset();
    }
    for (std::optional<std::string>* const text :
         {&bundle.identifier, &bundle.shortVersion, &bundle.version}) {
        if (*text && !utf8::isValid(**text)) {
            log::debug({"Repaired text of the bundle that is not UTF-8: \"", **text, "\""});
            **text = utf8::repaired(**text);
        }
    }
    return bundle;
}

std::optional<std::string> dataDirectory(const LinuxSystemOptions& options) {
    if (options.dataDirectory && !options.dataDirectory->empty()) {
        return options.dataDirectory;
    }
    return defaultDataDirectory(options.bundle.identifier, options.environment);
}

SystemFacts factsAtStart(const LinuxSystemOptions& options) {
    const std::string root = withoutTrailingSlash(options.root);
    utsname kernel = {};
    uname(&kernel);
    const std::string program = programName();
    const std::string identifier = options.bundle.identifier.value_or("");

    SystemFacts facts;
    facts.deviceModel = utf8::repaired(readDeviceModel(root, kernel.machine));
    facts.deviceName = currentDeviceName(root);
    facts.osVersion = currentOsVersion(root);
    facts.locale = utf8::repaired(messagesLocale(options.environment));
    facts.identifierForVendor =
        readIdentifierForVendor(root, vendorOf(identifier.empty() ? program : identifier));
    facts.advertisingIdentifier = "00000000-0000-0000-0000-000000000000";
    facts.bundle = repaired(options.bundle);
    return facts;
}

SystemWatchSources watchSources(const LinuxSystemOptions& options) {
    const std::string root = withoutTrailingSlash(options.root);
    return SystemWatchSources{.root = root,
                              .systemBusAddress =
                                  nonEmptyVariable(options.environment, "DBUS_SYSTEM_BUS_ADDRESS")
                                      .value_or("unix:path=" + root + "/run/dbus/system_bus_socket"),
                              .isFingerEnrolled = options.isFingerEnrolled,
                              .interval = options.pollInterval};
}

}  // namespace

LinuxSystem::LinuxSystem(const LinuxSystemOptions& options)
    : home_(homeFolder(options.environment)),
      dataDirectory_(dataDirectory(options)),
      board_(std::make_shared<FactsBoard>(factsAtStart(options))),
      watch_(board_, watchSources(options)) {}

std::shared_ptr<const SystemFacts> LinuxSystem::facts() const {
    return board_->facts();
}

void LinuxSystem::enableBatteryMonitoring() {
    if (isBatteryMonitored_.load(std::memory_order_acquire)) {
        return;
    }
    // Two concurrent first callers may both get here; neither may return before the facts say so.
    board_->showBattery();
    isBatteryMonitored_.store(true, std::memory_order_release);
}

void LinuxSystem::setScreen(const ScreenFacts& screen) {
    board_->reportScreen(screen);
}

void LinuxSystem::supplyBundle(const BundleFacts& bundle) {
    board_->supplyBundle(repaired(bundle));
}

std::optional<FileSystemSize> LinuxSystem::homeFileSystem() const {
    struct statvfs fileSystem = {};
    if (!home_ || statvfs(home_->c_str(), &fileSystem) != 0) {
        return std::nullopt;
    }
    return FileSystemSize{.total = std::uint64_t{fileSystem.f_blocks} * fileSystem.f_frsize,
                          .free = std::uint64_t{fileSystem.f_bavail} * fileSystem.f_frsize};
}

std::optional<std::string> LinuxSystem::documentsDirectory() const {
    if (!dataDirectory_) {
        // A user without a home, such as a service's, has no such folder. This one never exists, so its users
        // see why and carry on.
        return "/nonexistent";
    }
    // Users of the folder will see why it is missing.
    std::call_once(dataDirectoryMade_, [&] { std::ignore = makeFolders(*dataDirectory_); });
    return dataDirectory_;
}

ItemCreation LinuxSystem::creation(const std::string& path) const {
    struct statx item = {};
    // A network file system's cached value will do; a birth time does not change.
    if (statx(AT_FDCWD, path.c_str(), AT_STATX_DONT_SYNC | AT_NO_AUTOMOUNT, STATX_BTIME, &item) != 0) {
        const int error = errno;
        return Unexpected(std::generic_category().message(error) + ": " + utf8::repaired(path));
    }
    if ((item.stx_mask & STATX_BTIME) == 0) {
        return std::nullopt;
    }
    return Date{static_cast<double>(item.stx_btime.tv_sec) +
                static_cast<double>(item.stx_btime.tv_nsec) / 1e9};
}

std::int32_t LinuxSystem::secondsFromGMT(Date date) const {
    const double seconds = std::floor(date.secondsSince1970);
    // Beyond these, years do not fit the C library's calendar and have no time zone rules.
    constexpr double farthest = 1e15;
    if (!(std::abs(seconds) <= farthest)) {
        return 0;
    }
    const std::optional<std::tm> local = localTime(static_cast<std::time_t>(seconds));
    return local ? static_cast<std::int32_t>(local->tm_gmtoff) : 0;
}

}  // namespace vorna
