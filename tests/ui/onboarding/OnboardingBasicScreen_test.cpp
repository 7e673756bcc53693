// SPDX-License-Identifier: Apache-2.0
#include <vorna/core/VornaCoreSDK.h>

#include <tests/support/RecordedEvents.h>
#include <tests/support/ui/OnboardingDocument.h>
#include <tests/support/ui/ScreenHost.h>

#include <vorna/ui/attach.h>

#include <QtGui/QAccessible>
#include <QtGui/QGuiApplication>
#include <QtTest/QTest>

#include <gmock/gmock.h>

#include <array>
#include <cmath>
#include <ostream>
#include <string>
#include <vector>

namespace vorna {
namespace {

using std::chrono::milliseconds;
using support::basicStep;
using support::documentOf;
using support::eventually;
using support::ScreenHost;
using testing::ElementsAre;
using testing::IsEmpty;

double property(const QQuickItem* item, const char* name) {
    return item->property(name).toDouble();
}

/// The expected layout for a screen size, written by hand.
struct Expected {
    const char* name;
    QSize size;
    double titleShift;
    double buttonBottom;
    double buttonHeight;
};

void PrintTo(const Expected& expected, std::ostream* stream) {
    *stream << expected.name;
}

constexpr std::array sizes{
    Expected{"W320H568", {320, 568}, -40, 508, 50}, Expected{"W375H667", {375, 667}, -40, 607, 50},
    Expected{"W375H668", {375, 668}, -40, 628, 50}, Expected{"W375H699", {375, 699}, -40, 659, 50},
    Expected{"W375H700", {375, 700}, 0, 660, 50},   Expected{"W414H736", {414, 736}, 0, 696, 50},
    Expected{"W414H737", {414, 737}, 0, 697, 70},   Expected{"W390H844", {390, 844}, 0, 804, 70},
    Expected{"W414H896", {414, 896}, 0, 856, 70},   Expected{"W820H1180", {820, 1180}, 0, 1140, 70},
};

struct Insets {
    const char* name;
    QMarginsF margins;
};

void PrintTo(const Insets& insets, std::ostream* stream) {
    *stream << insets.name;
}

class BasicScreenGeometry : public testing::TestWithParam<std::tuple<Expected, Insets>> {};

TEST_P(BasicScreenGeometry, MatchesTheDesign) {
    const auto& [expected, insets] = GetParam();
    const support::RecordedEvents platform;
    ScreenHost host(expected.size);
    host.window().setSafeAreaInsets(insets.margins);
    VornaCoreSDK::ShowOnboarding(documentOf({basicStep("Title")}));
    host.settle();
    ASSERT_TRUE(eventually([&] { return host.find("exitButton") != nullptr; }));

    const double middle = expected.size.width() / 2.0;
    const QRectF title = ScreenHost::geometry(host.find("titleLabel"));
    EXPECT_NEAR(title.center().x(), middle, 0.51);
    EXPECT_NEAR(title.center().y(), expected.size.height() / 2.0 + expected.titleShift, 0.51);

    const QRectF heading = ScreenHost::geometry(host.find("headingLabel"));
    EXPECT_NEAR(heading.top(), title.bottom() + 12, 0.01);
    EXPECT_NEAR(heading.center().x(), middle, 0.51);

    const QRectF dots = ScreenHost::geometry(host.find("stepIndicatorStackView"));
    EXPECT_NEAR(dots.top(), heading.bottom() + 4, 0.01);
    EXPECT_NEAR(dots.center().x(), middle, 0.51);
    EXPECT_EQ(dots.size(), QSizeF(5, 5));

    const QRectF button = ScreenHost::geometry(host.find("actionButton"));
    EXPECT_EQ(button.bottom(), expected.buttonBottom) << "from the view's bottom, regardless of the inset";
    EXPECT_EQ(button.height(), expected.buttonHeight);
    EXPECT_EQ(button.width(), 350);
    EXPECT_NEAR(button.center().x(), middle, 0.51);

    const QRectF arrow = ScreenHost::geometry(host.find("arrow"));
    EXPECT_NEAR(arrow.center().y(), button.center().y(), 0.51);
    EXPECT_EQ(arrow.left(), button.left()) << "at the leading edge";

    const QRectF media = ScreenHost::geometry(host.find("mediaView"));
    EXPECT_EQ(media.top(), 40 - insets.margins.top());
    EXPECT_EQ(media.left(), 0);
    EXPECT_EQ(media.right(), expected.size.width());
    EXPECT_TRUE(host.find("mediaView")->clip());

    const QRectF glyph = ScreenHost::geometry(support::findItem(host.find("exitButton"), "glyph"));
    EXPECT_EQ(glyph.top(), insets.margins.top() + 10);
    EXPECT_EQ(glyph.left(), 10);
    EXPECT_GE(ScreenHost::geometry(host.find("exitButton")).width(), 30) << "large enough for a finger";
    EXPECT_GE(ScreenHost::geometry(host.find("exitButton")).height(), 30);
    EXPECT_EQ(host.find("exitButton")->opacity(), 1);
}

INSTANTIATE_TEST_SUITE_P(Screens, BasicScreenGeometry,
                         testing::Combine(testing::ValuesIn(sizes),
                                          testing::Values(Insets{"WithoutInsets", {}},
                                                          Insets{"WithANotch", {0, 47, 0, 34}})),
                         [](const auto& testCase) {
                             return std::string(std::get<0>(testCase.param).name) +
                                    std::get<1>(testCase.param).name;
                         });

class BasicScreen : public testing::Test {
  protected:
    void show(const boost::json::object& step) {
        VornaCoreSDK::ShowOnboarding(documentOf({step}));
        host.settle();
    }

