// SPDX-License-Identifier: Apache-2.0
#include <vorna/core/VornaCoreSDK.h>

#include <tests/support/RecordedEvents.h>
#include <tests/support/ui/PaidDocument.h>
#include <tests/support/ui/ScreenHost.h>

#include <QtGui/QFont>

#include <gmock/gmock.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace vorna {
namespace {

using support::findItem;
using support::product;
using support::ScreenHost;

/// A paywall with the given products, of which "p0" is selected.
class DrawnCells : public testing::Test {
  protected:
    void show(boost::json::array products, QSize size = {390, 844}) {
        host_ = std::make_unique<ScreenHost>(size);
        VornaCoreSDK::ShowPaywall(
            support::paywallText({{"paidProducts", std::move(products)}, {"selectedPaidProduct", "p0"}}));
        ASSERT_TRUE(support::eventually([&] { return host_->screens().size() == 1; }));
        host_->settle();
    }

    QQuickItem* cell(std::size_t index = 0) {
        // Cells may be created out of order while the row is laid out.
        std::vector<QQuickItem*> cells = support::findItems(host_->topView(), "productCell");
        std::sort(cells.begin(), cells.end(), [](const QQuickItem* left, const QQuickItem* right) {
            return left->property("index").toInt() < right->property("index").toInt();
        });
        return index < cells.size() ? cells[index] : nullptr;
    }

    QQuickItem* part(std::string_view name, std::size_t index = 0) { return findItem(cell(index), name); }

    QRectF place(std::string_view name, std::size_t index = 0) {
        return ScreenHost::geometry(part(name, index));
    }

