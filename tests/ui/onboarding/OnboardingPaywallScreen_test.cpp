// SPDX-License-Identifier: Apache-2.0
#include <vorna/core/VornaCoreSDK.h>

#include <tests/support/RecordedEvents.h>
#include <tests/support/ui/OnboardingDocument.h>
#include <tests/support/ui/OpenedLinks.h>
#include <tests/support/ui/PaidDocument.h>
#include <tests/support/ui/ScreenHost.h>

#include <QtGui/QColor>
#include <QtGui/QFont>

#include <gmock/gmock.h>

#include <array>
#include <initializer_list>
#include <ostream>
#include <string>
#include <tuple>
#include <vector>

namespace vorna {
namespace {

using std::chrono::milliseconds;
using support::basicStep;
using support::documentOf;
using support::eventually;
using support::paywallStep;
using support::ScreenHost;
using testing::ElementsAre;
using testing::IsEmpty;

/// The expected layout for a screen size without insets, written by hand.
struct Expected {
    const char* name;
    QSize size;
    double titleShift;
    double buttonBottom;
    double buttonHeight;
    double rowHeight;
};

void PrintTo(const Expected& expected, std::ostream* stream) {
    *stream << expected.name;
}

constexpr std::array sizes{
    Expected{"W320H568", {320, 568}, -40, 508, 50, 160}, Expected{"W375H667", {375, 667}, -40, 607, 50, 160},
    Expected{"W375H699", {375, 699}, -40, 659, 50, 190}, Expected{"W375H700", {375, 700}, 0, 660, 50, 190},
    Expected{"W414H736", {414, 736}, 0, 696, 50, 190},   Expected{"W390H844", {390, 844}, 0, 804, 70, 190},
    Expected{"W414H896", {414, 896}, 0, 856, 70, 190},   Expected{"W820H1180", {820, 1180}, 0, 1140, 70, 190},
};

struct Insets {
    const char* name;
    QMarginsF margins;
};

void PrintTo(const Insets& insets, std::ostream* stream) {
    *stream << insets.name;
}

class PaywallStepGeometry : public testing::TestWithParam<std::tuple<Expected, Insets>> {};

TEST_P(PaywallStepGeometry, MatchesTheDesign) {
    const auto& [expected, insets] = GetParam();
    const support::RecordedEvents platform;
    ScreenHost host(expected.size);
    host.window().setSafeAreaInsets(insets.margins);
    VornaCoreSDK::ShowOnboarding(documentOf({paywallStep()}));
    ASSERT_TRUE(eventually([&] { return host.find("exitButton") != nullptr; }));
    host.settle();
    const double middle = expected.size.width() / 2.0;

    EXPECT_EQ(ScreenHost::geometry(host.find("mediaView")).top(), 40 - insets.margins.top());
    const QRectF title = ScreenHost::geometry(host.find("titleLabel"));
    EXPECT_NEAR(title.center().y(), expected.size.height() / 2.0 + expected.titleShift, 0.51);
    const QRectF heading = ScreenHost::geometry(host.find("headingLabel"));
    EXPECT_NEAR(heading.top(), title.bottom() + 14, 0.01) << "two more than on a basic step";
    const QRectF dots = ScreenHost::geometry(host.find("stepIndicatorStackView"));
    EXPECT_NEAR(dots.top(), heading.bottom() + 4, 0.01);
    EXPECT_NEAR(dots.center().x(), middle, 0.51);

    const QRectF button = ScreenHost::geometry(host.find("actionButton"));
    EXPECT_EQ(button.bottom(), expected.buttonBottom - insets.margins.bottom()) << "from the safe area";
    EXPECT_EQ(button.size(), QSizeF(350, expected.buttonHeight));
    const QRectF arrow = ScreenHost::geometry(host.find("arrow"));
    EXPECT_EQ(arrow.right(), button.right() - 20);
    const QRectF row = ScreenHost::geometry(host.find("collectionView"));
    EXPECT_EQ(row.bottom(), button.top() + 5);
    EXPECT_EQ(row.height(), expected.rowHeight);
    const QRectF footNote = ScreenHost::geometry(host.find("footnoteLabel"));
    EXPECT_NEAR(footNote.top(), button.bottom() + 10, 0.01);
    const QRectF footer = ScreenHost::geometry(host.find("footerStackView"));
    EXPECT_NEAR(footer.top(), footNote.bottom() + 10, 0.01);
    EXPECT_NEAR(footer.center().x(), middle, 0.51);
    EXPECT_NEAR(ScreenHost::geometry(host.find("restoreButton")).left(),
                ScreenHost::geometry(host.find("termsOfUseButton")).right() + 35, 0.01);
    const QRectF glyph = ScreenHost::geometry(support::findItem(host.find("exitButton"), "glyph"));
    EXPECT_EQ(glyph.topLeft(), QPointF(10, insets.margins.top() + 10));
}

INSTANTIATE_TEST_SUITE_P(Screens, PaywallStepGeometry,
                         testing::Combine(testing::ValuesIn(sizes),
                                          testing::Values(Insets{"WithoutInsets", {}},
                                                          Insets{"WithANotch", {0, 47, 0, 34}})),
                         [](const auto& testCase) {
                             return std::string(std::get<0>(testCase.param).name) +
                                    std::get<1>(testCase.param).name;
                         });

class PaywallStep : public testing::Test {
  protected:
    void show(std::initializer_list<boost::json::object> steps) {
        VornaCoreSDK::ShowOnboarding(documentOf(steps));
        host_.settle();
    }

