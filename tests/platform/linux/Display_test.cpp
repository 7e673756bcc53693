// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/linux/Display.h>

#include <tests/platform/linux/SystemTree.h>

#include <gtest/gtest.h>

namespace vorna {
namespace {

TEST(MainDisplay, IsTheFirstModeOfTheFirstConnectedDisplay) {
    EXPECT_EQ(mainDisplay({{"card0-DP-1", "disconnected\n", ""},
                           {"card0-HDMI-A-1", "connected\n", "1920x1080\n1280x720\n"},
                           {"card0-HDMI-A-2", "connected\n", "800x600\n"}}),
              (ScreenFacts{.width = 1920, .height = 1080, .scale = 1}));
}

TEST(MainDisplay, ABuiltInPanelComesBeforeExternalDisplays) {
    for (const char* const panel : {"card1-DSI-1", "card1-eDP-1", "card1-LVDS-1", "card1-DPI-1"}) {
        EXPECT_EQ(mainDisplay({{"card0-HDMI-A-1", "connected\n", "1920x1080\n"},
                               {panel, "connected\n", "720x1440\n"}}),
                  (ScreenFacts{.width = 720, .height = 1440, .scale = 1}))
            << panel;
    }
}

TEST(MainDisplay, IsExternalIfTheBuiltInPanelIsOff) {
    EXPECT_EQ(
        mainDisplay({{"card0-eDP-1", "disconnected\n", ""}, {"card0-DP-1", "connected\n", "2560x1440\n"}}),
        (ScreenFacts{.width = 2560, .height = 1440, .scale = 1}));
}

TEST(MainDisplay, AModeMayEndInALetter) {
    EXPECT_EQ(mainDisplay({{"card0-HDMI-A-1", "connected\n", "1920x1080i\n"}}),
              (ScreenFacts{.width = 1920, .height = 1080, .scale = 1}));
}

TEST(MainDisplay, DoesNotExistIfNothingIsConnected) {
    EXPECT_EQ(mainDisplay({}), std::nullopt);
    EXPECT_EQ(mainDisplay({{"card0-DP-1", "disconnected\n", "1920x1080\n"}}), std::nullopt);
    EXPECT_EQ(mainDisplay({{"card0-Writeback-1", "unknown\n", "1920x1080\n"}}), std::nullopt);
}

TEST(MainDisplay, SkipsADisplayWithoutAReadableMode) {
    for (const char* const modes :
         {"", "\n", "x", "1920", "1920x", "x1080", "0x0\n", "-1x5\n", "axb\n", "99999999999x1\n"}) {
        EXPECT_EQ(
            mainDisplay({{"card0-DP-1", "connected\n", modes}, {"card0-DP-2", "connected\n", "640x480"}}),
            (ScreenFacts{.width = 640, .height = 480, .scale = 1}))
            << modes;
    }
}

struct Row {
    const char* tree = nullptr;
    std::optional<ScreenFacts> screen;
};

TEST(MainDisplay, IsCorrectForTheStoredSystems) {
    for (const Row& row :
         {Row{"pinephone-postmarketos", ScreenFacts{720, 1440, 1}},
          Row{"librem5-pureos", ScreenFacts{720, 1440, 1}},
          Row{"thinkpad-fedora", ScreenFacts{1920, 1080, 1}},
          Row{"desktop-debian", ScreenFacts{2560, 1440, 1}}, Row{"raspberry-pi", std::nullopt},
          Row{"alpine-container", std::nullopt}, Row{"laptop-opensuse", ScreenFacts{1366, 768, 1}}}) {
        EXPECT_EQ(mainDisplay(readDisplayConnectors(tests::systemTree(row.tree))), row.screen) << row.tree;
    }
}

}  // namespace
}  // namespace vorna
