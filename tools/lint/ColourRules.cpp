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

/// Parts of a product that are shown if they have a text, and the colours they need then.
struct Part {
    std::string_view text;
    std::string_view name;
    /// Empty where fewer are needed.
    std::array<std::string_view, 3> colours;
};

constexpr std::array parts{
    Part{"tagText", "tag", {"tagSelectedColor", "tagUnselectedColor", "tagTextColor"}},
    Part{"badgeText", "badge", {"badgeSelectedColor", "badgeUnselectedColor", "badgeTextColor"}},
    Part{"descriptionText", "description", {"descriptionTextColor", "", ""}},
};

/// Whether anything is drawn in this colour; otherwise it cannot be wrong.
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

/// Calls `use(entry, text)` for every colour that is given and drawn.
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
            // Other rules report blank colours as missing, except that of the close button, which is
            // optional.
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

/// RRGGBB or RRGGBBAA with or without "#". The library is more lenient.
bool isWellFormed(std::string_view text) {
    std::string_view digits = text::trimmed(text);
    if (digits.starts_with('#')) {
        digits.remove_prefix(1);
    }
    return (digits.size() == 6 || digits.size() == 8) &&
           digits.find_first_not_of("0123456789ABCDEFabcdef") == std::string_view::npos;
}

std::string hexadecimal(const UIColor& colour) {
    const auto byte = [](double part) { return static_cast<unsigned>(std::lround(part * 255)); };
    std::array<char, 16> text{};
    static_cast<void>(std::snprintf(text.data(), text.size(), "#%02X%02X%02X%02X", byte(colour.red),
                                    byte(colour.green), byte(colour.blue), byte(colour.alpha)));
    return text.data();
}

std::string ratioText(double ratio) {
    std::array<char, 16> text{};
    static_cast<void>(std::snprintf(text.data(), text.size(), "%.1f", ratio));
    return text.data();
}

/// Checks the texts of one screen.
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
        pair(object, {"footNote"}, "footNoteColor", "footnote", {{&object, background}});
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

    /// The page dots are always white.
    void dots() {
        const std::optional<UIColor> background = document_.colour(screen_.object, "backgroundColor");
        if (!background) {
            return;
        }
        const double ratio = contrast({1, 1, 1, 1}, std::array{*background});
        if (ratio < leastContrast) {
            reporter_.atField(screen_.object, "backgroundColor",
                              "contrast with the page dots, which are always white, is only " +
                                  ratioText(ratio) + ":1; choose a darker background (at least 3:1)");
        }
    }

  private:
    struct Layer {
        const Object* object = nullptr;
        std::string_view key;
    };

    void pair(const Object& object, std::initializer_list<std::string_view> texts, std::string_view colour,
              std::string_view what, std::initializer_list<Layer> layers) {
        const bool isThere =
            texts.size() == 0 || std::any_of(texts.begin(), texts.end(), [&](std::string_view text) {
                return !document_.isEmpty(object, text);
            });
        const std::optional<UIColor> above = document_.colour(object, colour);
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
            reporter_.atField(object, colour,
                              "contrast between the " + std::string(what) + " and \"" +
                                  std::string((layers.end() - 1)->key) + "\" is only " + ratioText(ratio) +
                                  ":1; use at least 3:1");
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
            reporter.atEntry(entry, "not a valid colour; drawn black (use #RRGGBB or #RRGGBBAA)");
        }
    });
}

void findStrayCharactersInColours(const Document& document, Reporter& reporter) {
    forEachColour(document, [&reporter](std::size_t entry, const std::string& text) {
        const std::optional<UIColor> colour = UIColor::read(text);
        if (colour && !isWellFormed(text)) {
            reporter.atEntry(entry, "unexpected characters; drawn as " + hexadecimal(*colour) +
                                        " (use #RRGGBB or #RRGGBBAA)");
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
                for (const std::string_view colour : part.colours) {
                    if (!colour.empty() && text::isBlank(document.string(product, colour).value_or(""))) {
                        reporter.atField(product, colour,
                                         "missing, although the product has a " + std::string(part.name) +
                                             "; drawn black");
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
