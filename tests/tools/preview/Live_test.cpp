// SPDX-License-Identifier: Apache-2.0
// The program with windows: the tests edit files, and press keys and buttons.

#include <tests/support/TemporaryFolder.h>
#include <tests/support/ui/ScreenHost.h>
#include <tests/tools/preview/PreviewProcess.h>

#include <gmock/gmock.h>

#include <QtGui/QGuiApplication>
#include <QtGui/QPixmap>
#include <QtGui/QScreen>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace vorna::preview {
namespace {

using support::eventually;
using support::letTimePass;
using testing::HasSubstr;
using testing::Optional;

std::string example(const std::string& name) {
    return support::contentsOf(VORNA_EXAMPLES "/documents/" + name + ".json");
}

std::string replaced(std::string text, const std::string& what, const std::string& by) {
    for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += by.size()) {
        text.replace(at, what.size(), by);
    }
    return text;
}

QColor pixel(int x, int y) {
    return QGuiApplication::primaryScreen()->grabWindow(0, x, y, 1, 1).toImage().pixelColor(0, 0);
}

bool eventuallyShows(int x, int y, const QColor& colour) {
    return eventually([&] { return pixel(x, y) == colour; });
}

void use(const std::string& action) {
    ASSERT_EQ(std::system(("xdotool " + action).c_str()), 0);
}

class LivePreview : public testing::Test {
  protected:
    void begin(const std::string& document) {
        folder_.write("a.json", document);
        preview_.emplace(std::vector<std::string>{(folder_.path() / "a.json").string()}, Display::ofTheTest);
        ASSERT_THAT(line("shown at"), Optional(HasSubstr("shown at 390x844")));
    }

    std::optional<std::string> line(std::string_view text) { return preview_->waitForLine(text); }

    // As by editors that write a new file and rename it.
    void replaceFile(const std::string& document) { folder_.replace("a.json", document); }

    const support::TemporaryFolder folder_;
    std::optional<PreviewProcess> preview_;
    const std::string steps_ = example("onboarding/three-steps");
    const std::string paywall_ = example("paywall/three-products");
    const QColor firstColour_{0x0B, 0x10, 0x26};
};

TEST_F(LivePreview, FollowsAFileThatIsWritten) {
    begin(steps_);
    EXPECT_TRUE(eventuallyShows(4, 300, firstColour_));
    folder_.write("a.json", replaced(steps_, "#0B1026", "#204060"));
    EXPECT_TRUE(line("changed "));
    EXPECT_THAT(line("document"), Optional(HasSubstr("no findings")));
    EXPECT_TRUE(line("shown at 390x844, step 0, 3 in all"));
    EXPECT_TRUE(eventuallyShows(4, 300, QColor(0x20, 0x40, 0x60)));
}

TEST_F(LivePreview, FollowsAFileThatIsReplacedRepeatedly) {
    begin(paywall_);
    for (const char* const colour : {"#204060", "#602040", "#406020"}) {
        replaceFile(replaced(paywall_, "\"backgroundColor\": \"#0B1026\"",
                             "\"backgroundColor\": \"" + std::string(colour) + "\""));
        EXPECT_TRUE(line("changed "));
        EXPECT_TRUE(line("shown at"));
        EXPECT_TRUE(eventuallyShows(4, 300, QColor(QString::fromUtf8(colour))));
    }
    folder_.write("a.json", paywall_);
    EXPECT_TRUE(line("changed "));
    EXPECT_TRUE(eventuallyShows(4, 300, firstColour_));
}

TEST_F(LivePreview, FollowsAFileThatWasMissingForAWhile) {
    begin(paywall_);
    std::filesystem::rename(folder_.path() / "a.json", folder_.path() / "a.json~");
    letTimePass(std::chrono::milliseconds(600));
    EXPECT_EQ(pixel(4, 300), firstColour_);
    folder_.write("a.json", replaced(paywall_, "#0B1026", "#204060"));
    EXPECT_TRUE(line("changed "));
    EXPECT_TRUE(eventuallyShows(4, 300, QColor(0x20, 0x40, 0x60)));
}

TEST_F(LivePreview, KeepsTheLastVersionWhileTheFileIsBroken) {
    begin(steps_);
    EXPECT_TRUE(eventuallyShows(4, 300, firstColour_));
    replaceFile(replaced(replaced(steps_, "\"heading\"", "\"headin\""), "#0B1026", "#204060"));
    EXPECT_TRUE(line("changed "));
    EXPECT_THAT(line("error: [0].heading"), Optional(HasSubstr(":2:3: error: [0].heading: missing;")));
    EXPECT_TRUE(line("kept the last version"));
    letTimePass(std::chrono::milliseconds(800));
    EXPECT_EQ(pixel(4, 300), firstColour_);
    replaceFile("[{");
    EXPECT_TRUE(line("[not-json]"));
    EXPECT_TRUE(line("kept the last version"));
    replaceFile(replaced(steps_, "#0B1026", "#406020"));
    EXPECT_TRUE(line("shown at"));
    EXPECT_TRUE(eventuallyShows(4, 300, QColor(0x40, 0x60, 0x20)));
}

