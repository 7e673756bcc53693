// SPDX-License-Identifier: Apache-2.0
/// Measures how long the first step of an onboarding takes to appear, and how many frames are dropped during
/// its push animation.
///
///     OnboardingScreen_bench WORK-FOLDER DOCUMENT

#include <bench/support/BenchWindow.h>
#include <bench/support/CountingHttpClient.h>
#include <bench/support/SampleEvents.h>
#include <bench/support/Series.h>
#include <bench/support/Stopwatch.h>
#include <bench/support/Table.h>

#include <vorna/core/VornaCoreSDK.h>

#include <QtGui/QGuiApplication>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>

namespace vorna::bench {
namespace {

constexpr double millisecond = 1e6;
constexpr std::size_t rounds = 20;
/// Nanoseconds per frame of a 60 Hz display.
constexpr double frameTime = 1e9 / 60;

int measure(const std::string& folder, const std::string& document) {
    Platform platform = makePlatform(sampleOptions(folder));
    platform.httpClient = std::make_shared<SwallowingHttpClient>();
    VornaCoreSDK::UsePlatform(platform);
    BenchWindow window;

    double first = 0;
    Series waits(rounds);
    Series gaps(rounds * 20);
    double dropped = 0;
    for (std::size_t round = 0; round <= rounds; ++round) {
        const std::int64_t began = nanosecondsNow();
        VornaCoreSDK::ShowOnboarding(document);
        const auto took = static_cast<double>(window.nextFrame() - began);
        if (round == 0) {
            first = took;
        } else {
            waits.add(took);
        }
        const std::size_t from = window.frames().size();
        BenchWindow::until([&] { return !window.window().isMoving(); });
        for (std::size_t frame = from; round > 0 && frame < window.frames().size(); ++frame) {
            const auto gap = static_cast<double>(window.frames()[frame] - window.frames()[frame - 1]);
            gaps.add(gap);
            dropped += std::max(0.0, std::round(gap / frameTime) - 1);
        }
        VornaCoreSDK::CloseOnboarding();
        BenchWindow::wait(50'000'000);
    }
    Table table("From ShowOnboarding to the first frame, and the 300 ms push that follows",
                {"what", "p50", "p99"});
    table.row({"first frame, first in the process, ms", number(first / millisecond, 3), ""});
    table.row({"first frame, later ones, ms", number(waits.median() / millisecond, 3),
               number(waits.quantile(0.99) / millisecond, 3)});
    table.row({"between two frames of the push, ms", number(gaps.median() / millisecond, 3),
               number(gaps.quantile(0.99) / millisecond, 3)});
    table.row(
        {"frames dropped during the push, of 18", number(dropped / static_cast<double>(rounds), 2), ""});
    table.remark("Dropped: frames that a 60 Hz display would have shown; the last figure is a mean.");
    table.print();
    return EXIT_SUCCESS;
}

}  // namespace
}  // namespace vorna::bench

int main(int count, char** arguments) {
    QGuiApplication application(count, arguments);
    if (count != 3) {
        std::cerr << "OnboardingScreen_bench WORK-FOLDER DOCUMENT\n";
        return EXIT_FAILURE;
    }
    std::ifstream file(arguments[2]);
    std::ostringstream text;
    text << file.rdbuf();
    return vorna::bench::measure(arguments[1], text.str());
}