    /// The dots from left to right: 'O' for the opaque one, 'o' for the others.
    std::string dots() {
        QQuickItem* const row = host.find("stepIndicatorStackView");
        std::vector<QQuickItem*> found;
        for (QQuickItem* const item : row->childItems()) {
            if (item->inherits("QQuickRectangle")) {
                found.push_back(item);
            }
        }
        std::sort(found.begin(), found.end(), [](auto* a, auto* b) { return a->x() < b->x(); });
        std::string text;
        for (const QQuickItem* const dot : found) {
            EXPECT_EQ(dot->size(), QSizeF(5, 5));
            EXPECT_EQ(property(dot, "radius"), 4);
            const QColor color = dot->property("color").value<QColor>();
            EXPECT_EQ(color.rgb(), QColor(Qt::white).rgb());
            EXPECT_TRUE(color.alpha() == 255 || color.alpha() == 128) << color.alpha();
            text += color.alpha() == 255 ? 'O' : 'o';
        }
        for (std::size_t i = 1; i < found.size(); ++i) {
            EXPECT_EQ(found[i]->x() - found[i - 1]->x(), 13);
        }
        return text;
    }

    std::string dotsOf(int count, int index) {
        boost::json::array steps;
        for (int i = 0; i < count; ++i) {
            steps.push_back(basicStep(std::to_string(i)));
        }
        VornaCoreSDK::ShowOnboarding(boost::json::serialize(steps));
        host.settle();
        for (int i = 0; i < index; ++i) {
            host.click(host.find("actionButton"));
            host.settle();
        }
        std::string found = dots();
        VornaCoreSDK::CloseOnboarding();
        return found;
    }

