// SPDX-License-Identifier: Apache-2.0
#include <tools/devserver/ConfigFile.h>

#include <tests/support/TemporaryFolder.h>

#include <gmock/gmock.h>

namespace vorna::devserver {
namespace {

using support::TemporaryFolder;
using testing::AllOf;
using testing::HasSubstr;

std::string textOf(const Result<std::string, ConfigFileError>& text) {
    return text ? *text : "error: " + describe(text.error());
}

std::string errorOf(std::string_view request) {
    const auto checked = checkConfigRequest(request);
    return checked ? "" : describe(checked.error());
}

TEST(ConfigFile, IsAnEmptyObjectWhenMissing) {
    const TemporaryFolder folder;
    EXPECT_EQ(textOf(ConfigFile(folder.path() / "config.json").read()), "{}");
}

TEST(ConfigFile, IsServedByteForByteEvenWithValuesOfAWrongType) {
    const TemporaryFolder folder;
    const std::string text = "{ \"a\": \"1\",\n  \"b\": 2.50, \"c\": null }\n";
    EXPECT_EQ(textOf(ConfigFile(folder.write("config.json", text)).read()), text);
}

TEST(ConfigFile, IsRereadEachTime) {
    const TemporaryFolder folder;
    const ConfigFile file(folder.write("config.json", R"({"a":"1"})"));
    EXPECT_EQ(textOf(file.read()), R"({"a":"1"})");
    folder.write("config.json", R"({"a":"2"})");  // same size, and perhaps the same time
    EXPECT_EQ(textOf(file.read()), R"({"a":"2"})");
}

TEST(ConfigFile, ThatIsNotJsonIsAnErrorWithItsPathAndTheOffset) {
    const TemporaryFolder folder;
    const ConfigFile file(folder.write("config.json", R"({"a":"1",})"));
    EXPECT_THAT(textOf(file.read()),
                AllOf(HasSubstr(file.path().string()), HasSubstr("not JSON"), HasSubstr("byte 9")));
    folder.write("config.json", "");
    EXPECT_THAT(textOf(file.read()), HasSubstr("error: "));
}

TEST(ConfigFile, ThatIsAFolderIsAnError) {
    const TemporaryFolder folder;
    EXPECT_THAT(textOf(ConfigFile(folder.path()).read()), HasSubstr("Is a directory"));
}

TEST(ConfigRequest, HasDeviceDataAndNothingElse) {
    EXPECT_EQ(errorOf(R"({"deviceData":{"appId":"x"}})"), "");
    EXPECT_THAT(errorOf("{}"), HasSubstr("missing key \"deviceData\""));
    EXPECT_THAT(errorOf(R"({"deviceData":{},"more":1})"), HasSubstr("unexpected key \"more\""));
    EXPECT_THAT(errorOf(R"({"deviceData":{},"deviceData":{}})"), HasSubstr("repeated key"));
    EXPECT_THAT(errorOf(R"({"deviceData":"text"})"), HasSubstr("expected an object, found a string"));
    EXPECT_THAT(errorOf("[]"), HasSubstr("expected an object, found an array"));
    EXPECT_THAT(errorOf(""), HasSubstr("found nothing"));
}

}  // namespace
}  // namespace vorna::devserver
