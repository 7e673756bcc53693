// SPDX-License-Identifier: Apache-2.0
#include <vorna/device/DeviceMetadataCollector.h>

#include <tests/support/FixedSystem.h>
#include <tests/support/SettableClock.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace vorna {
namespace {

using support::FixedSystem;
using support::SettableClock;

struct ZoneCase {
    const char* name;
    std::int32_t seconds;
    const char* text;
};

class TimezoneText : public testing::TestWithParam<ZoneCase> {};

TEST_P(TimezoneText, ContainsHoursAndMinutesAheadOfUTC) {
    EXPECT_EQ(timezoneText(GetParam().seconds), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Zones, TimezoneText,
    testing::Values(ZoneCase{"Istanbul", 10800, "UTC+3:00"}, ZoneCase{"Kolkata", 19800, "UTC+5:30"},
                    ZoneCase{"Greenwich", 0, "UTC+0:00"}, ZoneCase{"NewYork", -18000, "UTC--5:00"},
                    ZoneCase{"StJohns", -12600, "UTC--3:30"}, ZoneCase{"Kathmandu", 20700, "UTC+5:45"},
                    ZoneCase{"Marquesas", -34200, "UTC--9:30"}, ZoneCase{"Kiritimati", 50400, "UTC+14:00"},
                    ZoneCase{"LessThanAnHourWest", -1800, "UTC-0:30"},
                    ZoneCase{"SecondsWest", -30, "UTC-0:00"}, ZoneCase{"AMinuteWest", -60, "UTC-0:01"},
                    ZoneCase{"NineMinutesEast", 540, "UTC+0:09"}),
    [](const auto& testCase) { return testCase.param.name; });

class DeviceSnapshot : public testing::Test {
  protected:
    const std::shared_ptr<FixedSystem> system_ = std::make_shared<FixedSystem>();
    const std::shared_ptr<SettableClock> clock_ = std::make_shared<SettableClock>();
    DeviceMetadataCollector collector_{system_, clock_};

    static SharedValue<IdentityDescription> identity() {
        return SharedValue<IdentityDescription>(
            {1'690'000'000, "adid-1", "01HK5GN9ZRG8W4X0VTY0GQE7VM", "my-app"});
    }

    static std::string textOf(const DeviceMetadata& metadata) { return json::encode(metadata).value(); }
};

TEST_F(DeviceSnapshot, IsEncodedWithAllFieldsInOrder) {
    EXPECT_EQ(
        textOf(collector_.collect(identity())),
        R"({"deviceModel":"Librem 5","deviceName":"Deniz'in telefonu","osVersion":"12","locale":"tr_TR",)"
        R"("screenWidth":360,"screenHeight":720,"screenScale":2,"batteryLevel":0.87,)"
        R"("isBatteryMonitoringEnabled":true,"batteryState":2,"isBoldTextEnabled":false,)"
        R"("isBiometricSupported":true,"totalDiskSpace":64000000000,"freeDiskSpace":12345678901,)"
        R"("idfv":"5F0C4C7E-8E0B-8E1F-9A2B-0123456789AB","idfa":"00000000-0000-0000-0000-000000000000",)"
        R"("timezoneOffset":"UTC+3:00","localInstallTime":1700000000,"installTime":1690000000,)"
        R"("appVersion":"1.2.3","buildNumber":"45","platform":"ios","bundle":"com.example.app",)"
        R"("adid":"adid-1","userId":"01HK5GN9ZRG8W4X0VTY0GQE7VM","appId":"my-app"})");
}

TEST_F(DeviceSnapshot, IsDecodedUnchanged) {
    const DeviceMetadata metadata = collector_.collect(identity());
    EXPECT_EQ(json::decode<DeviceMetadata>(textOf(metadata)).value(), metadata);
}

TEST_F(DeviceSnapshot, IsDecodedWithoutOptionalFieldsButNotWithoutRequiredOnes) {
    constexpr const char* least =
        R"({"deviceModel":"m","deviceName":"n","osVersion":"1","locale":"l","screenWidth":1,"screenHeight":2,)"
        R"("screenScale":3,"batteryLevel":-1,"isBatteryMonitoringEnabled":false,"batteryState":0,)"
        R"("isBoldTextEnabled":false,"isBiometricSupported":false,"platform":"ios","bundle":"b","adid":"",)"
        R"("userId":"","appId":""})";
    const auto decoded = json::decode<DeviceMetadata>(std::string_view(least));
    ASSERT_TRUE(decoded);
    EXPECT_EQ(textOf(decoded.value()), least);

    std::string withoutBundle = least;
    withoutBundle.erase(withoutBundle.find(R"("bundle":"b",)"), std::string_view(R"("bundle":"b",)").size());
    const auto incomplete = json::decode<DeviceMetadata>(std::string_view(withoutBundle));
    EXPECT_EQ(json::describe(incomplete.error()), "bundle: missing");
}

TEST_F(DeviceSnapshot, HasFallbacksForUnknownFacts) {
    SystemFacts facts = FixedSystem::sampleFacts();
    facts.bundle = {};
    facts.identifierForVendor.reset();
    system_->setFacts(facts);
    const std::string text = textOf(collector_.collect({}));
    EXPECT_NE(text.find(R"("idfv":"")"), std::string::npos);
    EXPECT_NE(text.find(R"("appVersion":"Unknown version","buildNumber":"Unknown build")"),
              std::string::npos);
    EXPECT_NE(text.find(R"("bundle":"Unknown Identifier")"), std::string::npos);
}

TEST_F(DeviceSnapshot, OmitsBothDiskSizesIfTheyCannotBeRead) {
    const std::string before = textOf(collector_.collect(identity()));
    system_->fileSystem.reset();
    std::string expected = before;
    constexpr std::string_view sizes = R"("totalDiskSpace":64000000000,"freeDiskSpace":12345678901,)";
    expected.erase(expected.find(sizes), sizes.size());
    EXPECT_EQ(textOf(collector_.collect(identity())), expected);
}

TEST_F(DeviceSnapshot, EnablesBatteryMonitoringBeforeReadingTheFacts) {
    SystemFacts facts = FixedSystem::sampleFacts();
    facts.battery.isMonitoringEnabled = false;
    system_->setFacts(facts);
    EXPECT_TRUE(collector_.collect(identity()).device->isBatteryMonitoringEnabled);
    EXPECT_EQ(system_->timesMonitoringWasEnabled(), 1);
}

TEST_F(DeviceSnapshot, AlwaysPrintsThatTheDocumentsFolderCannotBeRead) {
    system_->documentsCreation = Unexpected(std::string("/documents: Permission denied"));
    testing::internal::CaptureStdout();
    const DeviceMetadata metadata = collector_.collect(identity());
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Error retrieving file attributes: /documents: Permission denied\n");
    EXPECT_EQ(metadata.localInstallTime, 0U);
}

TEST_F(DeviceSnapshot, HasZeroForADocumentsFolderWithoutBirthTimeAndPrintsNothing) {
    system_->documentsCreation = std::nullopt;
    testing::internal::CaptureStdout();
    EXPECT_EQ(collector_.collect(identity()).localInstallTime, 0U);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST_F(DeviceSnapshot, AbortsWithoutADocumentsFolder) {
    system_->documents.reset();
    EXPECT_DEATH(collector_.collect(identity()),
                 "Fatal error: there is no folder for the application's documents");
}

TEST_F(DeviceSnapshot, AbortsForAnImpossibleCreationDate) {
    system_->documentsCreation = Date{-5};
    EXPECT_DEATH(collector_.collect(identity()), "Fatal error: the clock returned a date outside the range");
}

TEST_F(DeviceSnapshot, UpdatesChangedPartsAndSharesTheOthers) {
    const DeviceMetadata first = collector_.collect(identity());
    const DeviceMetadata second = collector_.collect(identity());
    EXPECT_TRUE(first.device.sharesWith(second.device));

    system_->setScreen({720, 360, 2});
    const DeviceMetadata third = collector_.collect(identity());
    EXPECT_EQ(third.device->screenWidth, 720);
    EXPECT_EQ(first.device->screenWidth, 360) << "a snapshot keeps the state of its moment";
}

}  // namespace
}  // namespace vorna
