// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/linux/TimeZoneWatch.h>

#include <ctime>

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

}  // namespace

TimeZoneWatch::TimeZoneWatch() noexcept : seen_(zoneFile()) {
    tzset();
}

void TimeZoneWatch::update() noexcept {
    const struct stat now = zoneFile();
    if (now.st_dev != seen_.st_dev || now.st_ino != seen_.st_ino ||
        now.st_mtim.tv_sec != seen_.st_mtim.tv_sec || now.st_mtim.tv_nsec != seen_.st_mtim.tv_nsec) {
        seen_ = now;
        // Only then: it reads the environment, which a host may be changing.
        tzset();
    }
}

}  // namespace vorna
