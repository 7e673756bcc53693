// SPDX-License-Identifier: Apache-2.0
#include <vorna/core/VornaCoreSDK.h>

#include <tests/support/RecordedEvents.h>
#include <tests/support/ui/PaidDocument.h>
#include <tests/support/ui/Pictures.h>
#include <tests/support/ui/ScreenHost.h>

#include <QtGui/QGuiApplication>

#include <gmock/gmock.h>

#include <ostream>
#include <string>

namespace vorna {
namespace {

using support::eventually;
using support::exampleDocument;
using support::ScreenHost;

struct Look {
    std::string name;
    std::string document;
    QSize size;
    QMarginsF insets;
    Qt::LayoutDirection direction = Qt::LeftToRight;
};

void PrintTo(const Look& look, std::ostream* stream) {
    *stream << look.name;
}

class PaidScreenLooks : public testing::TestWithParam<Look> {};

TEST_P(PaidScreenLooks, MatchesItsPicture) {
    const Look& look = GetParam();
    QGuiApplication::setLayoutDirection(look.direction);
    const support::RecordedEvents platform;
    ScreenHost host(look.size);
    host.window().setSafeAreaInsets(look.insets);
    boost::json::value document = boost::json::parse(exampleDocument(look.document));
    boost::json::object& screen =
        document.is_array() ? document.as_array().at(2).as_object() : document.as_object();
    screen["exitButtonDelay"] = 0;
    // There is no network here, so the media area stays empty.
    if (document.is_array()) {
        VornaCoreSDK::ShowOnboarding(boost::json::serialize(boost::json::array{screen}));
    } else {
        VornaCoreSDK::ShowPaywall(boost::json::serialize(screen));
    }
    ASSERT_TRUE(eventually([&] { return host.find("exitButton") != nullptr; }));
    host.settle();
    support::expectLikePicture(host.picture(), look.name);
}

INSTANTIATE_TEST_SUITE_P(
    Screens, PaidScreenLooks,
    testing::Values(Look{"paywall-320x568", "paywall/three-products.json", {320, 568}, {}},
                    Look{"paywall-375x667", "paywall/three-products.json", {375, 667}, {0, 20, 0, 0}},
                    Look{"paywall-414x736", "paywall/three-products.json", {414, 736}, {0, 20, 0, 0}},
                    Look{"paywall-390x844", "paywall/three-products.json", {390, 844}, {0, 47, 0, 34}},
                    Look{"paywall-414x896", "paywall/three-products.json", {414, 896}, {0, 44, 0, 34}},
                    Look{"paywall-820x1180", "paywall/three-products.json", {820, 1180}, {0, 24, 0, 20}},
                    Look{"paywall-one-product", "paywall/one-product.json", {390, 844}, {0, 47, 0, 34}},
                    Look{"paywall-two-products", "paywall/two-products.json", {390, 844}, {0, 47, 0, 34}},
                    Look{"paywall-six-products", "paywall/six-products.json", {390, 844}, {0, 47, 0, 34}},
                    Look{"paywall-long-texts", "paywall/long-texts.json", {390, 844}, {0, 47, 0, 34}},
                    Look{
                        "paywall-arabic", "paywall/arabic.json", {390, 844}, {0, 47, 0, 34}, Qt::RightToLeft},
                    Look{"paywall-step-320x568", "onboarding/five-steps.json", {320, 568}, {}},
                    Look{"paywall-step-375x667", "onboarding/five-steps.json", {375, 667}, {0, 20, 0, 0}},
                    Look{"paywall-step-414x736", "onboarding/five-steps.json", {414, 736}, {0, 20, 0, 0}},
                    Look{"paywall-step-390x844", "onboarding/five-steps.json", {390, 844}, {0, 47, 0, 34}},
                    Look{"paywall-step-414x896", "onboarding/five-steps.json", {414, 896}, {0, 44, 0, 34}},
                    Look{"paywall-step-820x1180", "onboarding/five-steps.json", {820, 1180}, {0, 24, 0, 20}}),
    [](const auto& testCase) {
        std::string name = testCase.param.name;
        for (char& character : name) {
            character = character == '-' ? '_' : character;
        }
        return name;
    });

TEST(OverlayLooks, MatchesItsPicture) {
    const support::RecordedEvents platform;
    ScreenHost host(QSize(390, 844));
    VornaCoreSDK::ShowPaidProductLoadingScreen();
    ASSERT_TRUE(eventually([&] { return host.screens().size() == 1; }));
    host.settle();
    // Stops the spinner in a known position.
    QObject* const rotation = host.find("spinner")->findChild<QObject*>(QStringLiteral("rotation"));
    ASSERT_NE(rotation, nullptr);
    rotation->setProperty("running", false);
    host.find("spinnerLayer")->setRotation(0);
    host.settle();
    support::expectLikePicture(host.picture(), "overlay");
}

}  // namespace
}  // namespace vorna