    const support::RecordedEvents platform_;
    std::unique_ptr<ScreenHost> host_;
};

TEST_F(DrawnCells, MatchTheDesign) {
    show({product("p0", {{"descriptionText", "3 days free"}, {"tagText", "Tag"}, {"badgeText", "Best"}}),
          product("p1")});
    const QRectF whole = ScreenHost::geometry(cell());
    EXPECT_EQ(whole.height(), 178);
    const QRectF card = place("containerView");
    EXPECT_EQ(card.top(), whole.top() + 15);
    EXPECT_EQ(card.bottom(), whole.bottom() - 15);
    EXPECT_EQ(card.left(), whole.left());
    EXPECT_EQ(card.right(), whole.right());
    EXPECT_EQ(part("containerView")->property("radius"), 18);

    const QRectF title = place("titleLabel");
    EXPECT_EQ(title.top(), card.top() + 10);
    EXPECT_NEAR(title.center().x(), card.center().x(), 0.51);
    const QRectF description = place("descriptionLabel");
    EXPECT_EQ(description.top(), title.bottom() + 2);
    EXPECT_NEAR(description.center().x(), card.center().x(), 0.51);
    const QRectF price = place("priceLabel");
    EXPECT_EQ(price.top(), description.bottom() + 20);
    EXPECT_NEAR(price.center().x(), card.center().x(), 0.51);

    const QRectF tag = place("tagContainerView");
    EXPECT_EQ(tag.bottom(), card.bottom() - 10);
    EXPECT_EQ(tag.width(), price.width());
    EXPECT_GE(tag.height(), 20);
    EXPECT_NEAR(tag.center().x(), card.center().x(), 0.51);
    EXPECT_EQ(part("tagContainerView")->property("radius"), 6);
    const QQuickItem* const label = part("tagPeriodLabel");
    EXPECT_EQ(QRectF(label->position(), label->size()),
              QRectF(QPointF(0, 0), tag.size()).adjusted(4, 4, -4, -4));

    const QRectF badge = place("badgeContainerView");
    EXPECT_EQ(badge.size(), QSizeF(80, 25));
    EXPECT_EQ(badge.top(), whole.top());
    EXPECT_NEAR(badge.center().x(), whole.center().x(), 0.51);
    EXPECT_EQ(part("badgeContainerView")->property("radius"), 12);
    EXPECT_NEAR(place("badgeLabel").center().x(), badge.center().x(), 0.51);
    EXPECT_NEAR(place("badgeLabel").center().y(), badge.center().y(), 0.51);
}

TEST_F(DrawnCells, HaveTheirFontsAndWrapOnlySomeTexts) {
    show({product("p0", {{"descriptionText", "3 days free"}, {"tagText", "Tag"}, {"badgeText", "Best"}})});

    struct Shown {
        const char* name;
        int fontSize;
        bool isBold;
        bool wraps;
    };

    for (const Shown& shown :
         {Shown{"titleLabel", 16, true, false}, Shown{"priceLabel", 16, true, false},
          Shown{"descriptionLabel", 9, false, true}, Shown{"tagPeriodLabel", 12, true, true},
          Shown{"badgeLabel", 12, true, false}}) {
        SCOPED_TRACE(shown.name);
        const QQuickItem* const label = part(shown.name);
        EXPECT_EQ(label->property("font").value<QFont>().pixelSize(), shown.fontSize);
        EXPECT_EQ(label->property("font").value<QFont>().bold(), shown.isBold);
        EXPECT_EQ(label->property("wrapMode").toInt(), shown.wraps ? 1 /* Text.WordWrap */ : 0);
        EXPECT_EQ(label->property("horizontalAlignment").toInt(), Qt::AlignHCenter);
    }
}

TEST_F(DrawnCells, LeaveSpaceInPlaceOfAMissingDescription) {
    show({product("p0"), product("p1")});
    EXPECT_EQ(place("priceLabel").top(), place("titleLabel").bottom() + 30);
    EXPECT_FALSE(part("descriptionLabel")->isVisible());
    EXPECT_FALSE(part("tagContainerView")->isVisible());
    EXPECT_FALSE(part("badgeContainerView")->isVisible());
}

TEST_F(DrawnCells, HaveBordersByStateAndBadge) {
    show({product("p0"), product("p1"), product("p2", {{"badgeText", "Best"}})});
    const auto borderWidth = [&](std::size_t index) {
        return part("containerView", index)->property("border").value<QObject*>()->property("width");
    };
    EXPECT_EQ(borderWidth(0), 2);
    EXPECT_EQ(borderWidth(1), 1);
    EXPECT_EQ(borderWidth(2), 3);

    const QImage picture = host_->picture();
    const auto colourAt = [&](std::size_t index, int inside) {
        const QRect card = place("containerView", index).toRect();
        return picture.pixelColor(card.left() + card.width() / 2, card.bottom() - inside)
            .name()
            .toStdString();
    };
    EXPECT_EQ(colourAt(0, 1), "#ff00ff");
    EXPECT_EQ(colourAt(0, 4), "#204060");
    EXPECT_EQ(colourAt(1, 4), "#101820");
    EXPECT_EQ(colourAt(2, 2), "#808080");
    EXPECT_EQ(colourAt(2, 5), "#101820");
}

TEST_F(DrawnCells, KeepTheShadowColourFromTheirSelection) {
    show({product("p0"), product("p1")});
    const auto below = [&](std::size_t index) {
        const QRectF card = place("containerView", index);
        return host_->picture().pixelColor(static_cast<int>(card.center().x()),
                                           static_cast<int>(card.bottom()) + 2);
    };
    const QColor background(0x1b, 0x1b, 0x3a);
    const QColor selected = below(0);
    EXPECT_GT(selected.red(), background.red() + 40);
    EXPECT_GT(selected.blue(), background.blue() + 30);
    EXPECT_LT(selected.green(), background.green());
    const QColor fresh = below(1);
    EXPECT_LT(fresh.red(), background.red()) << "black until first selected";

    host_->click(cell(1));
    host_->settle();
    const QColor deselected = below(0);
    EXPECT_GT(deselected.red(), background.red()) << "the same colour, but weaker";
    EXPECT_LT(deselected.red(), selected.red());
}

TEST_F(DrawnCells, KeepLongTextsWithinTheCard) {
    const boost::json::string longText = "A very long text that goes on and on without an end in sight";
    const boost::json::string longerText =
        "Words that would fill a page if there were one, and then some more, and "
        "more still until nobody reads them any more at all on any phone";
    show({product("p0", {{"title", longText},
                         {"price", "$1,000,000,000.00"},
                         {"descriptionText", longerText},
                         {"tagText", longText},
                         {"badgeText", longText}}),
          product("p1"), product("p2")},
         {320, 568});
    const QRectF card = place("containerView");
    for (const std::string_view name : {"titleLabel", "descriptionLabel", "priceLabel", "tagContainerView"}) {
        SCOPED_TRACE(name);
        EXPECT_GE(place(name).left(), card.left() + 3);
        EXPECT_LE(place(name).right(), card.right() - 3);
    }
    EXPECT_GE(place("badgeLabel").left(), place("badgeContainerView").left());
    EXPECT_LE(place("badgeLabel").right(), place("badgeContainerView").right());
    EXPECT_TRUE(part("titleLabel")->parentItem()->clip()) << "text that is too tall is clipped";
    EXPECT_EQ(ScreenHost::geometry(part("titleLabel")->parentItem()), card);
    EXPECT_TRUE(part("tagContainerView")->clip());
}

TEST_F(DrawnCells, KeepTextsOfOtherScriptsWithinTheCard) {
    show({product("p0", {{"title", "اشتراك سنوي طويل جدًا جدًا"},
                         {"price", "٤٩٫٩٩ ر.س."},
                         {"descriptionText", "ثلاثة أيام مجانًا ثم يتجدد الاشتراك تلقائيًا"},
                         {"tagText", "شهريًا"},
                         {"badgeText", "الأفضل"}}),
          product("p1", {{"title", "プレミアムプラン年間契約"}, {"price", "¥5,800"}}), product("p2")},
         {320, 568});
    for (const std::size_t index : {std::size_t{0}, std::size_t{1}}) {
        const QRectF card = place("containerView", index);
        for (const std::string_view name : {"titleLabel", "priceLabel"}) {
            SCOPED_TRACE(name);
            EXPECT_GE(place(name, index).left(), card.left());
            EXPECT_LE(place(name, index).right(), card.right());
            EXPECT_GT(place(name, index).width(), 10);
        }
    }
    EXPECT_LE(place("descriptionLabel").right(), place("containerView").right());
    EXPECT_NEAR(place("titleLabel").center().x(), place("containerView").center().x(), 0.51);
}

TEST_F(DrawnCells, ShowMarkupLiterally) {
    show({product("p0", {{"title", "<b>T</b>"},
                         {"price", "<i>1</i>"},
                         {"descriptionText", "<u>d</u>"},
                         {"tagText", "<a>"},
                         {"badgeText", "<br>"}})});
    for (const std::string_view name :
         {"titleLabel", "priceLabel", "descriptionLabel", "tagPeriodLabel", "badgeLabel"}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(part(name)->property("textFormat").toInt(), 0 /* Text.PlainText */);
    }
}

}  // namespace
}  // namespace vorna
