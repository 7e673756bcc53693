// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/SystemReports.h>

#include <tests/support/RecordedEvents.h>
#include <tests/support/ui/ScreenHost.h>

#include <QtGui/QGuiApplication>

#include <gmock/gmock.h>

namespace vorna::ui {
namespace {

using support::eventually;
using support::RecordedEvents;
using support::ScreenHost;

DeviceMetadata metadataOfAnEvent() {
    VornaCoreSDK::Event("look");
    return RecordedEvents::take().back().deviceData;
}

TEST(SystemReports, SetTheScreenSizeInEvents) {
    const RecordedEvents platform;
    ScreenHost host({390, 844});
    const DeviceMetadata before = metadataOfAnEvent();
    EXPECT_EQ(before.device->screenWidth, 390);
    EXPECT_EQ(before.device->screenHeight, 844);
    host.quickWindow().resize(320, 568);
    EXPECT_TRUE(eventually([&] { return platform.system->facts()->screen == ScreenFacts{320, 568, 1}; }));
}

TEST(SystemReports, ReachALibraryInitialisedLater) {
    ScreenHost host({414, 736});
    const RecordedEvents platform;
    EXPECT_EQ(metadataOfAnEvent().device->screenWidth, 414);
}

TEST(SystemReports, FollowTheKeyWindow) {
    const RecordedEvents platform;
    VornaCoreSDK::Event("wakes the library");
    ScreenHost first({300, 400});
    auto second = std::make_unique<ScreenHost>(QSize(200, 250));
    EXPECT_EQ(platform.system->facts()->screen, (ScreenFacts{200, 250, 1}));
    first.quickWindow().requestActivate();
    EXPECT_TRUE(eventually([&] { return platform.system->facts()->screen == ScreenFacts{300, 400, 1}; }));
    second->quickWindow().requestActivate();
    EXPECT_TRUE(eventually([&] { return platform.system->facts()->screen == ScreenFacts{200, 250, 1}; }));
    second.reset();
    EXPECT_TRUE(eventually([&] { return platform.system->facts()->screen == ScreenFacts{300, 400, 1}; }));
}

TEST(SystemReports, IncludeTheApplicationsIdentifierAndVersion) {
    QGuiApplication::setDesktopFileName(QStringLiteral("org.example.notes"));
    QGuiApplication::setApplicationVersion(QStringLiteral("2.5.1"));
    const RecordedEvents platform;
    const ScreenHost host;
    VornaCoreSDK::Event("wakes the library");
    EXPECT_EQ(platform.system->suppliedBundle(), (BundleFacts{"org.example.notes", "2.5.1", std::nullopt}));
}

TEST(SystemReports, DoNotUseTheProgramNameAsIdentifier) {
    const RecordedEvents platform;
    const ScreenHost host;
    VornaCoreSDK::Event("wakes the library");
    EXPECT_EQ(platform.system->suppliedBundle(), BundleFacts());
}

}  // namespace
}  // namespace vorna::ui
