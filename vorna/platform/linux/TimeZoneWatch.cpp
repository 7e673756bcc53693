// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/linux/TimeZoneWatch.h>

#include <vorna/platform/Mutex.h>
#include <vorna/platform/NeverDestroyed.h>

#include <mutex>

namespace vorna {

namespace {

struct stat zoneFile() noexcept {
    struct stat status = {};
    // A missing file compares as all zeros.
    if (stat("/etc/localtime", &status) != 0) {
        status = {};
    }
    return status;
}

Mutex& zoneMutex() {
    static NeverDestroyed<Mutex> value;
    return *value;
}

void readZone() {
    const std::scoped_lock lock(zoneMutex());
    tzset();
}

}  // namespace

std::optional<std::tm> localTime(std::time_t moment) {
    const std::scoped_lock lock(zoneMutex());
    std::tm local = {};
    return localtime_r(&moment, &local) == nullptr ? std::nullopt : std::optional(local);
}

TimeZoneWatch::TimeZoneWatch() : seen_(zoneFile()) {
    readZone();
}

void TimeZoneWatch::update() {
    const struct stat now = zoneFile();
    if (now.st_dev != seen_.st_dev || now.st_ino != seen_.st_ino ||
        now.st_mtim.tv_sec != seen_.st_mtim.tv_sec || now.st_mtim.tv_nsec != seen_.st_mtim.tv_nsec) {
        seen_ = now;
        // Only then: it reads the environment, which a host may be changing.
        readZone();
    }
}

}  // namespace vorna
