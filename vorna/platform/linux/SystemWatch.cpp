// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/linux/SystemWatch.h>

#include <vorna/platform/Fork.h>
#include <vorna/platform/Mutex.h>
#include <vorna/platform/ServiceThread.h>
#include <vorna/platform/Upkeep.h>
#include <vorna/platform/linux/DeviceName.h>
#include <vorna/platform/linux/Display.h>
#include <vorna/platform/linux/OsRelease.h>
#include <vorna/platform/linux/PowerSupply.h>
#include <vorna/platform/linux/TimeZoneWatch.h>

#include <mutex>
#include <optional>
#include <utility>

namespace vorna {

namespace {

void readScreenAndBattery(const std::string& root, FactsBoard& board) {
    if (const auto screen = mainDisplay(readDisplayConnectors(root))) {
        board.detectScreen(*screen);
    }
    board.setBattery(readBatteryFacts(root));
}

/// The user may rename the device, and an upgrade may replace the system under a running application.
void readNameAndVersion(const std::string& root, FactsBoard& board) {
    board.setNameAndVersion(currentDeviceName(root), currentOsVersion(root));
}

void watch(ServiceThread::Self& self, FactsBoard& board, const SystemWatchSources& sources,
           TimeZoneWatch& timeZone) {
    // Before monitoring is enabled, so that the first record can contain the battery's level.
    readScreenAndBattery(sources.root, board);
    if (sources.isFingerEnrolled) {
        board.setBiometricSupported(sources.isFingerEnrolled(sources.systemBusAddress, self.stopToken()));
    }
    // Only now: GLib's worker thread, which the host may share with us, has inherited the normal priority.
    lowerThreadPriority();
    for (self.sleepFor(sources.interval); !self.stopRequested(); self.sleepFor(sources.interval)) {
        timeZone.update();
        readNameAndVersion(sources.root, board);
        readScreenAndBattery(sources.root, board);
    }
}

}  // namespace

class SystemWatch::Life final : public KeepsRunning {
  public:
    Life(std::shared_ptr<FactsBoard> board, SystemWatchSources sources)
        : board_(std::move(board)),
          sources_(std::move(sources)) {}

    void ensureRunning() override {
        const std::scoped_lock lock(mutex_);
        if (hasEnded_ || (thread_ && !thread_->hasEnded())) {
            return;
        }
        SystemWatchSources sources = sources_;
        if (generation_ != forkGeneration()) {
            // In the child of a fork the parent's answer remains: there, no bus can be reached.
            sources.isFingerEnrolled = nullptr;
        }
        thread_ = ServiceThread::start("vorna-system", ThreadPriority::normal,
                                       // The time zone is first read here, on the caller's thread.
                                       [board = board_, sources = std::move(sources),
                                        timeZone = TimeZoneWatch()](ServiceThread::Self& self) mutable {
                                           watch(self, *board, sources, timeZone);
                                       });
        if (!thread_) {
            upkeep::request();
        }
    }

    void end() {
        std::optional<ServiceThread> thread;
        {
            const std::scoped_lock lock(mutex_);
            hasEnded_ = true;
            thread.swap(thread_);
        }
        if (thread) {
            thread->join();
        }
    }

  private:
    const std::shared_ptr<FactsBoard> board_;
    const SystemWatchSources sources_;
    const unsigned generation_ = forkGeneration();

    Mutex mutex_;
    bool hasEnded_ = false;
    std::optional<ServiceThread> thread_;
};

SystemWatch::SystemWatch(std::shared_ptr<FactsBoard> board, SystemWatchSources sources)
    : life_(std::make_shared<Life>(std::move(board), std::move(sources))) {
    upkeep::add(life_);
    life_->ensureRunning();
}

SystemWatch::~SystemWatch() {
    life_->end();
}

}  // namespace vorna
