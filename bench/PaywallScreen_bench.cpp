// SPDX-License-Identifier: Apache-2.0
/// Measures how long a paywall with three products takes to appear, in total and by phase; the memory of an
/// open paywall; and the processor time of the overlay's spinner.
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

/// From the call of the facade to the paywall's first frame.
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

struct Phases {
    Series document{rounds};
    Series controller{rounds};
    Series view{rounds};
    Series frame{rounds};
};

/// The same without the facade, phase by phase.
void measurePhases(BenchWindow& window, const std::string& document, Phases& phases) {
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
    phases.document.add(static_cast<double>(read - began));
    phases.controller.add(static_cast<double>(made - read));
    phases.view.add(static_cast<double>(shown - made));
    phases.frame.add(static_cast<double>(drawn - shown));
    BenchWindow::until([&] { return !window.window().isMoving(); });
    screen->dismiss(false);
    BenchWindow::wait(50'000'000);
}

int measure(const std::string& folder, const std::string& document) {
    Platform platform = makePlatform(sampleOptions(folder));
    platform.httpClient = std::make_shared<SwallowingHttpClient>();
    VornaCoreSDK::UsePlatform(platform);
    BenchWindow window;

    const double first = nanosecondsToFirstFrame(window, document);
    Series total(rounds);
    Phases phases;
    for (std::size_t round = 0; round < rounds; ++round) {
        total.add(nanosecondsToFirstFrame(window, document));
        measurePhases(window, document, phases);
    }
    Table times("From a paywall's document with three products to its first frame",
                {"what", "ms p50", "ms p99", "of the total"});
    const auto row = [&](const std::string& what, const Series& series) {
        times.row({what, number(series.median() / millisecond, 3),
                   number(series.quantile(0.99) / millisecond, 3),
                   number(100 * series.median() / total.median(), 1) + " %"});
    };
    times.row({"first in the process", number(first / millisecond, 3), "", ""});
    row("later ones", total);
    row("   decode and validate", phases.document);
    row("   create the controller", phases.controller);
    row("   create the QML view", phases.view);
    row("   from there to the first frame", phases.frame);
    times.remark("The phases are measured on separate screens, presented without the facade in alternation "
                 "with the others.");
    times.print();

    const double before = residentKilobytes();
    for (std::size_t count = 1; count <= opened; ++count) {
        VornaCoreSDK::ShowPaywall(document);
        BenchWindow::until([&] { return window.screens() == count && !window.window().isMoving(); });
        window.nextFrame();
    }
    Table memory("Resident memory of open paywalls", {"what", "KB"});
    memory.row({"each of " + std::to_string(opened) + " presented over one another",
                number((residentKilobytes() - before) / static_cast<double>(opened))});
    memory.print();

    VornaCoreSDK::ShowPaidProductLoadingScreen();
    BenchWindow::until([&] { return window.screens() == opened + 1 && !window.window().isMoving(); });
    const std::size_t framesBefore = window.frames().size();
    const double processorBefore = processorSeconds();
    const std::int64_t began = nanosecondsNow();
    BenchWindow::wait(4'000'000'000);
    const double seconds = static_cast<double>(nanosecondsNow() - began) / 1e9;
    Table overlay("The overlay's spinner over a paywall, 390 x 844",
                  {"what", "of one processor", "frames per second"});
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