    const support::RecordedEvents platform;
    ScreenHost host;
};

TEST_F(BasicScreen, ShowsItsTextsInTheirFontsAndColours) {
    show(basicStep("Tıkla", {{"heading", "İkinci satır 🎉"}, {"buttonTitle", "Başla"}}));
    const QQuickItem* const title = host.find("titleLabel");
    EXPECT_EQ(title->property("text").toString(), QStringLiteral("Tıkla"));
    EXPECT_EQ(title->property("color").value<QColor>(), QColor(0xff, 0xee, 0xdd))
        << "in the heading's colour";
    EXPECT_EQ(title->property("font").value<QFont>().pixelSize(), 30);
    EXPECT_TRUE(title->property("font").value<QFont>().bold());
    const QQuickItem* const heading = host.find("headingLabel");
    EXPECT_EQ(heading->property("text").toString(), QStringLiteral("İkinci satır 🎉"));
    EXPECT_EQ(heading->property("color").value<QColor>(), QColor(0xff, 0xee, 0xdd));
    EXPECT_EQ(heading->property("font").value<QFont>().pixelSize(), 16);
    EXPECT_TRUE(heading->property("font").value<QFont>().bold());
    const QQuickItem* const button = host.find("actionButton");
    EXPECT_EQ(button->property("text").toString(), QStringLiteral("Başla"));
    EXPECT_EQ(button->property("font").value<QFont>().pixelSize(), 18);
    EXPECT_TRUE(button->property("font").value<QFont>().bold());
    EXPECT_EQ(host.picture().pixelColor(3, 300), QColor(0x1b, 0x1b, 0x3a));
}

TEST_F(BasicScreen, DrawsItsButtonsInTheDocumentsColours) {
    const auto color = [&](const char* name, const char* which) {
        return host.find(name)->property(which).value<QColor>();
    };
    show(basicStep("One", {{"buttonTitleColor", "#102030"}, {"exitButtonColor", "#405060"}}));
    ASSERT_TRUE(eventually([&] { return host.find("exitButton") != nullptr; }));
    EXPECT_EQ(color("actionButton", "titleColor"), QColor(0x10, 0x20, 0x30));
    EXPECT_EQ(color("arrow", "color"), QColor(Qt::white)) << "regardless of the title's colour";
    EXPECT_EQ(color("gradient", "firstColor"), QColor(0xff, 0, 0));
    EXPECT_EQ(color("gradient", "secondColor"), QColor(0, 0, 0xff));
    EXPECT_EQ(host.find("exitButton")->property("text").toString(), QStringLiteral("✕"));
    EXPECT_EQ(color("exitButton", "glyphColor"), QColor(0x40, 0x50, 0x60));
    show(basicStep("Two"));
    ASSERT_TRUE(eventually([&] { return host.find("exitButton") != nullptr; }));
    EXPECT_EQ(color("exitButton", "glyphColor"), QColor(Qt::white)) << "the default";
}

TEST_F(BasicScreen, ShowsMarkupLiterally) {
    show(basicStep("<b>a</b> &amp; \\n", {{"heading", "<img src='file:///etc/passwd'>"}}));
    for (const char* const name : {"titleLabel", "headingLabel"}) {
        EXPECT_EQ(property(host.find(name), "textFormat"), 0) << "plain";
    }
}

TEST_F(BasicScreen, DrawsUnreadableColoursBlack) {
    show(basicStep("One", {{"backgroundColor", "red"}, {"actionButtonColor1", "#12"}}));
    EXPECT_EQ(host.picture().pixelColor(3, 300), QColor(Qt::black));
    EXPECT_EQ(host.find("gradient")->property("firstColor").value<QColor>(), QColor(Qt::black));
}

TEST_F(BasicScreen, WrapsLongTextsWithinTheView) {
    std::string words;
    for (int i = 0; i < 25; ++i) {
        words += "Kelime" + std::to_string(i) + " ";
    }
    const std::string heading = words + std::string(200, 'w');
    show(basicStep(words, {{"heading", heading.c_str()}, {"buttonTitle", words.c_str()}}));
    for (const char* const name : {"titleLabel", "headingLabel"}) {
        const QRectF geometry = ScreenHost::geometry(host.find(name));
        EXPECT_GE(geometry.left(), 0) << name;
        EXPECT_LE(geometry.right(), 375) << name;
        EXPECT_NEAR(geometry.center().x(), 187.5, 0.51) << name;
        EXPECT_GT(property(host.find(name), "lineCount"), 3) << name;
        EXPECT_LE(property(host.find(name), "paintedWidth"), geometry.width() + 0.5) << name;
    }
    EXPECT_EQ(ScreenHost::geometry(host.find("headingLabel")).top(),
              ScreenHost::geometry(host.find("titleLabel")).bottom() + 12);
    EXPECT_EQ(ScreenHost::geometry(host.find("actionButton")).size(), QSizeF(350, 50));
}

TEST_F(BasicScreen, KeepsLineBreaks) {
    show(basicStep("One\nTwo\nThree"));
    EXPECT_EQ(property(host.find("titleLabel"), "lineCount"), 3);
}

TEST_F(BasicScreen, ShowsADotForEachStep) {
    EXPECT_EQ(dotsOf(1, 0), "O");
    EXPECT_EQ(dotsOf(4, 0), "Oooo");
    EXPECT_EQ(dotsOf(4, 1), "oOoo");
    EXPECT_EQ(dotsOf(4, 3), "oooO");
    EXPECT_EQ(dotsOf(28, 2), "ooO" + std::string(25, 'o')) << "as many as fit on the screen";
}

TEST_F(BasicScreen, CentresDotsThatDoNotAllFit) {
    boost::json::array steps;
    for (int i = 0; i < 40; ++i) {
        steps.push_back(basicStep(std::to_string(i)));
    }
    VornaCoreSDK::ShowOnboarding(boost::json::serialize(steps));
    host.settle();
    QQuickItem* const row = host.find("stepIndicatorStackView");
    EXPECT_EQ(row->width(), 40 * 13 - 8);
    EXPECT_NEAR(ScreenHost::geometry(row).center().x(), 187.5, 0.51);
    // Every dot within the view exists.
    const double left = ScreenHost::geometry(row).left();
    for (int k = 0; k < 40; ++k) {
        const double x = left + 13 * k;
        if (x + 5 > 0 && x < 375) {
            bool found = false;
            for (const QQuickItem* const dot : row->childItems()) {
                found = found || (dot->inherits("QQuickRectangle") &&
                                  std::abs(ScreenHost::geometry(dot).left() - x) < 0.01);
            }
            EXPECT_TRUE(found) << k;
        }
    }
}

TEST_F(BasicScreen, FollowsTheWindowsSize) {
    show(basicStep("One"));
    host.quickWindow().resize(414, 896);
    EXPECT_TRUE(eventually([&] { return host.topView()->size() == QSizeF(414, 896); }));
    EXPECT_EQ(ScreenHost::geometry(host.find("actionButton")), QRectF(32, 786, 350, 70));
    EXPECT_NEAR(ScreenHost::geometry(host.find("titleLabel")).center().y(), 448, 0.51);
}

TEST_F(BasicScreen, PlacesItsMediaByTheFirstWindowsSafeArea) {
    host.window().setSafeAreaInsets({0, 20, 0, 0});
    ScreenHost second({390, 844});
    second.window().setSafeAreaInsets({0, 47, 0, 34});
    VornaCoreSDK::ShowOnboarding(documentOf({basicStep("One")}));
    second.settle();
    ASSERT_TRUE(eventually([&] { return second.find("exitButton") != nullptr; }));
    EXPECT_EQ(ScreenHost::geometry(second.find("mediaView")).top(), 40 - 20);
    EXPECT_EQ(ScreenHost::geometry(support::findItem(second.find("exitButton"), "glyph")).top(), 47 + 10);
}

TEST_F(BasicScreen, DrawsTheButtonsGradientDiagonally) {
    show(basicStep(
        "One", {{"buttonTitle", "."}, {"actionButtonColor1", "#ff2000"}, {"actionButtonColor2", "#0040ff"}}));
    const QRectF button = ScreenHost::geometry(host.find("actionButton"));
    const QImage picture = host.picture();
    for (const QPointF share :
         {QPointF(0.1, 0.25), QPointF(0.1, 0.8), QPointF(0.25, 0.1), QPointF(0.25, 0.9), QPointF(0.4, 0.5),
          QPointF(0.6, 0.2), QPointF(0.75, 0.75), QPointF(0.9, 0.2), QPointF(0.9, 0.9)}) {
        const QPoint pixel((button.topLeft() + QPointF(share.x() * 350, share.y() * 50)).toPoint());
        const double x = pixel.x() + 0.5 - button.x();
        const double y = pixel.y() + 0.5 - button.y();
        const double t = std::min(1.0, (x / 350 + y / (2 * 50)) / 1.25);
        const QColor found = picture.pixelColor(pixel);
        EXPECT_NEAR(found.red(), 255 * (1 - t), 3) << share.x() << ' ' << share.y();
        EXPECT_NEAR(found.green(), 0x20 + (0x40 - 0x20) * t, 3) << share.x() << ' ' << share.y();
        EXPECT_NEAR(found.blue(), 255 * t, 3) << share.x() << ' ' << share.y();
    }
    // The corner radius is half the height.
    const QColor background(0x1b, 0x1b, 0x3a);
    const QPoint corner = button.topLeft().toPoint();
    EXPECT_EQ(picture.pixelColor(corner + QPoint(1, 1)), background);
    EXPECT_EQ(picture.pixelColor(corner + QPoint(6, 6)), background);
    EXPECT_NE(picture.pixelColor(corner + QPoint(9, 9)), background);
    EXPECT_EQ(picture.pixelColor(corner + QPoint(348, 48)), background);
}

TEST_F(BasicScreen, IsMirroredForRightToLeftText) {
    QGuiApplication::setLayoutDirection(Qt::RightToLeft);
    show(basicStep("عنوان"));
    ASSERT_TRUE(eventually([&] { return host.find("exitButton") != nullptr; }));
    const QRectF glyph = ScreenHost::geometry(support::findItem(host.find("exitButton"), "glyph"));
    EXPECT_EQ(glyph.right(), 375 - 10);
    EXPECT_EQ(glyph.top(), 10);
    EXPECT_NEAR(ScreenHost::geometry(host.find("actionButton")).center().x(), 187.5, 0.51);
    EXPECT_NEAR(ScreenHost::geometry(host.find("titleLabel")).center().x(), 187.5, 0.51);
    host.click(host.find("exitButton"));
    EXPECT_THAT(host.notificationNames(), ElementsAre(VornaCoreSDK::OnboardingScreenClosed));
    EXPECT_EQ(dotsOf(4, 1), "ooOo") << "the first one is on the right";
    QGuiApplication::setLayoutDirection(Qt::LeftToRight);
}

class ByKeyboard : public BasicScreen {
  protected:
    ByKeyboard() {
        show(basicStep("One"));
        EXPECT_TRUE(eventually([&] { return host.find("exitButton") != nullptr; }));
    }
};

TEST_F(ByKeyboard, TabReachesOnlyTheTwoButtons) {
    EXPECT_TRUE(host.find("actionButton")->hasActiveFocus()) << "initially";
    for (int i = 0; i < 3; ++i) {
        host.press(Qt::Key_Tab);
        EXPECT_TRUE(host.find("exitButton")->hasActiveFocus()) << i;
        host.press(Qt::Key_Tab);
        EXPECT_TRUE(host.find("actionButton")->hasActiveFocus()) << i;
    }
    host.press(Qt::Key_Backtab);
    EXPECT_TRUE(host.find("exitButton")->hasActiveFocus());
    EXPECT_TRUE(host.find("exitButton")->property("visualFocus").toBool()) << "visibly";
}

TEST_F(ByKeyboard, SpaceReturnAndEnterTap) {
    for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
        host.press(key);
        EXPECT_EQ(host.notificationNames().back(), VornaCoreSDK::OnboardingScreensFinished);
        host.press(Qt::Key_Tab);
        host.press(key);
        EXPECT_EQ(host.notificationNames().back(), VornaCoreSDK::OnboardingScreenClosed);
        host.press(Qt::Key_Tab);
    }
    EXPECT_EQ(host.notifications().size(), 6U);
}

QAccessibleInterface* assistive(QQuickItem* item) {
    return QAccessible::queryAccessibleInterface(item);
}

TEST_F(ByKeyboard, AssistiveTechnologySeesRolesAndNames) {
    QAccessible::setActive(true);

    struct Named {
        const char* item;
        QAccessible::Role role;
        const char* name;
    };

    for (const Named& named : {Named{"titleLabel", QAccessible::StaticText, "One"},
                               Named{"headingLabel", QAccessible::StaticText, "Heading of One"},
                               Named{"actionButton", QAccessible::Button, "Continue"},
                               Named{"exitButton", QAccessible::Button, "Close"},
                               Named{"stepIndicatorStackView", QAccessible::Indicator, "Step 1 of 1"}}) {
        QAccessibleInterface* const found = assistive(host.find(named.item));
        ASSERT_NE(found, nullptr) << named.item;
        EXPECT_EQ(found->role(), named.role) << named.item;
        EXPECT_EQ(found->text(QAccessible::Name).toStdString(), named.name) << named.item;
        EXPECT_FALSE(found->rect().isEmpty()) << named.item;
    }
}

TEST_F(ByKeyboard, AssistiveTechnologyCanTapBothButtons) {
    QAccessible::setActive(true);
    for (const char* const name : {"actionButton", "exitButton"}) {
        QAccessibleInterface* const button = assistive(host.find(name));
        ASSERT_NE(button, nullptr);
        ASSERT_NE(button->actionInterface(), nullptr);
        EXPECT_TRUE(
            button->actionInterface()->actionNames().contains(QAccessibleActionInterface::pressAction()));
        button->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    }
    EXPECT_THAT(host.notificationNames(),
                ElementsAre(VornaCoreSDK::OnboardingScreensFinished, VornaCoreSDK::OnboardingScreenClosed));
}

TEST_F(ByKeyboard, AssistiveTechnologySeesOnlyTheTopmostScreen) {
    QAccessible::setActive(true);
    QQuickItem* const before = host.find("actionButton");
    show(basicStep("Two"));
    ASSERT_NE(host.find("actionButton"), before);
    EXPECT_TRUE(assistive(before)->state().invisible);
    EXPECT_FALSE(assistive(host.find("actionButton"))->state().invisible);
}

}  // namespace
}  // namespace vorna
