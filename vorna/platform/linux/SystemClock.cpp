// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/linux/SystemClock.h>

#include <ctime>

namespace vorna {

Date SystemClock::now() const {
    timespec time = {};
    clock_gettime(CLOCK_REALTIME, &time);
    return Date{static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9};
}

}  // namespace vorna
