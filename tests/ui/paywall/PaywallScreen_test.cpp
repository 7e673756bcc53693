// SPDX-License-Identifier: Apache-2.0
#include <vorna/core/VornaCoreSDK.h>

#include <tests/support/RecordedEvents.h>
#include <tests/support/ui/HeldKey.h>
#include <tests/support/ui/OpenedLinks.h>
#include <tests/support/ui/PaidDocument.h>
#include <tests/support/ui/ScreenHost.h>

#include <QtCore/QBuffer>
#include <QtGui/QAccessible>
#include <QtGui/QGuiApplication>
#include <QtTest/QTest>

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <limits>
#include <memory>
#include <ostream>
#include <string>
#include <tuple>
#include <vector>

namespace vorna {
namespace {

using std::chrono::milliseconds;
using support::DocumentFields;
using support::eventually;
using support::letTimePass;
using support::ScreenHost;
using testing::ElementsAre;
using testing::IsEmpty;

/// The expected layout for a screen size without insets, written by hand.
struct Expected {
    const char* name;
    QSize size;
    /// From the view's centre to the heading's.
    double headingShift;
    double detailsGap;
    double detailsSpacing;
    double buttonBottom;
    double buttonHeight;
    double rowHeight;
    double footerGap;
};

void PrintTo(const Expected& expected, std::ostream* stream) {
    *stream << expected.name;
}

constexpr std::array sizes{
    Expected{"W320H568", {320, 568}, -68.16, 15, 8, 508, 50, 160, 10},
    Expected{"W375H667", {375, 667}, -80.04, 15, 8, 607, 50, 160, 10},
    Expected{"W375H668", {375, 668}, -66.8, 30, 12, 628, 50, 190, 50},
    Expected{"W414H736", {414, 736}, -73.6, 30, 12, 696, 50, 190, 50},
    Expected{"W414H737", {414, 737}, -73.7, 30, 12, 697, 70, 190, 5},
    Expected{"W390H844", {390, 844}, -84.4, 30, 12, 804, 70, 190, 5},
    Expected{"W414H896", {414, 896}, -89.6, 30, 12, 856, 70, 190, 5},
    Expected{"W820H1180", {820, 1180}, -118, 30, 12, 1140, 70, 190, 5},
};

struct Insets {
    const char* name;
    QMarginsF margins;
};

void PrintTo(const Insets& insets, std::ostream* stream) {
    *stream << insets.name;
}

class PaywallGeometry : public testing::TestWithParam<std::tuple<Expected, Insets>> {};

TEST_P(PaywallGeometry, MatchesTheDesign) {
    const auto& [expected, insets] = GetParam();
    const support::RecordedEvents platform;
    ScreenHost host(expected.size);
    host.window().setSafeAreaInsets(insets.margins);
    VornaCoreSDK::ShowPaywall(support::paywallText());
    ASSERT_TRUE(eventually([&] { return host.find("exitButton") != nullptr; }));
    host.settle();
    const double middle = expected.size.width() / 2.0;
    EXPECT_EQ(ScreenHost::geometry(host.topView()), QRectF(QPointF(0, 0), expected.size));

    const QRectF media = ScreenHost::geometry(host.find("mediaView"));
    EXPECT_EQ(media.top(), 40 - insets.margins.top());
    EXPECT_EQ(media.left(), 0);
    EXPECT_EQ(media.width(), expected.size.width());
    EXPECT_TRUE(host.find("mediaView")->clip());

    const QRectF heading = ScreenHost::geometry(host.find("headingLabel"));
    EXPECT_NEAR(heading.center().x(), middle, 0.51);
    EXPECT_NEAR(heading.center().y(), expected.size.height() / 2.0 + expected.headingShift, 0.51);

    const std::vector<QQuickItem*> lines = support::findItems(host.topView(), "detailLabel");
    ASSERT_EQ(lines.size(), 2U);
    const QRectF first = ScreenHost::geometry(lines[0]);
    const QRectF second = ScreenHost::geometry(lines[1]);
    EXPECT_NEAR(first.top(), heading.bottom() + expected.detailsGap, 0.01);
    EXPECT_NEAR(second.top(), first.bottom() + expected.detailsSpacing, 0.01);
    EXPECT_NEAR(first.center().x(), middle, 0.51);
    EXPECT_NEAR(second.center().x(), middle, 0.51);

    const double bottom = expected.buttonBottom - insets.margins.bottom();
    const QRectF button = ScreenHost::geometry(host.find("actionButton"));
    EXPECT_EQ(button.bottom(), bottom) << "from the safe area's bottom";
    EXPECT_EQ(button.size(), QSizeF(350, expected.buttonHeight));
    EXPECT_NEAR(button.center().x(), middle, 0.51);
    const QRectF arrow = ScreenHost::geometry(host.find("arrow"));
    EXPECT_TRUE(host.find("arrow")->isVisible());
    EXPECT_EQ(arrow.right(), button.right() - 20);
    EXPECT_NEAR(arrow.center().y(), button.center().y(), 0.51);

    const QRectF row = ScreenHost::geometry(host.find("collectionView"));
    EXPECT_EQ(row.bottom(), button.top() + 5);
    EXPECT_EQ(row.height(), expected.rowHeight);

    const QRectF footNote = ScreenHost::geometry(host.find("footnoteLabel"));
    EXPECT_NEAR(footNote.top(), button.bottom() + 10, 0.01);
    EXPECT_NEAR(footNote.center().x(), middle, 0.51);

    const QRectF footer = ScreenHost::geometry(host.find("footerStackView"));
    EXPECT_NEAR(footer.top(), footNote.bottom() + expected.footerGap, 0.01);
    EXPECT_NEAR(footer.center().x(), middle, 0.51);
    const QRectF terms = ScreenHost::geometry(host.find("termsOfUseButton"));
    const QRectF restore = ScreenHost::geometry(host.find("restoreButton"));
    const QRectF policy = ScreenHost::geometry(host.find("privacyPolicyButton"));
    EXPECT_EQ(terms.left(), footer.left());
    EXPECT_NEAR(restore.left(), terms.right() + 35, 0.01);
    EXPECT_NEAR(policy.left(), restore.right() + 35, 0.01);

    const QRectF glyph = ScreenHost::geometry(support::findItem(host.find("exitButton"), "glyph"));
    EXPECT_EQ(glyph.top(), insets.margins.top() + 10);
    EXPECT_EQ(glyph.left(), 10) << "the view's edge, regardless of the inset";
    EXPECT_GE(ScreenHost::geometry(host.find("exitButton")).width(), 30) << "large enough for a finger";
}

INSTANTIATE_TEST_SUITE_P(Screens, PaywallGeometry,
                         testing::Combine(testing::ValuesIn(sizes),
                                          testing::Values(Insets{"WithoutInsets", {}},
                                                          Insets{"WithANotch", {0, 47, 0, 34}})),
                         [](const auto& testCase) {
                             return std::string(std::get<0>(testCase.param).name) +
                                    std::get<1>(testCase.param).name;
                         });

class PaywallScreen : public testing::Test {
  protected:
    void show(DocumentFields fields = {}) {
        VornaCoreSDK::ShowPaywall(support::paywallText(fields));
        ASSERT_TRUE(eventually([&] { return host_.screens().size() == 1; }));
        host_.settle();
    }

