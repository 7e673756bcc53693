// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/linux/SystemWatch.h>

#include <vorna/platform/linux/DeviceName.h>
#include <vorna/platform/linux/Display.h>
#include <vorna/platform/linux/OsRelease.h>
#include <vorna/platform/linux/PowerSupply.h>
#include <vorna/platform/linux/TimeZoneWatch.h>

#include <exception>
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

SystemWatch::SystemWatch(std::shared_ptr<FactsBoard> board, SystemWatchSources sources)
    : thread_(ServiceThread::start("vorna-system", ThreadPriority::normal,
                                   // The time zone is first read here, on the caller's thread.
                                   [board = std::move(board), sources = std::move(sources),
                                    timeZone = TimeZoneWatch()](ServiceThread::Self& self) mutable {
                                       try {
                                           watch(self, *board, sources, timeZone);
                                       } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch)
                                           // Out of memory: the facts stay as they are.
                                       }
                                   })) {}

SystemWatch::~SystemWatch() {
    if (thread_) {
        thread_->join();
    }
}

}  // namespace vorna
