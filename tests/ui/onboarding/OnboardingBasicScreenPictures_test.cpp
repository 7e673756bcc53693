// SPDX-License-Identifier: Apache-2.0
#include <tests/support/RecordedEvents.h>
#include <tests/support/ui/MediaSamples.h>
#include <tests/support/ui/OnboardingDocument.h>
#include <tests/support/ui/Pictures.h>
#include <tests/support/ui/ScreenHost.h>

#include <gmock/gmock.h>

#include <ostream>
#include <string>

namespace vorna {
namespace {

using support::basicStep;
using support::documentOf;
using support::eventually;
using support::ScreenHost;

struct Look {
    std::string name;
    QSize size;
    QMarginsF insets;
    bool isLast = false;
    double pictureHeight = 200;
};

void PrintTo(const Look& look, std::ostream* stream) {
    *stream << look.name;
}

class BasicScreenLooks : public testing::TestWithParam<Look> {};

TEST_P(BasicScreenLooks, MatchesItsPicture) {
    const Look& look = GetParam();
    const support::RecordedEvents platform;
    ScreenHost host(look.size);
    host.window().setSafeAreaInsets(look.insets);
    const boost::json::object first =
        basicStep("Fotoğraflarını düzenle", {{"heading", "Albümler kendiliğinden oluşur 📷"},
                                             {"buttonTitle", "Devam et"},
                                             {"actionButtonColor1", "#ff5e62"},
                                             {"actionButtonColor2", "#5b2be0"}});
    boost::json::object last = first;
    last["title"] = "Hazırsın";
    VornaCoreSDK::ShowOnboarding(documentOf({first, first, last}));
    for (int i = 0; i < (look.isLast ? 2 : 0); ++i) {
        host.settle();
        host.click(host.find("actionButton"));
    }
    host.settle();

    const auto requests = static_cast<std::size_t>(look.isLast ? 3 : 1);
    ASSERT_EQ(platform.http->requestCount(), requests);
    HttpResponse answer{"https://media.test/picture.png", 200, {{"Content-Type", "image/png"}}};
    for (std::size_t i = 0; i < requests; ++i) {
        platform.http->answer({std::string(), answer, std::nullopt});
    }
    ASSERT_TRUE(eventually([&] { return platform.http->requestCount() == 2 * requests; }));
    const std::string picture = support::encodedPicture({400, static_cast<int>(look.pictureHeight)}, "png",
                                                        QColor(0x2e, 0x8b, 0x57), QColor(0xf4, 0xa4, 0x60));
    for (std::size_t i = 0; i < requests; ++i) {
        platform.http->answer({picture, answer, std::nullopt});
    }
    ASSERT_TRUE(eventually([&] { return host.find("mediaImage")->isVisible(); }));
    ASSERT_TRUE(eventually([&] { return (host.find("exitButton") != nullptr) == look.isLast; }));
    host.settle();
    support::expectLikePicture(host.picture(), "basic-" + look.name);
}

INSTANTIATE_TEST_SUITE_P(Sizes, BasicScreenLooks,
                         testing::Values(Look{"320x568", {320, 568}, {}, false, 200},
                                         Look{"375x667", {375, 667}, {}, true, 200},
                                         Look{"414x736", {414, 736}, {}, false, 200},
                                         Look{"390x844", {390, 844}, {0, 47, 0, 34}, true, 300},
                                         Look{"414x896", {414, 896}, {0, 44, 0, 34}, false, 300},
                                         Look{"820x1180", {820, 1180}, {0, 24, 0, 20}, true, 200}),
                         [](const auto& testCase) { return "W" + testCase.param.name; });

TEST(PictureDifference, CountsWorstMeanAndShareOfPixels) {
    QImage first(10, 10, QImage::Format_RGB32);
    first.fill(QColor(100, 100, 100));
    QImage second = first;
    EXPECT_EQ(support::difference(first, second).worst, 0);
    second.setPixelColor(3, 4, QColor(100, 160, 100));
    const support::PictureDifference found = support::difference(first, second);
    EXPECT_EQ(found.worst, 60);
    EXPECT_DOUBLE_EQ(found.share, 0.01);
    EXPECT_DOUBLE_EQ(found.mean, 0.2);
}

}  // namespace
}  // namespace vorna
