// SPDX-License-Identifier: Apache-2.0
#include <tools/schemas/FieldText.h>

#include <algorithm>
#include <array>

namespace vorna::schemas {

namespace {

constexpr RecordType paywall = RecordType::paywall;
constexpr RecordType step = RecordType::step;
constexpr RecordType product = RecordType::product;

constexpr std::array texts{
    FieldText{paywall, "media",
              "Address of the picture or video at the top. The content type of the response decides: "
              "with \"video\" in it, a video is played in a loop, with sound."},
    FieldText{paywall, "heading", "The large text. Keep it short; long text wraps."},
    FieldText{paywall, "details",
              "One centred line each under the heading. A line longer than 37 characters is cut to 37 and "
              "\"...\"."},
    FieldText{paywall, "paidProducts",
              "The products, from left to right. As many as fit share the width, at least 80 points each; "
              "the row scrolls if there are more."},
    FieldText{paywall, "exitButtonDelay",
              "Whole seconds until the close button appears. 0 or less: immediately."},
    FieldText{paywall, "selectedPaidProduct",
              "Exact identifier of the product that is selected initially. If no product has it, none is "
              "selected and the button does nothing until one is tapped."},
    FieldText{paywall, "buttonTitle", "The title of the large button."},
    FieldText{paywall, "termsOfUse", "Address that the link \"Terms of Use\" opens."},
    FieldText{paywall, "privacyPolicy", "Address that the link \"Privacy Policy\" opens."},
    FieldText{paywall, "footNote", "Small text under the button."},
    FieldText{paywall, "backgroundColor", "The background of the whole screen."},
    FieldText{paywall, "actionButtonColor1", "Where the button's gradient begins, at the upper left."},
    FieldText{paywall, "actionButtonColor2", "Where the button's gradient ends, at the right."},
    FieldText{paywall, "headingColor", "The heading."},
    FieldText{paywall, "buttonTitleColor", "The title of the button. The arrow beside it is always white."},
    FieldText{paywall, "termsOfUseColor", "The link \"Terms of Use\"."},
    FieldText{paywall, "footNoteColor", "The footnote."},
    FieldText{paywall, "restoreButtonColor", "The link \"Restore Purchase\"."},
    FieldText{paywall, "privacyPolicyColor", "The link \"Privacy Policy\"."},
    FieldText{paywall, "detailsColor", "The detail lines."},
    FieldText{paywall, "exitButtonColor", "The close button, over the media at the upper left."},

    FieldText{step, "type", R"(Exactly "basic" or "paywall".)"},
    FieldText{step, "media",
              "Address of the picture or video at the top. The content type of the response decides: "
              "with \"video\" in it, a video is played in a loop, with sound."},
    FieldText{step, "title", "The largest text, in the middle of the screen."},
    FieldText{step, "titleColor", "Required but without effect: the title has the colour of the heading."},
    FieldText{step, "heading", "The text under the title. Line breaks are kept."},
    FieldText{step, "headingColor", "The title and the heading."},
    FieldText{step, "details", "Never shown on a step."},
    FieldText{step, "detailsColor", "Without effect on a step."},
    FieldText{step, "buttonTitle", "The title of the large button, which continues to the next step."},
    FieldText{step, "buttonTitleColor",
              "The title of the button. The arrow on the last step is always white."},
    FieldText{step, "termsOfUse", "Address that the link \"Terms of Use\" opens. Paywall steps only."},
    FieldText{step, "termsOfUseColor", "The link \"Terms of Use\". Paywall steps only."},
    FieldText{step, "footNote", "Small text under the button. Paywall steps only."},
    FieldText{step, "footNoteColor", "The footnote. Paywall steps only."},
    FieldText{step, "paidProducts",
              "The products, from left to right. As many as fit share the width, at least 80 points each; "
              "the row scrolls if there are more. Paywall steps only."},
    FieldText{step, "selectedPaidProduct",
              "Exact identifier of the product that is selected initially. If no product has it, none is "
              "selected and the button continues without a product. Paywall steps only."},
    FieldText{step, "exitButtonDelay",
              "Whole seconds until the close button appears on the last step, the only one to have it. 0 or "
              "less: immediately."},
    FieldText{step, "privacyPolicy", "Address that the link \"Privacy Policy\" opens. Paywall steps only."},
    FieldText{step, "backgroundColor",
              "The background of the whole screen. The page dots are always white, so choose a dark one."},
    FieldText{step, "actionButtonColor1", "Where the button's gradient begins, at the upper left."},
    FieldText{step, "actionButtonColor2", "Where the button's gradient ends, at the right."},
    FieldText{step, "restoreButtonColor", "The link \"Restore Purchase\". Paywall steps only."},
    FieldText{step, "privacyPolicyColor", "The link \"Privacy Policy\". Paywall steps only."},
    FieldText{step, "exitButtonColor",
              "The close button on the last step, over the media at the upper left."},

    FieldText{product, "title", "The first line of the card."},
    FieldText{
        product, "price",
        "Under the title and the description, shown as it is: with currency and in the reader's notation."},
    FieldText{product, "identifier",
              "The product's name in the store. The application receives it with every tap; it should be "
              "unique on a screen."},
    FieldText{product, "selectedBackgroundColor", "The card while it is selected."},
    FieldText{product, "unselectedBackgroundColor", "The card while it is not."},
    FieldText{product, "selectedBorderColor", "Border and shadow of the card while it is selected."},
    FieldText{product, "unselectedBorderColor", "Border of the card while it is not; thicker with a badge."},
    FieldText{product, "tagText",
              "A small tag at the bottom of the card, as wide as the price. None without text."},
    FieldText{product, "badgeText",
              "A badge across the upper edge of the card, 80 points wide. None without text."},
    FieldText{product, "badgeSelectedColor", "The badge while the card is selected. Black if missing."},
    FieldText{product, "badgeUnselectedColor", "The badge while the card is not selected. Black if missing."},
    FieldText{product, "tagSelectedColor", "The tag while the card is selected. Black if missing."},
    FieldText{product, "tagUnselectedColor", "The tag while the card is not selected. Black if missing."},
    FieldText{product, "descriptionText", "Small text under the title. None without text."},
    FieldText{product, "badgeTextColor", "The text on the badge. Black if missing."},
    FieldText{product, "titleColor", "The title, selected or not."},
    FieldText{product, "priceColor", "The price, selected or not."},
    FieldText{product, "tagTextColor", "The text on the tag. Black if missing."},
    FieldText{product, "descriptionTextColor", "The description. Black if missing."},
};

}  // namespace

std::span<const FieldText> fieldTexts() noexcept {
    return texts;
}

std::string_view fieldText(RecordType record, std::string_view key) noexcept {
    const auto* const found =
        std::find_if(texts.begin(), texts.end(), [record, key](const FieldText& candidate) {
            return candidate.record == record && candidate.key == key;
        });
    return found == texts.end() ? std::string_view() : found->text;
}

}  // namespace vorna::schemas
