// SPDX-License-Identifier: Apache-2.0
// Pictures of the example documents, taken without a display.

#include <tests/support/TemporaryFolder.h>
#include <tests/tools/devserver/DevServerProcess.h>
#include <tests/tools/preview/PreviewProcess.h>
#include <tools/preview/Device.h>

#include <gmock/gmock.h>

#include <QtCore/QString>
#include <QtGui/QImage>

#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

namespace vorna::preview {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

std::string example(const std::string& name) {
    return VORNA_EXAMPLES "/documents/" + name + ".json";
}

std::size_t colours(const QImage& image) {
    std::set<QRgb> seen;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            seen.insert(image.pixel(x, y));
        }
    }
    return seen.size();
}

class Pictures : public testing::Test {
  protected:
    [[nodiscard]] std::string path(const std::string& name) const { return (folder_.path() / name).string(); }

    [[nodiscard]] QImage read(const std::string& name) const {
        return QImage(QString::fromStdString(path(name)));
    }

    // With a minimal --after, so that pictures show the first moment of a document.
    [[nodiscard]] PreviewProcess::End take(std::vector<std::string> arguments, const std::string& name,
                                           const std::string& after = "0.1") const {
        arguments.insert(arguments.end(), {"--png", path(name), "--after", after});
        return run(arguments);
    }

    const support::TemporaryFolder folder_;
};

TEST_F(Pictures, HaveTheRequestedSizeAndAreNotEmpty) {
    const auto end = take({example("paywall/three-products"), "--size", "400x700"}, "a.png");
    EXPECT_EQ(end.status, 0) << end.problem;
    EXPECT_THAT(end.output, HasSubstr("no findings\n"));
    EXPECT_THAT(end.output, HasSubstr("wrote " + path("a.png") + " 400x700\n"));
    const QImage picture = read("a.png");
    EXPECT_EQ(picture.size(), QSize(400, 700));
    EXPECT_GT(colours(picture), 100U);
    EXPECT_EQ(picture.pixelColor(200, 690), QColor(0x0B, 0x10, 0x26)) << "the document's background";
}