    std::string text(std::string_view name) {
        return host_.find(name)->property("text").toString().toStdString();
    }

    QColor color(std::string_view name, const char* property = "color") {
        return host_.find(name)->property(property).value<QColor>();
    }

    double fontSize(std::string_view name) {
        return host_.find(name)->property("font").value<QFont>().pixelSize();
    }

    bool isBold(std::string_view name) { return host_.find(name)->property("font").value<QFont>().bold(); }

    const support::RecordedEvents platform_;
    support::OpenedLinks links_;
    ScreenHost host_{QSize(390, 844)};
};

TEST_F(PaywallScreen, ShowsTheDocumentsTextsAndColours) {
    show();
    ASSERT_TRUE(eventually([&] { return host_.find("exitButton") != nullptr; }));
    EXPECT_EQ(color("mediaView").isValid(), false) << "the media area has no colour of its own";
    EXPECT_EQ(host_.topView()->property("color").value<QColor>(), QColor(0x1b, 0x1b, 0x3a));
    EXPECT_EQ(text("headingLabel"), "Heading");
    EXPECT_EQ(color("headingLabel"), QColor(0xff, 0xee, 0xdd));
    EXPECT_EQ(fontSize("headingLabel"), 30);
    EXPECT_TRUE(isBold("headingLabel"));
    EXPECT_EQ(color("detailLabel"), QColor(0xdd, 0xee, 0xff));
    EXPECT_EQ(fontSize("detailLabel"), 16);
    EXPECT_EQ(text("actionButton"), "Continue");
    EXPECT_EQ(color("actionButton", "titleColor"), QColor(0xff, 0xff, 0xff));
    EXPECT_EQ(fontSize("actionButton"), 18);
    EXPECT_TRUE(isBold("actionButton"));
    EXPECT_EQ(color("gradient", "firstColor"), QColor(0xff, 0, 0));
    EXPECT_EQ(color("gradient", "secondColor"), QColor(0, 0, 0xff));
    EXPECT_EQ(color("arrow"), QColor(Qt::white));
    EXPECT_EQ(text("footnoteLabel"), "Foot note");
    EXPECT_EQ(color("footnoteLabel"), QColor(0xcc, 0xcc, 0xcc));
    EXPECT_EQ(fontSize("footnoteLabel"), 12);
    EXPECT_EQ(text("termsOfUseButton"), "Terms of Use");
    EXPECT_EQ(color("termsOfUseButton", "titleColor"), QColor(0, 0xff, 0));
    EXPECT_EQ(text("restoreButton"), "Restore Purchase");
    EXPECT_EQ(color("restoreButton", "titleColor"), QColor(0xff, 0xff, 0));
    EXPECT_EQ(text("privacyPolicyButton"), "Privacy Policy");
    EXPECT_EQ(color("privacyPolicyButton", "titleColor"), QColor(0, 0xff, 0xff));
    EXPECT_EQ(fontSize("privacyPolicyButton"), 12);
    EXPECT_EQ(text("exitButton"), "✕");
    EXPECT_EQ(color("exitButton", "glyphColor"), QColor(0xff, 0xff, 0xff));
    EXPECT_EQ(fontSize("exitButton"), 24);
    EXPECT_TRUE(isBold("exitButton"));
}

TEST_F(PaywallScreen, ShowsUnreadableColoursAsBlack) {
    show({{"backgroundColor", "nonsense"}, {"headingColor", "#12"}, {"actionButtonColor1", "?"}});
    EXPECT_EQ(host_.topView()->property("color").value<QColor>(), QColor(Qt::black));
    EXPECT_EQ(color("headingLabel"), QColor(Qt::black));
    EXPECT_EQ(color("gradient", "firstColor"), QColor(Qt::black));
}

struct Line {
    const char* name;
    std::string given;
    std::string shown;
};

void PrintTo(const Line& line, std::ostream* stream) {
    *stream << line.name;
}

std::string repeated(const std::string& text, int times) {
    std::string result;
    for (int time = 0; time < times; ++time) {
        result += text;
    }
    return result;
}

class DetailLine : public PaywallScreen, public testing::WithParamInterface<Line> {};

TEST_P(DetailLine, IsShortenedToThirtySevenCharacters) {
    show({{"details", {GetParam().given}}});
    EXPECT_EQ(text("detailLabel"), GetParam().shown);
}

const std::string family = "👨‍👩‍👧‍👦";
const std::string accented = "e\u0301";

INSTANTIATE_TEST_SUITE_P(
    Lines, DetailLine,
    testing::Values(Line{"Empty", "", ""}, Line{"One", "a", "a"},
                    Line{"ThirtySeven", repeated("a", 37), repeated("a", 37)},
                    Line{"ThirtyEight", repeated("a", 38), repeated("a", 37) + "..."},
                    Line{"Hundred", repeated("a", 100), repeated("a", 37) + "..."},
                    Line{"ThirtySevenFamilies", repeated(family, 37), repeated(family, 37)},
                    Line{"ThirtyEightFamilies", repeated(family, 38), repeated(family, 37) + "..."},
                    Line{"ThirtySevenAccented", repeated(accented, 37), repeated(accented, 37)},
                    Line{"ThirtyEightAccented", repeated(accented, 38), repeated(accented, 37) + "..."},
                    Line{"ThirtyEightWithSpaces", repeated(" ", 37) + "x", repeated(" ", 37) + "..."},
                    Line{"ThirtySevenTurkish", repeated("ğ", 37), repeated("ğ", 37)},
                    Line{"Markup", "<b>bold</b> &amp;", "<b>bold</b> &amp;"}),
    [](const auto& testCase) { return testCase.param.name; });

TEST_F(PaywallScreen, ReportsTheSelectedProductWhenThePurchaseButtonIsTapped) {
    show();
    host_.click(host_.find("actionButton"));
    host_.touch(host_.find("actionButton"));
    host_.press(Qt::Key_Return);
    host_.press(Qt::Key_Space);
    ASSERT_EQ(host_.notifications().size(), 4U);
    for (const Notification& notification : host_.notifications()) {
        EXPECT_EQ(notification.name, "Vorna_PaywallScreenFinished");
        EXPECT_EQ(notification.userInfo, (UserInfo{{"identifier", std::string("p1")}}));
    }
    host_.click(support::findItems(host_.topView(), "productCell").front());
    host_.click(host_.find("actionButton"));
    EXPECT_EQ(host_.notifications().back().userInfo, (UserInfo{{"identifier", std::string("p0")}}));
}

TEST_F(PaywallScreen, ReportsNoPurchaseBeforeAProductIsSelected) {
    show({{"selectedPaidProduct", "p"}});
    host_.click(host_.find("actionButton"));
    host_.press(Qt::Key_Return);
    EXPECT_THAT(host_.notifications(), IsEmpty());
    host_.click(support::findItems(host_.topView(), "productCell").front());
    host_.click(host_.find("actionButton"));
    EXPECT_THAT(host_.notificationNames(),
                ElementsAre("Vorna_PaidProductClicked", "Vorna_PaywallScreenFinished"));
}

TEST_F(PaywallScreen, ReportsRestoreAndCloseAndStays) {
    show();
    ASSERT_TRUE(eventually([&] { return host_.find("exitButton") != nullptr; }));
    host_.click(host_.find("restoreButton"));
    host_.click(host_.find("exitButton"));
    host_.touch(host_.find("restoreButton"));
    host_.touch(host_.find("exitButton"));
    EXPECT_THAT(host_.notificationNames(),
                ElementsAre("Vorna_RestorePurchaseClicked", "Vorna_PaywallScreenClosed",
                            "Vorna_RestorePurchaseClicked", "Vorna_PaywallScreenClosed"));
    for (const Notification& notification : host_.notifications()) {
        EXPECT_EQ(notification.userInfo, (UserInfo{{"success", true}}));
    }
    letTimePass(milliseconds(50));
    EXPECT_EQ(host_.screens().size(), 1U);
    EXPECT_FALSE(host_.window().isMoving());
}

TEST_F(PaywallScreen, IgnoresAPressThatIsReleasedOutsideTheButton) {
    show();
    const QPoint onButton = ScreenHost::geometry(host_.find("actionButton")).center().toPoint();
    QTest::mousePress(&host_.quickWindow(), Qt::LeftButton, {}, onButton);
    QTest::mouseMove(&host_.quickWindow(), QPoint(195, 300));
    QTest::mouseRelease(&host_.quickWindow(), Qt::LeftButton, {}, QPoint(195, 300));
    EXPECT_THAT(host_.notifications(), IsEmpty());
}

TEST_F(PaywallScreen, IsUsableByKeyboard) {
    show();
    ASSERT_TRUE(eventually([&] { return host_.find("exitButton") != nullptr; }));
    EXPECT_TRUE(host_.find("actionButton")->hasActiveFocus()) << "Return taps it initially";
    std::vector<std::string> visited;
    for (int press = 0; press < 8; ++press) {
        host_.press(Qt::Key_Tab);
        const QQuickItem* const item = host_.quickWindow().activeFocusItem();
        ASSERT_NE(item, nullptr);
        EXPECT_TRUE(item->property("visualFocus").toBool());
        visited.push_back(item->objectName().toStdString());
    }
    EXPECT_THAT(visited, testing::UnorderedElementsAre("actionButton", "productCell", "productCell",
                                                       "productCell", "termsOfUseButton", "restoreButton",
                                                       "privacyPolicyButton", "exitButton"));
    for (int press = 0; press < 8; ++press) {
        const QString name = host_.quickWindow().activeFocusItem()->objectName();
        if (name == QLatin1String("restoreButton") || name == QLatin1String("exitButton")) {
            host_.press(Qt::Key_Return);
            host_.press(Qt::Key_Space);
        }
        if (name == QLatin1String("privacyPolicyButton")) {
            host_.press(Qt::Key_Return);
        }
        host_.press(Qt::Key_Tab);
    }
    EXPECT_THAT(host_.notificationNames(),
                testing::UnorderedElementsAre("Vorna_RestorePurchaseClicked", "Vorna_RestorePurchaseClicked",
                                              "Vorna_PaywallScreenClosed", "Vorna_PaywallScreenClosed"));
    EXPECT_THAT(links_.take(), ElementsAre("https://privacy.test/b"));
}

TEST_F(PaywallScreen, TreatsAHeldKeyAsOneTapOnEveryControl) {
    show();
    ASSERT_TRUE(eventually([&] { return host_.find("exitButton") != nullptr; }));
    constexpr int controls = 8;
    for (int control = 0; control < controls; ++control) {
        for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
            support::holdKey(host_.quickWindow(), key);
        }
        host_.press(Qt::Key_Tab);
    }
    const std::vector<std::string> names = host_.notificationNames();
    EXPECT_EQ(std::count(names.begin(), names.end(), "Vorna_PaywallScreenFinished"), 3);
    EXPECT_EQ(std::count(names.begin(), names.end(), "Vorna_PaidProductClicked"), 3 * 3);
    EXPECT_EQ(std::count(names.begin(), names.end(), "Vorna_RestorePurchaseClicked"), 3);
    EXPECT_EQ(std::count(names.begin(), names.end(), "Vorna_PaywallScreenClosed"), 3);
    EXPECT_EQ(links_.take().size(), 2 * 3U);
}

TEST_F(PaywallScreen, OpensTheLinkThatWasTapped) {
    show();
    host_.click(host_.find("termsOfUseButton"));
    EXPECT_THAT(links_.take(), ElementsAre("https://terms.test/a"));
    host_.touch(host_.find("privacyPolicyButton"));
    EXPECT_THAT(links_.take(), ElementsAre("https://privacy.test/b"));
    EXPECT_THAT(host_.notifications(), IsEmpty());
}

TEST_F(PaywallScreen, OpensAnAddressThatBothLinksShare) {
    show({{"termsOfUse", "https://both.test/"}, {"privacyPolicy", "https://both.test/"}});
    host_.click(host_.find("termsOfUseButton"));
    host_.click(host_.find("privacyPolicyButton"));
    EXPECT_THAT(links_.take(), ElementsAre("https://both.test/", "https://both.test/"));
}

TEST_F(PaywallScreen, IgnoresLinksThatAreNotAddresses) {
    show({{"termsOfUse", "not an address"}, {"privacyPolicy", "https://[half"}});
    host_.click(host_.find("termsOfUseButton"));
    host_.click(host_.find("privacyPolicyButton"));
    EXPECT_THAT(links_.take(), IsEmpty());
}

TEST_F(PaywallScreen, OpensThePolicyEvenIfTheTermsAreNotAnAddress) {
    show({{"termsOfUse", ":"}, {"privacyPolicy", "https://privacy.test/?a=b&c=%20d#e"}});
    host_.click(host_.find("termsOfUseButton"));
    EXPECT_THAT(links_.take(), IsEmpty());
    host_.click(host_.find("privacyPolicyButton"));
    EXPECT_THAT(links_.take(), ElementsAre("https://privacy.test/?a=b&c=%20d#e"));
}

TEST_F(PaywallScreen, ShowsItsCloseButtonImmediatelyForAZeroOrNegativeDelay) {
    for (const std::int64_t delay : {std::int64_t{0}, std::int64_t{-1}, std::int64_t{-1'000'000'000'000},
                                     std::numeric_limits<std::int64_t>::min()}) {
        SCOPED_TRACE(delay);
        VornaCoreSDK::ShowPaywall(support::paywallText({{"exitButtonDelay", delay}}));
        QCoreApplication::sendPostedEvents();
        ASSERT_EQ(host_.screens().size(), 1U);
        EXPECT_EQ(host_.find("exitButton"), nullptr) << "in the next turn, not before";
        EXPECT_TRUE(eventually([&] { return host_.find("exitButton") != nullptr; }, milliseconds(200)));
        VornaCoreSDK::ClosePaywall();
        ASSERT_TRUE(eventually([&] { return host_.screens().empty(); }));
        host_.settle();
    }
}

TEST_F(PaywallScreen, ShowsItsCloseButtonAfterTheDelay) {
    VornaCoreSDK::ShowPaywall(support::paywallText({{"exitButtonDelay", 1}}));
    ASSERT_TRUE(eventually([&] { return host_.screens().size() == 1; }));
    letTimePass(milliseconds(900));
    EXPECT_EQ(host_.find("exitButton"), nullptr);
    EXPECT_TRUE(eventually([&] { return host_.find("exitButton") != nullptr; }, milliseconds(400)));
}

TEST_F(PaywallScreen, ShowsNoCloseButtonDuringAVeryLongDelay) {
    for (const std::int64_t delay :
         {std::int64_t{4'000'000}, std::int64_t{10'000'000'000}, std::numeric_limits<std::int64_t>::max()}) {
        SCOPED_TRACE(delay);
        VornaCoreSDK::ShowPaywall(support::paywallText({{"exitButtonDelay", delay}}));
        ASSERT_TRUE(eventually([&] { return host_.screens().size() == 1; }));
        letTimePass(milliseconds(600));
        EXPECT_EQ(host_.find("exitButton"), nullptr);
        VornaCoreSDK::ClosePaywall();
        ASSERT_TRUE(eventually([&] { return host_.screens().empty(); }));
        host_.settle();
    }
}

TEST_F(PaywallScreen, GivesItsControlsRolesAndNamesForAssistiveTechnology) {
    QAccessible::setActive(true);
    show();
    ASSERT_TRUE(eventually([&] { return host_.find("exitButton") != nullptr; }));
    const auto is = [&](std::string_view name, QAccessible::Role role, const char* spoken) {
        QAccessibleInterface* const accessible = QAccessible::queryAccessibleInterface(host_.find(name));
        ASSERT_NE(accessible, nullptr) << name;
        EXPECT_EQ(accessible->role(), role) << name;
        EXPECT_EQ(accessible->text(QAccessible::Name).toStdString(), spoken);
    };
    is("headingLabel", QAccessible::StaticText, "Heading");
    is("detailLabel", QAccessible::StaticText, "First");
    is("collectionView", QAccessible::Grouping, "Products");
    is("actionButton", QAccessible::Button, "Continue");
    is("footnoteLabel", QAccessible::StaticText, "Foot note");
    // Qt 6.4 reports the role of the template.
    const QAccessible::Role link =
        QT_VERSION < QT_VERSION_CHECK(6, 5, 0) ? QAccessible::Button : QAccessible::Link;
    is("termsOfUseButton", link, "Terms of Use");
    is("restoreButton", QAccessible::Button, "Restore Purchase");
    is("privacyPolicyButton", link, "Privacy Policy");
    is("exitButton", QAccessible::Button, "Close");
    for (const std::string_view name :
         {"actionButton", "restoreButton", "exitButton", "termsOfUseButton", "privacyPolicyButton"}) {
        QAccessible::queryAccessibleInterface(host_.find(name))
            ->actionInterface()
            ->doAction(QAccessibleActionInterface::pressAction());
    }
    EXPECT_THAT(host_.notificationNames(),
                ElementsAre("Vorna_PaywallScreenFinished", "Vorna_RestorePurchaseClicked",
                            "Vorna_PaywallScreenClosed"));
    EXPECT_THAT(links_.take(), ElementsAre("https://terms.test/a", "https://privacy.test/b"));
}

TEST_F(PaywallScreen, IsMirroredForRightToLeftText) {
    QGuiApplication::setLayoutDirection(Qt::RightToLeft);
    show();
    ASSERT_TRUE(eventually([&] { return host_.find("exitButton") != nullptr; }));
    host_.settle();
    const QRectF glyph = ScreenHost::geometry(support::findItem(host_.find("exitButton"), "glyph"));
    EXPECT_EQ(glyph.right(), 380);
    EXPECT_GT(ScreenHost::geometry(host_.find("termsOfUseButton")).left(),
              ScreenHost::geometry(host_.find("privacyPolicyButton")).left());
    EXPECT_EQ(ScreenHost::geometry(host_.find("arrow")).left(),
              ScreenHost::geometry(host_.find("actionButton")).left() + 20);
    const std::vector<QQuickItem*> cells = support::findItems(host_.topView(), "productCell");
    ASSERT_EQ(cells.size(), 3U);
    for (const QQuickItem* const cell : cells) {
        const double right = ScreenHost::geometry(host_.find("collectionView")).right() -
                             cell->property("index").toInt() * (110.333 + 10);
        EXPECT_NEAR(ScreenHost::geometry(cell).right(), right, 0.01);
    }
    QGuiApplication::setLayoutDirection(Qt::LeftToRight);
}

class PaywallMedia : public testing::Test {
  protected:
    /// Waits for that many requests in total, and answers the oldest one pending.
    void answer(std::size_t count, support::HttpAnswer answer) {
        ASSERT_TRUE(eventually([&] { return http_->requestCount() == count; }));
        ASSERT_TRUE(http_->answer(std::move(answer)));
    }

    static support::HttpAnswer head(const char* type) {
        return {"", HttpResponse{"https://media.test/picture.png", 200, {{"Content-Type", type}}},
                std::nullopt};
    }

    static support::HttpAnswer picture(QSize size) {
        QImage image(size, QImage::Format_RGB32);
        image.fill(QColor(200, 100, 50));
        QByteArray bytes;
        QBuffer buffer(&bytes);
        image.save(&buffer, "PNG");
        return support::HttpAnswer::status(200, bytes.toStdString());
    }

    const support::RecordedEvents platform_;
    const std::shared_ptr<support::RecordingHttpClient> http_ = platform_.http;
    ScreenHost host_{QSize(390, 844)};
};

TEST_F(PaywallMedia, IsAPictureUnlessItsTypeContainsVideoInLowerCase) {
    VornaCoreSDK::ShowPaywall(support::paywallText());
    answer(1, head("Video/MP4"));
    EXPECT_EQ(http_->requests()[0].method, HttpMethod::head);
    EXPECT_EQ(http_->requests()[0].url.text(), "https://media.test/picture.png");
    EXPECT_EQ(http_->requests()[0].timeout, std::chrono::seconds(60));
    answer(2, picture({300, 100}));
    EXPECT_EQ(http_->requests()[1].method, HttpMethod::get);
    EXPECT_EQ(http_->requests()[1].url.text(), "https://media.test/picture.png");
    EXPECT_TRUE(eventually([&] { return ScreenHost::geometry(host_.find("mediaView")).height() == 130; }));
    host_.settle();
    EXPECT_EQ(ScreenHost::geometry(host_.find("mediaView")), QRectF(0, 40, 390, 130));
    EXPECT_EQ(host_.picture().pixelColor(195, 100), QColor(200, 100, 50));
}

TEST_F(PaywallMedia, StaysEmptyIfTheDownloadFails) {
    VornaCoreSDK::ShowPaywall(support::paywallText());
    answer(1, support::HttpAnswer::failure("no route"));
    answer(2, support::HttpAnswer::failure("no route"));
    host_.settle();
    EXPECT_EQ(host_.picture().pixelColor(195, 100), QColor(0x1b, 0x1b, 0x3a));
}

TEST_F(PaywallMedia, IsNotRequestedWithoutAValidAddress) {
    VornaCoreSDK::ShowPaywall(support::paywallText({{"media", "picture.png"}}));
    ASSERT_TRUE(eventually([&] { return host_.screens().size() == 1; }));
    host_.settle();
    EXPECT_EQ(http_->requestCount(), 0U);
}

TEST_F(PaywallMedia, IsCancelledWhenThePaywallCloses) {
    VornaCoreSDK::ShowPaywall(support::paywallText());
    ASSERT_TRUE(eventually([&] { return http_->requestCount() == 1; }));
    host_.settle();
    VornaCoreSDK::ClosePaywall();
    ASSERT_TRUE(eventually([&] { return host_.screens().empty(); }));
    host_.settle();
    EXPECT_TRUE(http_->requests()[0].stop.stop_requested());
    http_->answer(head("image/png"));
    letTimePass(milliseconds(20));
    EXPECT_EQ(http_->requestCount(), 1U);
}

}  // namespace
}  // namespace vorna
