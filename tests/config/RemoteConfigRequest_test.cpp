// SPDX-License-Identifier: Apache-2.0
#include <vorna/config/RemoteConfigRequest.h>

#include <tests/support/Samples.h>

#include <vorna/json/Encoding.h>
#include <vorna/json/Value.h>

#include <gtest/gtest.h>

#include <string>

namespace vorna {
namespace {

TEST(RemoteConfigRequestBody, HasTheDeviceDataAsItsOnlyKey) {
    const DeviceMetadata metadata = support::sampleDeviceMetadata();
    const json::Encoded body = json::encode(RemoteConfigRequest{metadata});
    ASSERT_TRUE(body);
    const auto tree = json::parse(body.value());
    ASSERT_TRUE(tree);
    const boost::json::object& object = tree.value().as_object();
    ASSERT_EQ(object.size(), 1U);
    EXPECT_EQ(object.begin()->key(), "deviceData");

    const json::Decoded<DeviceMetadata> read = json::decodeTree<DeviceMetadata>(object.at("deviceData"));
    ASSERT_TRUE(read);
    EXPECT_EQ(read.value(), metadata);
}

TEST(RemoteConfigRequestBody, OmitsEmptyOptionalFields) {
    const json::Encoded body = json::encode(RemoteConfigRequest());
    ASSERT_TRUE(body);
    const auto& text = body.value();
    EXPECT_EQ(text.find("idfa"), std::string::npos) << text;
    EXPECT_EQ(text.find("null"), std::string::npos) << text;
    EXPECT_NE(text.find("\"appId\""), std::string::npos) << text;
}

TEST(RemoteConfigRequestBody, IsRejectedWithThePathOfTextThatIsNotUtf8) {
    DeviceMetadata metadata = support::sampleDeviceMetadata();
    metadata.device.edit().deviceName = "Anna\xFFs phone";
    const json::Encoded body = json::encode(RemoteConfigRequest{metadata});
    ASSERT_FALSE(body);
    EXPECT_EQ(json::describe(body.error()), "deviceData.deviceName: the text is not UTF-8");
}

}  // namespace
}  // namespace vorna
