// SPDX-License-Identifier: Apache-2.0
/// How long a user waits for a paywall with three products, which part of it is whose, what an open paywall
/// holds in memory, and what the turning arc of the overlay takes of the processor.
///
///     PaywallScreen_bench WORK-FOLDER DOCUMENT

#include <bench/support/BenchWindow.h>
#include <bench/support/CountingHttpClient.h>
#include <bench/support/SampleEvents.h>
#include <bench/support/Series.h>
#include <bench/support/Stopwatch.h>
#include <bench/support/Table.h>

#include <vorna/core/VornaCoreSDK.h>
#include <vorna/documents/PaywallParameters.h>
#include <vorna/documents/PaywallValidation.h>
#include <vorna/ui/paywall/PaywallScreenViewController.h>

#include <QtGui/QGuiApplication>

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace vorna::bench {
namespace {

constexpr double millisecond = 1e6;
constexpr std::size_t rounds = 30;
constexpr std::size_t opened = 10;

double residentKilobytes() {
    std::ifstream file("/proc/self/statm");
    long all = 0;
    long resident = 0;
    file >> all >> resident;
    return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1024;
}

double processorSeconds() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

/// By the facade, to the first frame that shows something of it.
double nanosecondsToFirstFrame(BenchWindow& window, const std::string& document) {
    const std::int64_t began = nanosecondsNow();
    VornaCoreSDK::ShowPaywall(document);
    BenchWindow::until([&] { return window.screens() > 0; });
    const double took = static_cast<double>(window.nextFrame() - began);
    BenchWindow::until([&] { return !window.window().isMoving(); });
    VornaCoreSDK::ClosePaywall();
    BenchWindow::until([&] { return window.screens() == 0 && !window.window().isMoving(); });
    BenchWindow::wait(50'000'000);
    return took;
}

struct Parts {
    Series document{rounds};
    Series controller{rounds};
    Series view{rounds};
    Series frame{rounds};
};

/// The same by hand, step by step.
void measureParts(BenchWindow& window, const std::string& document, Parts& parts) {
    const std::int64_t began = nanosecondsNow();
    const auto decoded = PaywallParameters::decode(document);
    const PaywallParameters& paywall = *decoded;
    used(missingFields(paywall));
    const std::int64_t read = nanosecondsNow();
    const auto screen = std::make_shared<ui::PaywallScreenViewController>(paywall);
    const std::int64_t made = nanosecondsNow();
    window.window().rootViewController()->present(screen, true);
    const std::int64_t shown = nanosecondsNow();
    const std::int64_t drawn = window.nextFrame();
    parts.document.add(static_cast<double>(read - began));
    parts.controller.add(static_cast<double>(made - read));
    parts.view.add(static_cast<double>(shown - made));
    parts.frame.add(static_cast<double>(drawn - shown));
    BenchWindow::until([&] { return !window.window().isMoving(); });
    screen->dismiss(false);
    BenchWindow::wait(50'000'000);
}

int measure(const std::string& folder, const std::string& document) {
    Platform platform = makePlatform(sampleOptions(folder));
    platform.httpClient = std::make_shared<SwallowingHttpClient>();
    VornaCoreSDK::UsePlatform(std::move(platform));
    BenchWindow window;

    const double first = nanosecondsToFirstFrame(window, document);
    Series whole(rounds);
    Parts parts;
    for (std::size_t round = 0; round < rounds; ++round) {
        whole.add(nanosecondsToFirstFrame(window, document));
        measureParts(window, document, parts);
    }
    Table times("From the document of a paywall with three products to its first frame",
                {"what", "ms p50", "ms p99", "of the whole"});
    const auto row = [&](const std::string& what, const Series& series) {
        times.row({what, number(series.median() / millisecond, 3),
                   number(series.quantile(0.99) / millisecond, 3),
                   number(100 * series.median() / whole.median(), 1) + " %"});
    };
    times.row({"the first of the process", number(first / millisecond, 3), "", ""});
    row("any later one", whole);
    row("   decode and judge", parts.document);
    row("   make the controller", parts.controller);
    row("   make the view of QML", parts.view);
    row("   from there to the frame", parts.frame);
    times.remark("The parts are of screens that were made by hand, by turns with whole ones.");
    times.print();

    const double before = residentKilobytes();
    for (std::size_t count = 1; count <= opened; ++count) {
        VornaCoreSDK::ShowPaywall(document);
        BenchWindow::until([&] { return window.screens() == count && !window.window().isMoving(); });
        window.nextFrame();
    }
    Table memory("Memory of open paywalls, as the system counts it", {"what", "KB"});
    memory.row({"each of " + std::to_string(opened) + " that lie one over the other",
                number((residentKilobytes() - before) / static_cast<double>(opened))});
    memory.print();

    VornaCoreSDK::ShowPaidProductLoadingScreen();
    BenchWindow::until([&] { return window.screens() == opened + 1 && !window.window().isMoving(); });
    const std::size_t framesBefore = window.frames().size();
    const double processorBefore = processorSeconds();
    const std::int64_t began = nanosecondsNow();
    BenchWindow::wait(4'000'000'000);
    const double seconds = static_cast<double>(nanosecondsNow() - began) / 1e9;
    Table overlay("The overlay's turning arc over a paywall, 390 x 844",
                  {"what", "of one processor", "frames a second"});
    overlay.row({"software rendering",
                 number(100 * (processorSeconds() - processorBefore) / seconds, 1) + " %",
                 number(static_cast<double>(window.frames().size() - framesBefore) / seconds, 1)});
    overlay.print();
    return EXIT_SUCCESS;
}

}  // namespace
}  // namespace vorna::bench

int main(int count, char** arguments) {
    QGuiApplication application(count, arguments);
    if (count != 3) {
        std::cerr << "PaywallScreen_bench WORK-FOLDER DOCUMENT\n";
        return EXIT_FAILURE;
    }
    std::ifstream file(arguments[2]);
    std::ostringstream text;
    text << file.rdbuf();
    if (text.str().empty()) {
        std::cerr << "no document in " << arguments[2] << '\n';
        return EXIT_FAILURE;
    }
    return vorna::bench::measure(arguments[1], text.str());
}
