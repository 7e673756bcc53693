// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/URL.h>

#include <gtest/gtest.h>

#include <string_view>

namespace vorna {
namespace {

using namespace std::string_view_literals;

TEST(URL, ReturnsItsParts) {
    const auto url = URL::parse("HTTPS://Events.Example.com/v1/event?x=1");
    ASSERT_TRUE(url);
    EXPECT_EQ(url->text(), "HTTPS://Events.Example.com/v1/event?x=1");
    EXPECT_EQ(url->scheme(), "https");
    EXPECT_EQ(url->host(), "events.example.com");
    EXPECT_EQ(url->port(), 443);
    EXPECT_EQ(URL::parse("http://h:8080/")->port(), 8080);
    EXPECT_EQ(URL::parse("https://[2001:db8::1]:8443/")->host(), "2001:db8::1");
}

class InvalidURL : public testing::TestWithParam<std::string_view> {};

TEST_P(InvalidURL, IsRejected) {
    EXPECT_FALSE(URL::parse(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Texts, InvalidURL,
                         testing::Values(""sv, "/v1/event"sv, "example.com/v1"sv, "https://"sv,
                                         "https:///v1"sv, "https://ho st/v1"sv, "https://host:port/"sv,
                                         "https://host:99999/"sv, "https://host/\n"sv,
                                         "https://host/\0/v1"sv));

struct LoopbackCase {
    const char* name;
    const char* text;
    bool loopback;
};

class Loopback : public testing::TestWithParam<LoopbackCase> {};

TEST_P(Loopback, IsAnyAddressOnThisMachineOnly) {
    EXPECT_EQ(URL::parse(GetParam().text)->isLoopback(), GetParam().loopback);
}

INSTANTIATE_TEST_SUITE_P(
    Addresses, Loopback,
    testing::Values(LoopbackCase{"Usual", "http://127.0.0.1:80/", true},
                    LoopbackCase{"AnyOf127", "http://127.8.9.10/", true},
                    LoopbackCase{"Localhost", "http://LOCALHOST/", true},
                    LoopbackCase{"Version6", "http://[::1]/", true},
                    LoopbackCase{"Any", "http://0.0.0.0/", false},
                    LoopbackCase{"Name", "http://example.com/", false},
                    LoopbackCase{"NameThatBeginsAlike", "http://127.0.0.1.example.com/", false},
                    LoopbackCase{"LocalhostOfADomain", "http://localhost.example.com/", false},
                    LoopbackCase{"OtherVersion6", "http://[::2]/", false}),
    [](const auto& testCase) { return testCase.param.name; });

}  // namespace
}  // namespace vorna
