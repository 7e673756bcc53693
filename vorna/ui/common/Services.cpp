// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/common/Services.h>

#include <vorna/platform/Mutex.h>
#include <vorna/ui/common/ScreensRuntime.h>

#include <mutex>

namespace vorna::ui {

namespace {

struct Provided {
    Mutex mutex;
    ScreenServices services;
};

Provided& provided() {
    return ScreensRuntime::part<Provided>();
}

}  // namespace

void services::provide(const ScreenServices& services) {
    const std::scoped_lock lock(provided().mutex);
    provided().services = services;
}

ScreenServices services::get() {
    const std::scoped_lock lock(provided().mutex);
    return provided().services;
}

}  // namespace vorna::ui
