// SPDX-License-Identifier: Apache-2.0
#include <tools/lint/ContentRules.h>

#include <vorna/platform/URL.h>
#include <vorna/text/Graphemes.h>
#include <vorna/text/Whitespace.h>

#include <algorithm>
#include <map>

namespace vorna::lint {

namespace {

/// A paywall shows the first 37 characters of a longer line, followed by "...".
constexpr std::size_t maximumLineLength = 37;

/// In seconds; a longer delay is likely a mistake.
constexpr std::int64_t longestDelay = 60;

/// Calls `use(entry, text, isMedia)` for every address that a screen uses.
template <class Use>
void forEachAddress(const Document& document, const Use& use) {
    for (const Screen& screen : document.screens()) {
        for (const auto& [key, entry] : screen.object.members) {
            const DocumentField* const field = findField(screen.object.type, key);
            if (field == nullptr || field->kind != FieldKind::url) {
                continue;
            }
            const bool isMedia = field->required == FieldRequirement::always && key == "media";
            const std::optional<std::string> text = document.string(entry);
            if (text && !text::isBlank(*text) && (isMedia || screen.sells())) {
                use(entry, *text, isMedia);
            }
        }
    }
}

/// Calls `use(entry, delay)` for every given delay of a screen with a close button.
template <class Use>
void forEachDelay(const Document& document, const Use& use) {
    for (const Screen& screen : document.screens()) {
        const bool hasCloseButton = !screen.isStep() || &screen == &document.screens().back();
        const auto member = screen.object.members.find("exitButtonDelay");
        if (hasCloseButton && member != screen.object.members.end()) {
            if (const std::optional<std::int64_t> delay = document.delay(screen.object)) {
                use(member->second, *delay);
            }
        }
    }
}

}  // namespace

void findUnreadableAddresses(const Document& document, Reporter& reporter) {
    forEachAddress(document, [&reporter](std::size_t entry, const std::string& text, bool isMedia) {
        if (!URL::parse(text)) {
            reporter.atEntry(
                entry,
                isMedia
                    ? "not a valid URL; no media is shown (write the full address, starting with https://)"
                    : "not a valid URL; the link does nothing (write the full address, starting with "
                      "https://)");
        }
    });
}

void findInsecureAddresses(const Document& document, Reporter& reporter) {
    forEachAddress(document, [&reporter](std::size_t entry, const std::string& text, bool isMedia) {
        const std::optional<URL> url = URL::parse(text);
        if (url && url->scheme() != "https") {
            reporter.atEntry(entry, std::string(isMedia ? "the media" : "the page") +
                                        " can be tampered with in transit over " + url->scheme() +
                                        "://; use https://");
        }
    });
}

void findUnknownSelectedProducts(const Document& document, Reporter& reporter) {
    for (const Screen& screen : document.screens()) {
        const std::optional<std::string> selected = document.string(screen.object, "selectedPaidProduct");
        if (!screen.sells() || screen.products.empty() || !selected || text::isBlank(*selected)) {
            continue;
        }
        const bool isThere =
            std::any_of(screen.products.begin(), screen.products.end(), [&](const Object& product) {
                return document.string(product, "identifier") == selected;
            });
        if (!isThere) {
            reporter.atField(
                screen.object, "selectedPaidProduct",
                std::string("no product has this identifier, so none is selected; until one is tapped, ") +
                    (screen.isStep() ? "the button continues without a product" : "the button does nothing"));
        }
    }
}

void findDuplicateProducts(const Document& document, Reporter& reporter) {
    for (const Screen& screen : document.screens()) {
        std::map<std::string, std::size_t> seen;
        for (std::size_t index = 0; screen.sells() && index < screen.products.size(); ++index) {
            const std::optional<std::string> identifier =
                document.string(screen.products[index], "identifier");
            if (!identifier || text::isBlank(*identifier)) {
                continue;
            }
            const auto [first, isNew] = seen.emplace(*identifier, index);
            if (!isNew) {
                reporter.atField(screen.products[index], "identifier",
                                 "same identifier as paidProducts[" + std::to_string(first->second) +
                                     "]; the application cannot tell them apart");
            }
        }
    }
}

void findDetailLinesThatAreCut(const Document& document, Reporter& reporter) {
    for (const Screen& screen : document.screens()) {
        if (screen.isStep()) {
            continue;
        }
        for (const std::size_t entry : screen.details) {
            const std::optional<std::string> line = document.string(entry);
            if (!line) {
                continue;
            }
            const std::size_t count = text::characterCount(*line);
            if (count > maximumLineLength) {
                reporter.atEntry(entry, std::to_string(count) + " characters, cut to \"" +
                                            std::string(text::firstCharacters(*line, maximumLineLength)) +
                                            "...\"; use at most " + std::to_string(maximumLineLength));
            }
        }
    }
}

void findNegativeDelays(const Document& document, Reporter& reporter) {
    forEachDelay(document, [&reporter](std::size_t entry, std::int64_t delay) {
        if (delay < 0) {
            reporter.atEntry(entry, "negative; the close button appears immediately (use 0)");
        }
    });
}

void findLongDelays(const Document& document, Reporter& reporter) {
    forEachDelay(document, [&reporter](std::size_t entry, std::int64_t delay) {
        if (delay > longestDelay) {
            reporter.atEntry(entry, "the close button appears only after " + std::to_string(delay) +
                                        " seconds; the delay is in seconds");
        }
    });
}

}  // namespace vorna::lint