TEST_F(Pictures, HaveTwiceThePixelsAtTwiceTheScale) {
    const auto end = take({example("onboarding/three-steps"), "--size", "375x667@2"}, "a.png");
    EXPECT_EQ(end.status, 0) << end.problem;
    EXPECT_EQ(read("a.png").size(), QSize(750, 1334));
    EXPECT_EQ(take({example("onboarding/three-steps"), "--size", "375x667"}, "b.png").status, 0);
    const QImage half = read("a.png").scaled(375, 667, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    const QImage single = read("b.png");
    // The same layout: plain places have the same colour.
    EXPECT_EQ(half.pixel(4, 4), single.pixel(4, 4));
    EXPECT_EQ(half.pixel(40, 590), single.pixel(40, 590)) << "on the button";
    EXPECT_NE(single.pixel(40, 590), single.pixel(4, 4));
}

TEST_F(Pictures, FollowTheSafeArea) {
    ASSERT_EQ(take({example("paywall/three-products"), "--size", "390x844"}, "a.png").status, 0);
    ASSERT_EQ(take({example("paywall/three-products"), "--size", "390x844"}, "again.png").status, 0);
    ASSERT_EQ(take({example("paywall/three-products"), "--device", "390x844"}, "b.png").status, 0);
    EXPECT_EQ(read("a.png"), read("again.png"));
    EXPECT_NE(read("a.png"), read("b.png"));
}

TEST_F(Pictures, HaveMediaFromTheGivenService) {
    const devserver::DevServerProcess server(
        {"--state", path("state"), "--media", VORNA_EXAMPLES "/media", "--quiet"});
    ASSERT_THAT(server.url(), Not(IsEmpty()));
    const std::vector<std::string> arguments{example("paywall/three-products"),
                                             "--size",
                                             "390x844",
                                             "--ca",
                                             path("state/ca.pem"),
                                             "--media-service",
                                             server.url()};
    EXPECT_EQ(take(arguments, "a.png", "4").status, 0);
    const QImage picture = read("a.png");
    EXPECT_GT(colours(picture.copy(0, 60, 390, 140)), 1000U) << "the mountains";
    ASSERT_EQ(take({example("paywall/three-products"), "--size", "390x844"}, "b.png").status, 0);
    EXPECT_EQ(colours(read("b.png").copy(0, 60, 390, 140)), 1U) << "nothing without the service";
    // The close button comes after three seconds.
    EXPECT_NE(picture.pixel(20, 28), picture.pixel(100, 28));
}

TEST_F(Pictures, ShowTheRequestedStep) {
    std::set<QRgb> backgrounds;
    for (const std::string step : {"0", "1", "2"}) {
        const auto end = take({example("onboarding/three-steps"), "--step", step}, "step" + step + ".png");
        EXPECT_EQ(end.status, 0) << end.problem;
        backgrounds.insert(read("step" + step + ".png").pixel(4, 4));
    }
    EXPECT_EQ(backgrounds, (std::set<QRgb>{0xFF0B1026, 0xFF1C0B2A, 0xFF06201B}));
}

TEST_F(Pictures, OfAStepThatDoesNotExistAreNotTaken) {
    const auto end = take({example("onboarding/three-steps"), "--step", "3"}, "a.png");
    EXPECT_EQ(end.status, 2);
    EXPECT_THAT(end.problem, HasSubstr("there is no step 3"));
    EXPECT_FALSE(std::filesystem::exists(path("a.png")));
    EXPECT_EQ(take({example("paywall/plain"), "--step", "1"}, "a.png").status, 2);
}

TEST_F(Pictures, OfAnIncompleteDocumentShowTheMissingFields) {
    const auto end = take({example("paywall/bad-missing-fields")}, "a.png");
    EXPECT_EQ(end.status, 1) << end.problem;
    EXPECT_THAT(end.output, HasSubstr(":3:3: error: heading: empty;"));
    EXPECT_THAT(end.output, HasSubstr("4 errors, 0 warnings in 1 of 1 document\n"));
    const QImage picture = read("a.png");
    EXPECT_EQ(picture.pixelColor(4, 4), QColor(Qt::white));
    EXPECT_GT(colours(picture), 10U) << "the names of the fields";
}

TEST_F(Pictures, OfAnOnboardingStopAtAnIncompleteStep) {
    const auto end = take({example("onboarding/bad-missing-heading"), "--step", "2"}, "a.png");
    EXPECT_EQ(end.status, 1);
    EXPECT_THAT(end.output, HasSubstr("the document is not shown\n"));
    EXPECT_EQ(read("a.png").pixelColor(4, 4), QColor(Qt::white));
}

TEST_F(Pictures, OfADocumentThatDoesNotDecodeShowOnlyTheHost) {
    const auto light = take({example("paywall/bad-syntax")}, "a.png");
    EXPECT_EQ(light.status, 1);
    EXPECT_THAT(light.output, HasSubstr("[not-json]"));
    EXPECT_THAT(light.output, HasSubstr("the document is not shown\n"));
    EXPECT_EQ(take({example("paywall/bad-syntax"), "--dark"}, "b.png").status, 1);
    EXPECT_GT(read("a.png").pixelColor(4, 4).lightness(), 200);
    EXPECT_LT(read("b.png").pixelColor(4, 4).lightness(), 60);
}

TEST_F(Pictures, OfAnOnboardingWithoutStepsShowOnlyTheHost) {
    const auto end = take({example("onboarding/bad-no-steps")}, "a.png");
    EXPECT_EQ(end.status, 1);
    EXPECT_THAT(end.output, HasSubstr("the document is not shown\n"));
}

TEST_F(Pictures, OfADocumentWithWarningsSucceed) {
    const auto end = take({example("paywall/bad-low-contrast")}, "a.png");
    EXPECT_EQ(end.status, 0);
    EXPECT_THAT(end.output, HasSubstr("7 warnings"));
    EXPECT_GT(colours(read("a.png")), 100U);
}

TEST_F(Pictures, OfAllSizesComeWithASheet) {
    const auto end = run({example("paywall/two-products"), "--all-sizes", path("new/all"), "--after", "0.1"});
    EXPECT_EQ(end.status, 0) << end.problem;
    std::size_t files = 0;
    for (const auto& file : std::filesystem::directory_iterator(path("new/all"))) {
        files += file.is_regular_file() ? 1U : 0U;
    }
    EXPECT_EQ(files, standardDevices().size() + 1);
    int width = 0;
    for (const Device& device : standardDevices()) {
        const QImage picture = read("new/all/two-products-" + device.name + ".png");
        EXPECT_EQ(picture.size(), device.size);
        EXPECT_GT(colours(picture), 100U) << device.name;
        width += picture.width() * 720 / picture.height();
    }
    const QImage sheet = read("new/all/two-products-sheet.png");
    EXPECT_GT(sheet.width(), width);
    EXPECT_GT(sheet.height(), 720);
    EXPECT_GT(colours(sheet), 500U);
    EXPECT_GT(colours(sheet.copy(0, 0, sheet.width(), 40)), 10U) << "labels";
}

TEST_F(Pictures, ThatCannotBeWrittenAreErrors) {
    const auto end = take({example("paywall/plain")}, "no/folder/a.png");
    EXPECT_EQ(end.status, 2);
    EXPECT_THAT(end.problem, HasSubstr("cannot write the picture"));
}

TEST_F(Pictures, OfAFileThatCannotBeReadAreNotTaken) {
    const auto end = take({path("none.json")}, "a.png");
    EXPECT_EQ(end.status, 2);
    EXPECT_THAT(end.problem, HasSubstr("none.json: No such file"));
}

TEST_F(Pictures, LeaveNothingInTheUsersFolders) {
    ASSERT_EQ(::setenv("HOME", path("home").c_str(), 1), 0);
    ASSERT_EQ(::setenv("XDG_DATA_HOME", path("home/data").c_str(), 1), 0);
    EXPECT_EQ(take({example("paywall/plain")}, "a.png").status, 0);
    EXPECT_FALSE(std::filesystem::exists(path("home/data")));
}

TEST(Window, NeedsADisplay) {
    const auto end = run({example("paywall/plain")});
    EXPECT_EQ(end.status, 2);
    EXPECT_THAT(end.problem, HasSubstr("no display"));
}

}  // namespace
}  // namespace vorna::preview
