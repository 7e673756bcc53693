// SPDX-License-Identifier: Apache-2.0
#include <vorna/config/RemoteConfigRequest.h>

#include <tests/support/Samples.h>

#include <vorna/json/Value.h>

#include <gtest/gtest.h>

#include <string>
#include <variant>

namespace vorna {
namespace {

TEST(RemoteConfigRequestBody, HasTheDeviceDataAsItsOnlyKey) {
    const DeviceMetadata metadata = support::sampleDeviceMetadata();
    const json::Encoded body = encodeRemoteConfigRequest({metadata});
    ASSERT_TRUE(std::holds_alternative<std::string>(body));
    const auto tree = json::parse(std::get<std::string>(body));
    ASSERT_TRUE(std::holds_alternative<boost::json::value>(tree));
    const boost::json::object& object = std::get<boost::json::value>(tree).as_object();
    ASSERT_EQ(object.size(), 1U);
    EXPECT_EQ(object.begin()->key(), "deviceData");

    const json::Decoded<DeviceMetadata> read = json::decodeTree<DeviceMetadata>(object.at("deviceData"));
    ASSERT_TRUE(std::holds_alternative<DeviceMetadata>(read));
    EXPECT_EQ(std::get<DeviceMetadata>(read), metadata);
}

TEST(RemoteConfigRequestBody, LeavesOptionalFieldsOutWhenTheyAreEmpty) {
    const json::Encoded body = encodeRemoteConfigRequest({});
    ASSERT_TRUE(std::holds_alternative<std::string>(body));
    const auto& text = std::get<std::string>(body);
    EXPECT_EQ(text.find("idfa"), std::string::npos) << text;
    EXPECT_EQ(text.find("null"), std::string::npos) << text;
    EXPECT_NE(text.find("\"appId\""), std::string::npos) << text;
}

TEST(RemoteConfigRequestBody, IsRefusedWithThePlaceOfTextThatIsNotUtf8) {
    DeviceMetadata metadata = support::sampleDeviceMetadata();
    metadata.device.edit().deviceName = "Anna\xFFs phone";
    const json::Encoded body = encodeRemoteConfigRequest({metadata});
    ASSERT_TRUE(std::holds_alternative<json::EncodingError>(body));
    EXPECT_EQ(std::get<json::EncodingError>(body).description,
              "deviceData.deviceName: the text is not UTF-8");
}

}  // namespace
}  // namespace vorna
