// SPDX-License-Identifier: Apache-2.0
#include <tools/lint/ColourRules.h>
#include <tools/lint/Contrast.h>
#include <vorna/text/Whitespace.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <initializer_list>

namespace vorna::lint {

namespace {

// Parts of a product that are there with their text, and the colours they then need.
struct Part {
    std::string_view text;
    std::string_view name;
    std::array<std::string_view, 3> colours;  // those not needed are empty
};

constexpr std::array parts{
    Part{"tagText", "tag", {"tagSelectedColor", "tagUnselectedColor", "tagTextColor"}},
    Part{"badgeText", "badge", {"badgeSelectedColor", "badgeUnselectedColor", "badgeTextColor"}},
    Part{"descriptionText", "description", {"descriptionTextColor", "", ""}},
};

// Whether anything is drawn in this colour; what is drawn in none cannot be drawn wrong.
bool isDrawn(const Document& document, const Screen& screen, const Object& object,
             const DocumentField& field) {
    if (object.type == RecordType::product) {
        const auto* const part = std::find_if(parts.begin(), parts.end(), [&field](const Part& candidate) {
            return std::find(candidate.colours.begin(), candidate.colours.end(), field.key) !=
                   candidate.colours.end();
        });
        return screen.sells() && (part == parts.end() || !document.isEmpty(object, part->text));
    }
    if (!screen.isStep()) {
        return true;
    }
    return field.key != "titleColor" && field.key != "detailsColor" &&
           (screen.sells() || field.required != FieldRequirement::onPaywallSteps);
}

// Calls `use(entry, text)` for every colour that is drawn and given.
template <class Use>
void forEachColour(const Document& document, const Use& use) {
    const auto colours = [&document, &use](const Screen& screen, const Object& object) {
        for (const auto& [key, entry] : object.members) {
            const DocumentField* const field = findField(object.type, key);
            if (field == nullptr || field->kind != FieldKind::colour ||
                !isDrawn(document, screen, object, *field)) {
                continue;
            }
            const std::optional<std::string> text = document.string(entry);
            // A blank one is a missing one, which other rules find; only the close button needs none.
            if (text && (!text::isBlank(*text) || field->key == "exitButtonColor")) {
                use(entry, *text);
            }
        }
    };
    for (const Screen& screen : document.screens()) {
        colours(screen, screen.object);
        for (const Object& product : screen.products) {
            colours(screen, product);
        }
    }
}

// RRGGBB or RRGGBBAA with or without "#": what a colour string should be, where the library is more
// forgiving.
bool isWellFormed(std::string_view text) {
    std::string_view digits = text::trimmed(text);
    if (digits.starts_with('#')) {
        digits.remove_prefix(1);
    }
    return (digits.size() == 6 || digits.size() == 8) &&
           digits.find_first_not_of("0123456789ABCDEFabcdef") == std::string_view::npos;
}

std::string hexadecimal(const UIColor& color) {
    const auto byte = [](double part) { return static_cast<unsigned>(std::lround(part * 255)); };
    std::array<char, 16> text{};
    static_cast<void>(std::snprintf(text.data(), text.size(), "#%02X%02X%02X%02X", byte(color.red),
                                    byte(color.green), byte(color.blue), byte(color.alpha)));
    return text.data();
}

std::string ratioText(double ratio) {
    std::array<char, 16> text{};
    static_cast<void>(std::snprintf(text.data(), text.size(), "%.1f", ratio));
    return text.data();
}

// Looks at the texts of one screen.
class ContrastCheck {
  public:
    ContrastCheck(const Document& document, const Screen& screen, Reporter& reporter)
        : document_(document),
          screen_(screen),
          reporter_(reporter) {}