TEST_F(LivePreview, ShowsTheMissingFieldsWhenReloadedByKey) {
    begin(steps_);
    replaceFile(replaced(steps_, "\"heading\"", "\"headin\""));
    EXPECT_TRUE(line("kept the last version"));
    use("key r");
    EXPECT_TRUE(line("the document is not shown"));
    EXPECT_TRUE(eventuallyShows(4, 300, QColor(Qt::white)));
    replaceFile(steps_);
    EXPECT_TRUE(line("shown at"));
    EXPECT_TRUE(eventuallyShows(4, 300, firstColour_))
        << "the screen that says what is missing does not stay";
}

TEST_F(LivePreview, SwitchesFromAnOnboardingToAPaywall) {
    begin(steps_);
    replaceFile(replaced(paywall_, "#0B1026", "#204060"));
    EXPECT_TRUE(line("shown at 390x844"));
    EXPECT_TRUE(eventuallyShows(4, 300, QColor(0x20, 0x40, 0x60)));
}

TEST_F(LivePreview, SwitchesDevicesByKeys) {
    begin(paywall_);
    use("key n");
    EXPECT_TRUE(line("device 414x896, safe area 44,0,34,0"));
    EXPECT_TRUE(line("shown at 414x896"));
    EXPECT_TRUE(eventuallyShows(410, 890, firstColour_));
    use("key p key p");
    EXPECT_TRUE(line("device 390x844"));
    EXPECT_TRUE(line("device 414x736"));
    EXPECT_TRUE(line("shown at 414x736"));
    EXPECT_TRUE(eventuallyShows(410, 730, firstColour_));
    EXPECT_TRUE(eventuallyShows(4, 800, QColor(Qt::black))) << "nothing below the window but the display";
    use("key s");
    EXPECT_TRUE(line("device 414x736, no safe area"));
    EXPECT_TRUE(line("shown at 414x736"));
    use("key s");
    EXPECT_TRUE(line("device 414x736, safe area 20,0,0,0"));
}

TEST_F(LivePreview, SwitchesToADarkDesktopAndQuits) {
    begin(paywall_);
    const int besideThePicture = 390 + 16 + 300;
    EXPECT_TRUE(eventuallyShows(besideThePicture, 400, QColor(Qt::white)));
    use("key d");
    EXPECT_TRUE(line("dark desktop"));
    EXPECT_TRUE(eventuallyShows(besideThePicture, 400, QColor(0x16, 0x18, 0x1d)));
    use("key q");
    const auto end = preview_->end();
    EXPECT_EQ(end.status, 0) << end.problem;
}

TEST_F(LivePreview, KeepsTheStepWhenTheFileChangesAndRestartsByKey) {
    begin(steps_);
    const std::string tapTheButton = "mousemove 195 770 click 1";
    use(tapTheButton);
    EXPECT_TRUE(eventuallyShows(4, 300, QColor(0x1C, 0x0B, 0x2A)));
    letTimePass(std::chrono::milliseconds(500));
    replaceFile(replaced(steps_, "Never get lost", "Never again"));
    EXPECT_TRUE(line("shown at 390x844, step 1, 3 in all"));
    EXPECT_TRUE(eventuallyShows(4, 300, QColor(0x1C, 0x0B, 0x2A)));
    use("key o");
    EXPECT_TRUE(line("shown at 390x844, step 0, 3 in all"));
    EXPECT_TRUE(eventuallyShows(4, 300, firstColour_));
}

TEST_F(LivePreview, ClosesAFinishedOnboardingAndShowsItAgain) {
    begin(steps_);
    for (int step = 0; step < 3; ++step) {
        use("mousemove 195 770 click 1");
        letTimePass(std::chrono::milliseconds(800));
    }
    EXPECT_THAT(line("posted"),
                Optional(std::string("posted Vorna_OnboardingScreensFinished  identifier = \"\"")));
    EXPECT_TRUE(line("shown at 390x844, step 0, 3 in all"));
    EXPECT_TRUE(eventuallyShows(4, 300, firstColour_));
}

TEST_F(LivePreview, PrintsTapsOnAPaywallAndClosesItAsHostsDo) {
    begin(replaced(paywall_, "\"exitButtonDelay\": 3", "\"exitButtonDelay\": 0"));
    use("mousemove 75 620 click 1");
    EXPECT_THAT(
        line("posted"),
        Optional(std::string("posted Vorna_PaidProductClicked  identifier = \"com.example.trails.weekly\"")));
    use("mousemove 195 735 click 1");
    EXPECT_THAT(line("posted"),
                Optional(std::string(
                    "posted Vorna_PaywallScreenFinished  identifier = \"com.example.trails.weekly\"")));
    use("mousemove 20 73 click 1");
    EXPECT_THAT(line("posted"), Optional(std::string("posted Vorna_PaywallScreenClosed  success = true")));
    EXPECT_TRUE(line("shown at 390x844")) << "again";
    EXPECT_TRUE(eventuallyShows(4, 300, firstColour_));
}

}  // namespace
}  // namespace vorna::preview
