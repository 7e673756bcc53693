// SPDX-License-Identifier: Apache-2.0
#include <tools/preview/Options.h>

#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

namespace vorna::preview {
namespace {

using testing::HasSubstr;

Result<Options, tools::EarlyExit> read(std::vector<const char*> arguments) {
    arguments.insert(arguments.begin(), "vorna-preview");
    return readOptions(static_cast<int>(arguments.size()), arguments.data());
}

Options options(const std::vector<const char*>& arguments) {
    auto options = read(arguments);
    if (!options) {
        ADD_FAILURE() << options.error().output;
        return {};
    }
    return *std::move(options);
}

TEST(PreviewOptions, RequestAWindowOfACommonPhoneByDefault) {
    const Options read = options({"a.json"});
    EXPECT_EQ(read.file, "a.json");
    EXPECT_EQ(read.device.name, "390x844");
    EXPECT_EQ(read.device.safeArea, QMargins(0, 47, 0, 34));
    EXPECT_EQ(read.scale, 1);
    EXPECT_EQ(read.step, 0);
    EXPECT_FALSE(read.kind);
    EXPECT_FALSE(read.takesPictures());
}

TEST(PreviewOptions, TakeADeviceByName) {
    EXPECT_EQ(options({"a.json", "--device", "820x1180"}).device.size, QSize(820, 1180));
    EXPECT_EQ(options({"a.json", "--device", "320x568", "--safe-area", "1,2,3,4"}).device.safeArea,
              QMargins(2, 1, 4, 3));
}

TEST(PreviewOptions, TakeASizeWithAScaleAndWithoutASafeArea) {
    const Options read = options({"a.json", "--size", "400x500@1.5", "--png", "a.png", "--after", "0.25"});
    EXPECT_EQ(read.device.size, QSize(400, 500));
    EXPECT_TRUE(read.device.safeArea.isNull());
    EXPECT_EQ(read.scale, 1.5);
    EXPECT_EQ(read.after, std::chrono::milliseconds(250));
    EXPECT_TRUE(read.takesPictures());
}

TEST(PreviewOptions, TakeAKindAndAStep) {
    const Options read = options({"a.json", "--kind", "onboarding", "--step", "2", "--all-sizes", "out"});
    EXPECT_EQ(read.kind, lint::DocumentKind::onboarding);
    EXPECT_EQ(read.step, 2);
    EXPECT_TRUE(read.takesPictures());
}

struct Mistake {
    const char* name;
    std::vector<const char*> arguments;
    const char* text;
};

class PreviewMistakes : public testing::TestWithParam<Mistake> {};

TEST_P(PreviewMistakes, ExitWithStatusTwoAndAReason) {
    const auto result = read(GetParam().arguments);
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().status, 2);
    EXPECT_THAT(result.error().output, HasSubstr(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(
    All, PreviewMistakes,
    testing::Values(
        Mistake{"NoDocument", {}, "no DOCUMENT given"}, Mistake{"TwoDocuments", {"a", "b"}, "b"},
        Mistake{"UnknownDevice", {"a", "--device", "391x844"}, "391x844"},
        Mistake{"SizeOfOneNumber", {"a", "--size", "390"}, "not of the form 390x844"},
        Mistake{"SizeOfNothing", {"a", "--size", "0x844"}, "not of the form 390x844"},
        Mistake{"SizeBeyondAllScreens", {"a", "--size", "390x8193"}, "not of the form 390x844"},
        Mistake{"ScaleOfNothing", {"a", "--size", "390x844@0"}, "not of the form 390x844"},
        Mistake{"ScaleThatIsNone", {"a", "--size", "390x844@nan"}, "not of the form 390x844"},
        Mistake{"ScaleTooLarge", {"a", "--scale", "5"}, "not between 1 and 4"},
        Mistake{"SafeAreaOfThreeSides", {"a", "--safe-area", "1,2,3"}, "not of the form 47,0,34,0"},
        Mistake{"SafeAreaOfFiveSides", {"a", "--safe-area", "1,2,3,4,5"}, "not of the form 47,0,34,0"},
        Mistake{"SafeAreaBelowNothing", {"a", "--safe-area", "-1,0,0,0"}, "not of the form 47,0,34,0"},
        Mistake{"StepBelowTheFirst", {"a", "--step", "-1"}, "--step"},
        Mistake{"AfterWithoutAPicture", {"a", "--after", "1"}, "--after needs"},
        Mistake{"DeviceAndSize", {"a", "--device", "320x568", "--size", "1x1"}, "cannot be combined with"},
        Mistake{"PictureAndAllSizes", {"a", "--png", "b", "--all-sizes", "c"}, "cannot be combined with"},
        Mistake{"SizeAndAllSizes", {"a", "--size", "1x1", "--all-sizes", "c"}, "cannot be combined with"},
        Mistake{"PictureWithoutAName", {"a", "--png", ""}, "--png"},
        Mistake{"AuthorityThatIsNotThere", {"a", "--ca", "/nowhere"}, "/nowhere"},
        Mistake{"UnknownKind", {"a", "--kind", "poster"}, "poster"}),
    [](const auto& testCase) { return testCase.param.name; });

TEST(PreviewOptions, HelpNamesTheKeysAndTheExitStatus) {
    const auto result = read({"--help"});
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().status, 0);
    for (const char* text : {"--all-sizes", "--version", "Keys:", "Exit status"}) {
        EXPECT_THAT(result.error().output, HasSubstr(text));
    }
}

}  // namespace
}  // namespace vorna::preview