    void texts() {
        constexpr std::string_view background = "backgroundColor";
        const Object& object = screen_.object;
        if (screen_.isStep()) {
            pair(object, {"title", "heading"}, "headingColor", "title and heading", {{&object, background}});
        } else {
            pair(object, {"heading"}, "headingColor", "heading", {{&object, background}});
            pair(object, {"details"}, "detailsColor", "detail lines", {{&object, background}});
        }
        for (const std::string_view end : {"actionButtonColor1", "actionButtonColor2"}) {
            pair(object, {"buttonTitle"}, "buttonTitleColor", "button title",
                 {{&object, background}, {&object, end}});
        }
        if (!screen_.sells()) {
            return;
        }
        pair(object, {"footNote"}, "footNoteColor", "foot note", {{&object, background}});
        pair(object, {}, "termsOfUseColor", "link \"Terms of Use\"", {{&object, background}});
        pair(object, {}, "restoreButtonColor", "link \"Restore Purchase\"", {{&object, background}});
        pair(object, {}, "privacyPolicyColor", "link \"Privacy Policy\"", {{&object, background}});
        for (const Object& product : screen_.products) {
            const Layer cell{&object, background};
            for (const std::string_view card : {"selectedBackgroundColor", "unselectedBackgroundColor"}) {
                pair(product, {"title"}, "titleColor", "title", {cell, {&product, card}});
                pair(product, {"price"}, "priceColor", "price", {cell, {&product, card}});
                pair(product, {"descriptionText"}, "descriptionTextColor", "description",
                     {cell, {&product, card}});
            }
            pair(product, {"tagText"}, "tagTextColor", "tag",
                 {cell, {&product, "selectedBackgroundColor"}, {&product, "tagSelectedColor"}});
            pair(product, {"tagText"}, "tagTextColor", "tag",
                 {cell, {&product, "unselectedBackgroundColor"}, {&product, "tagUnselectedColor"}});
            pair(product, {"badgeText"}, "badgeTextColor", "badge",
                 {cell, {&product, "selectedBackgroundColor"}, {&product, "badgeSelectedColor"}});
            pair(product, {"badgeText"}, "badgeTextColor", "badge",
                 {cell, {&product, "unselectedBackgroundColor"}, {&product, "badgeUnselectedColor"}});
        }
    }

    // The dots that count the steps are white whatever the document says.
    void dots() {
        const std::optional<UIColor> background = document_.colour(screen_.object, "backgroundColor");
        if (!background) {
            return;
        }
        const double ratio = contrast({1, 1, 1, 1}, std::array{*background});
        if (ratio < leastContrast) {
            reporter_.atField(screen_.object, "backgroundColor",
                              "the contrast with the dots that count the steps is " + ratioText(ratio) +
                                  ":1, for these are always white; choose a darker background, " + demand());
        }
    }

  private:
    struct Layer {
        const Object* object = nullptr;
        std::string_view key;
    };

    static std::string demand() { return "3:1 is the least that is read with ease"; }

    void pair(const Object& object, std::initializer_list<std::string_view> texts, std::string_view color,
              std::string_view what, std::initializer_list<Layer> layers) {
        const bool isThere =
            texts.size() == 0 || std::any_of(texts.begin(), texts.end(), [&](std::string_view text) {
                return !document_.isEmpty(object, text);
            });
        const std::optional<UIColor> above = document_.colour(object, color);
        if (!isThere || !above) {
            return;
        }
        std::vector<UIColor> ground;
        for (const Layer& layer : layers) {
            const std::optional<UIColor> read = document_.colour(*layer.object, layer.key);
            if (!read) {
                return;
            }
            ground.push_back(*read);
        }
        const double ratio = contrast(*above, ground);
        if (ratio < leastContrast) {
            reporter_.atField(object, color,
                              "the contrast of the " + std::string(what) + " with \"" +
                                  std::string((layers.end() - 1)->key) + "\" is " + ratioText(ratio) +
                                  ":1; move the colours apart, " + demand());
        }
    }

    const Document& document_;
    const Screen& screen_;
    Reporter& reporter_;
};

}  // namespace

void findUnreadableColours(const Document& document, Reporter& reporter) {
    forEachColour(document, [&reporter](std::size_t entry, const std::string& text) {
        if (!UIColor::read(text)) {
            reporter.atEntry(entry, "this is no colour and is drawn black; write #RRGGBB or #RRGGBBAA");
        }
    });
}

void findStrayCharactersInColours(const Document& document, Reporter& reporter) {
    forEachColour(document, [&reporter](std::size_t entry, const std::string& text) {
        const std::optional<UIColor> color = UIColor::read(text);
        if (color && !isWellFormed(text)) {
            reporter.atEntry(entry, "there are other characters among the digits, and it is drawn as " +
                                        hexadecimal(*color) + "; write #RRGGBB or #RRGGBBAA");
        }
    });
}

void findMissingColours(const Document& document, Reporter& reporter) {
    for (const Screen& screen : document.screens()) {
        for (const Object& product : screen.products) {
            for (const Part& part : parts) {
                if (!screen.sells() || document.isEmpty(product, part.text)) {
                    continue;
                }
                for (const std::string_view color : part.colours) {
                    if (!color.empty() && text::isBlank(document.string(product, color).value_or(""))) {
                        reporter.atField(product, color,
                                         "is missing, and this product has a " + std::string(part.name) +
                                             ": what it colours is drawn black");
                    }
                }
            }
        }
    }
}

void findLowContrasts(const Document& document, Reporter& reporter) {
    for (const Screen& screen : document.screens()) {
        if (screen.kind == ScreenKind::unknownStep) {
            continue;
        }
        ContrastCheck check(document, screen, reporter);
        check.texts();
        if (screen.isStep() && document.screens().size() > 1) {
            check.dots();
        }
    }
}

}  // namespace vorna::lint
