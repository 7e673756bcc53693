// SPDX-License-Identifier: Apache-2.0
#include <tools/devserver/ConfigFile.h>

#include <tests/support/TemporaryFolder.h>

#include <gmock/gmock.h>

namespace vorna::devserver {
namespace {

using support::TemporaryFolder;
using testing::AllOf;
using testing::HasSubstr;

std::string textOf(const Reading<std::string>& reading) {
    const auto* text = std::get_if<std::string>(&reading);
    return text != nullptr ? *text : "complaint: " + std::get<Complaint>(reading).text;
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

TEST(ConfigFile, IsReadAnewEachTime) {
    const TemporaryFolder folder;
    const ConfigFile file(folder.write("config.json", R"({"a":"1"})"));
    EXPECT_EQ(textOf(file.read()), R"({"a":"1"})");
    folder.write("config.json", R"({"a":"2"})");  // same size, and perhaps the same time
    EXPECT_EQ(textOf(file.read()), R"({"a":"2"})");
}

TEST(ConfigFile, ThatIsNotJsonIsComplainedAboutWithItsNameAndThePlace) {
    const TemporaryFolder folder;
    const ConfigFile file(folder.write("config.json", R"({"a":"1",})"));
    EXPECT_THAT(textOf(file.read()),
                AllOf(HasSubstr(file.path().string()), HasSubstr("not JSON"), HasSubstr("byte 9")));
    folder.write("config.json", "");
    EXPECT_THAT(textOf(file.read()), HasSubstr("complaint: "));
}

TEST(ConfigFile, ThatIsAFolderIsComplainedAbout) {
    const TemporaryFolder folder;
    EXPECT_THAT(textOf(ConfigFile(folder.path()).read()), HasSubstr("complaint: "));
}

TEST(ConfigRequest, HasDeviceDataAndNothingElse) {
    EXPECT_EQ(complaintAboutConfigRequest(R"({"deviceData":{"appId":"x"}})"), "");
    EXPECT_THAT(complaintAboutConfigRequest("{}"), HasSubstr("missing key \"deviceData\""));
    EXPECT_THAT(complaintAboutConfigRequest(R"({"deviceData":{},"more":1})"),
                HasSubstr("unexpected key \"more\""));
    EXPECT_THAT(complaintAboutConfigRequest(R"({"deviceData":{},"deviceData":{}})"),
                HasSubstr("repeated key"));
    EXPECT_THAT(complaintAboutConfigRequest(R"({"deviceData":"text"})"),
                HasSubstr("expected an object, found a string"));
    EXPECT_THAT(complaintAboutConfigRequest("[]"), HasSubstr("expected an object, found an array"));
    EXPECT_THAT(complaintAboutConfigRequest(""), HasSubstr("found nothing"));
}

}  // namespace
}  // namespace vorna::devserver
