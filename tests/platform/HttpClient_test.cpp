// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/HttpClient.h>

#include <gtest/gtest.h>

namespace vorna {
namespace {

TEST(HttpResponseDescription, IsOneLine) {
    EXPECT_EQ(
        debugDescription(HttpResponse{"https://h/v1/event", 204, {{"Server", "s"}, {"X", "a\r\nb"}}}),
        "Optional(<HTTPResponse: https://h/v1/event> { status code: 204, headers { Server: s; X: a  b } })");
    EXPECT_EQ(debugDescription(HttpResponse{"https://h/", 500, {}}),
              "Optional(<HTTPResponse: https://h/> { status code: 500, headers { } })");
    EXPECT_EQ(debugDescription(std::nullopt), "nil");
}

}  // namespace
}  // namespace vorna