    void tap(std::string_view name) { host_.click(host_.find(name)); }

    QQuickItem* cell(int index) {
        for (QQuickItem* const item : support::findItems(host_.topView(), "productCell")) {
            if (item->property("index").toInt() == index) {
                return item;
            }
        }
        return nullptr;
    }

    const support::RecordedEvents platform_;
    support::OpenedLinks links_;
    ScreenHost host_{QSize(390, 844)};
};

TEST_F(PaywallStep, PassesOnTheSelectedProductAtTheEnd) {
    show({basicStep("One"), paywallStep()});
    tap("actionButton");
    host_.settle();
    tap("actionButton");
    ASSERT_THAT(host_.notificationNames(), ElementsAre("Vorna_OnboardingScreensFinished"));
    EXPECT_EQ(host_.notifications()[0].userInfo, (UserInfo{{"identifier", std::string("p1")}}));
    EXPECT_EQ(host_.screens().size(), 2U) << "nothing is dismissed";
    host_.click(cell(2));
    host_.press(Qt::Key_Return);
    tap("actionButton");
    EXPECT_EQ(host_.notifications().back().userInfo, (UserInfo{{"identifier", std::string("p2")}}));
}

TEST_F(PaywallStep, PassesOnAnEmptyIdentifierIfNothingIsSelected) {
    show({paywallStep({{"selectedPaidProduct", "unknown"}})});
    for (int index = 0; index < 3; ++index) {
        EXPECT_FALSE(cell(index)->property("checked").toBool());
    }
    tap("actionButton");
    ASSERT_THAT(host_.notificationNames(), ElementsAre("Vorna_OnboardingScreensFinished"));
    EXPECT_EQ(host_.notifications()[0].userInfo, (UserInfo{{"identifier", std::string()}}));
}

TEST_F(PaywallStep, PassesOnNoProductIfABasicStepIsLast) {
    show({paywallStep(), basicStep("Last")});
    tap("actionButton");
    host_.settle();
    ASSERT_EQ(host_.screens().size(), 2U);
    tap("actionButton");
    ASSERT_THAT(host_.notificationNames(), ElementsAre("Vorna_OnboardingScreensFinished"));
    EXPECT_EQ(host_.notifications()[0].userInfo, (UserInfo{{"identifier", std::string()}}));
}

TEST_F(PaywallStep, ReportsEveryTapOnAProduct) {
    show({paywallStep()});
    host_.click(cell(2));
    host_.touch(cell(2));
    host_.click(cell(0));
    EXPECT_THAT(host_.notificationNames(), ElementsAre("Vorna_PaidProductClicked", "Vorna_PaidProductClicked",
                                                       "Vorna_PaidProductClicked"));
    EXPECT_EQ(host_.notifications()[0].userInfo, (UserInfo{{"identifier", std::string("p2")}}));
    EXPECT_EQ(host_.notifications()[1].userInfo, (UserInfo{{"identifier", std::string("p2")}}));
    EXPECT_EQ(host_.notifications()[2].userInfo, (UserInfo{{"identifier", std::string("p0")}}));
    EXPECT_TRUE(cell(0)->property("checked").toBool());
    EXPECT_FALSE(cell(2)->property("checked").toBool());
}

TEST_F(PaywallStep, ReportsRestoreAndCloseAndStays) {
    show({paywallStep()});
    ASSERT_TRUE(eventually([&] { return host_.find("exitButton") != nullptr; }));
    tap("restoreButton");
    tap("exitButton");
    EXPECT_THAT(host_.notificationNames(),
                ElementsAre("Vorna_RestorePurchaseClicked", "Vorna_OnboardingScreenClosed"));
    for (const Notification& notification : host_.notifications()) {
        EXPECT_EQ(notification.userInfo, (UserInfo{{"success", true}}));
    }
    EXPECT_EQ(host_.screens().size(), 1U);
}

TEST_F(PaywallStep, OpensItsLinks) {
    show({paywallStep()});
    tap("termsOfUseButton");
    tap("privacyPolicyButton");
    EXPECT_THAT(links_.take(), ElementsAre("https://terms.test/a", "https://privacy.test/b"));
    EXPECT_THAT(host_.notifications(), IsEmpty());
}

TEST_F(PaywallStep, IgnoresLinksThatAreNotAddresses) {
    show({paywallStep({{"termsOfUse", "not an address"}, {"privacyPolicy", "https://[half"}})});
    tap("termsOfUseButton");
    tap("privacyPolicyButton");
    EXPECT_THAT(links_.take(), IsEmpty());
}

TEST_F(PaywallStep, HasACloseButtonAndAnArrowOnlyAsTheLastStep) {
    show({paywallStep(), paywallStep()});
    support::letTimePass(milliseconds(100));
    EXPECT_EQ(host_.find("exitButton"), nullptr);
    EXPECT_FALSE(host_.find("arrow")->isVisible());
    tap("actionButton");
    host_.settle();
    EXPECT_TRUE(eventually([&] { return host_.find("exitButton") != nullptr; }));
    EXPECT_TRUE(host_.find("arrow")->isVisible());
}

TEST_F(PaywallStep, ShowsTheDocumentsTextsAndColours) {
    show({paywallStep({{"heading", "Heading"}, {"exitButtonColor", "#123456"}})});
    ASSERT_TRUE(eventually([&] { return host_.find("exitButton") != nullptr; }));

    struct Shown {
        const char* name;
        const char* text;
        const char* colorProperty;
        QColor color;
        int fontSize;
        bool isBold;
    };

    for (const Shown& shown :
         {Shown{"titleLabel", "Title", "color", QColor(0xff, 0xee, 0xdd), 30, true},
          Shown{"headingLabel", "Heading", "color", QColor(0xff, 0xee, 0xdd), 16, true},
          Shown{"actionButton", "Continue", "titleColor", QColor(0xff, 0xff, 0xff), 18, true},
          Shown{"footnoteLabel", "Foot note", "color", QColor(0xcc, 0xcc, 0xcc), 12, false},
          Shown{"termsOfUseButton", "Terms of Use", "titleColor", QColor(0, 0xff, 0), 12, false},
          Shown{"restoreButton", "Restore Purchase", "titleColor", QColor(0xff, 0xff, 0), 12, false},
          Shown{"privacyPolicyButton", "Privacy Policy", "titleColor", QColor(0, 0xff, 0xff), 12, false},
          Shown{"exitButton", "✕", "glyphColor", QColor(0x12, 0x34, 0x56), 24, true}}) {
        SCOPED_TRACE(shown.name);
        const QQuickItem* const item = host_.find(shown.name);
        ASSERT_NE(item, nullptr);
        EXPECT_EQ(item->property("text").toString().toStdString(), shown.text);
        EXPECT_EQ(item->property(shown.colorProperty).value<QColor>(), shown.color);
        EXPECT_EQ(item->property("font").value<QFont>().pixelSize(), shown.fontSize);
        EXPECT_EQ(item->property("font").value<QFont>().bold(), shown.isBold);
    }
    EXPECT_EQ(host_.topView()->property("color").value<QColor>(), QColor(0x1b, 0x1b, 0x3a));
    EXPECT_EQ(host_.find("gradient")->property("firstColor").value<QColor>(), QColor(0xff, 0, 0));
    EXPECT_EQ(host_.find("gradient")->property("secondColor").value<QColor>(), QColor(0, 0, 0xff));
    EXPECT_EQ(host_.find("arrow")->property("color").value<QColor>(), QColor(Qt::white));
}

TEST_F(PaywallStep, ShowsTitleAndHeadingInOneColourAndNoDetails) {
    show({paywallStep()});
    const QColor headingColor(0xff, 0xee, 0xdd);
    EXPECT_EQ(host_.find("titleLabel")->property("color").value<QColor>(), headingColor);
    EXPECT_EQ(host_.find("headingLabel")->property("color").value<QColor>(), headingColor);
    EXPECT_EQ(host_.find("detailLabel"), nullptr);
}

}  // namespace
}  // namespace vorna
