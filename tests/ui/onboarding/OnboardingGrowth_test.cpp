// SPDX-License-Identifier: Apache-2.0
#include <vorna/core/VornaCoreSDK.h>

#include <tests/support/RecordedEvents.h>
#include <tests/support/TemporaryFolder.h>
#include <tests/support/ui/MediaSamples.h>
#include <tests/support/ui/OnboardingDocument.h>
#include <tests/support/ui/ScreenHost.h>

#include <QtGui/QGuiApplication>

#include <gtest/gtest.h>

#include <fstream>
#include <string>

namespace vorna {
namespace {

using support::basicStep;
using support::documentOf;
using support::ScreenHost;

std::size_t itemsBelow(const QQuickItem* item) {
    std::size_t count = 1;
    for (const QQuickItem* const child : item->childItems()) {
        count += itemsBelow(child);
    }
    return count;
}

struct Size {
    std::size_t threads = 0;
    std::size_t descriptors = 0;
    std::size_t objects = 0;
    std::size_t items = 0;
    std::size_t windows = 0;
    /// Resident, in kilobytes.
    long memory = 0;
};

Size measure(ScreenHost& host) {
    Size size;
    size.threads = support::namesIn("/proc/self/task").size();
    size.descriptors = support::namesIn("/proc/self/fd").size();
    size.objects = static_cast<std::size_t>(host.quickWindow().findChildren<QObject*>().size() +
                                            qGuiApp->findChildren<QObject*>().size() +
                                            host.window().findChildren<QObject*>().size());
    size.items = itemsBelow(host.quickWindow().contentItem());
    size.windows = static_cast<std::size_t>(QGuiApplication::allWindows().size());
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        if (word == "VmRSS:") {
            status >> size.memory;
        }
    }
    return size;
}

TEST(OnboardingShownAndClosed, DoesNotGrowOverFiveHundredTimes) {
    const support::RecordedEvents platform;
    ScreenHost host;
    const std::string document = documentOf({basicStep("One"), basicStep("Two")});
    const std::string picture = support::encodedPicture({400, 200}, "png");
    const HttpResponse answer{"https://media.test/a.png", 200, {{"Content-Type", "image/png"}}};
    const auto round = [&](int number) {
        VornaCoreSDK::ShowOnboarding(document);
        platform.http->answer({std::string(), answer, std::nullopt});
        QCoreApplication::processEvents();
        platform.http->answer({picture, answer, std::nullopt});
        if (number % 10 == 0) {
            host.settle();
            host.click(host.find("actionButton"));
            host.settle();
        } else {
            support::letTimePass(std::chrono::milliseconds(8));
        }
        VornaCoreSDK::CloseOnboarding();
        while (platform.http->answer(support::HttpAnswer::failure("cancelled"))) {
        }
        support::letTimePass(std::chrono::milliseconds(2));
    };
    for (int i = 0; i < 60; ++i) {
        round(i);
    }
    support::letTimePass(std::chrono::milliseconds(200));
    const Size before = measure(host);
    for (int i = 0; i < 500; ++i) {
        round(i);
    }
    support::letTimePass(std::chrono::milliseconds(200));
    const Size after = measure(host);
    EXPECT_EQ(host.screens().size(), 0U);
    EXPECT_LE(after.threads, before.threads + 2) << "decoders come and go";
    EXPECT_LE(after.descriptors, before.descriptors + 2);
    EXPECT_LE(after.objects, before.objects + 5);
    EXPECT_EQ(after.items, before.items);
    EXPECT_EQ(after.windows, before.windows);
#ifndef __SANITIZE_ADDRESS__
    EXPECT_LT(after.memory, before.memory + 20'000) << "one picture alone takes 320 kilobytes";
#endif
}

}  // namespace
}  // namespace vorna
