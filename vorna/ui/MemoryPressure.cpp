// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/MemoryPressure.h>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <string_view>
#include <utility>

namespace vorna::ui {

namespace {

// Microseconds stalled, within a window of microseconds. Unprivileged processes may only use multiples of two
// seconds.
constexpr std::string_view trigger = "some 200000 2000000";

}  // namespace

MemoryPressure::MemoryPressure(std::function<void()> changed, const char* file)
    : changed_(std::move(changed)),
      descriptor_(open(file, O_RDWR | O_NONBLOCK | O_CLOEXEC)) {
    // The trigger is written with its terminating zero.
    if (descriptor_ < 0 ||
        write(descriptor_, trigger.data(), trigger.size() + 1) != static_cast<ssize_t>(trigger.size() + 1)) {
        return;
    }
    notifier_ = std::make_unique<QSocketNotifier>(descriptor_, QSocketNotifier::Exception);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] {
        // After an error the trigger is defunct and stays ready forever.
        pollfd state{descriptor_, POLLPRI, 0};
        poll(&state, 1, 0);
        if ((state.revents & POLLERR) != 0) {
            notifier_->setEnabled(false);
        } else {
            changed_();
        }
    });
}

MemoryPressure::~MemoryPressure() {
    notifier_.reset();
    if (descriptor_ >= 0) {
        close(descriptor_);
    }
}

}  // namespace vorna::ui
