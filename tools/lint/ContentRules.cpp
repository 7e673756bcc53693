// SPDX-License-Identifier: Apache-2.0
#include <tools/lint/ContentRules.h>
#include <vorna/platform/URL.h>
#include <vorna/text/Graphemes.h>
#include <vorna/text/Whitespace.h>

#include <algorithm>
#include <map>

namespace vorna::lint {

namespace {

// A paywall shows the first 37 characters of a longer line, and three full stops.
constexpr std::size_t mostCharactersOfALine = 37;

// Nobody waits longer for a close button on purpose.
constexpr std::int64_t longestDelay = 60;

// Calls `use(entry, text, isMedia)` for every address that the screen uses.
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

// Calls `use(screen, delay)` for every screen that has a close button and a delay written for it.
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
                entry, isMedia ? "this is no web address, and the place of the picture stays empty; write "
                                 "it in full, beginning with https://"
                               : "this is no web address, and a tap on the link does nothing; write it "
                                 "in full, beginning with https://");
        }
    });
}

void findInsecureAddresses(const Document& document, Reporter& reporter) {
    forEachAddress(document, [&reporter](std::size_t entry, const std::string& text, bool isMedia) {
        const std::optional<URL> url = URL::parse(text);
        if (url && url->scheme() != "https") {
            reporter.atEntry(entry, "this address begins with " + url->scheme() +
                                        ":// and others on the way can change " +
                                        (isMedia ? "what it shows" : "what it opens") + "; use https://");
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
                std::string(
                    "no product has this identifier, and none is selected at first: until one is tapped, ") +
                    (screen.isStep() ? "the button goes on without a product" : "the button does nothing"));
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
                                 "product " + std::to_string(first->second) +
                                     " has the same identifier: the application cannot tell them apart");
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
            if (count > mostCharactersOfALine) {
                reporter.atEntry(entry, "this line has " + std::to_string(count) +
                                            " characters and is cut to \"" +
                                            std::string(text::firstCharacters(*line, mostCharactersOfALine)) +
                                            "...\"; write at most " + std::to_string(mostCharactersOfALine));
            }
        }
    }
}

void findNegativeDelays(const Document& document, Reporter& reporter) {
    forEachDelay(document, [&reporter](std::size_t entry, std::int64_t delay) {
        if (delay < 0) {
            reporter.atEntry(
                entry, "a negative delay counts as none, and the close button is there at once; write 0");
        }
    });
}

void findLongDelays(const Document& document, Reporter& reporter) {
    forEachDelay(document, [&reporter](std::size_t entry, std::int64_t delay) {
        if (delay > longestDelay) {
            reporter.atEntry(entry, "the close button comes only after " + std::to_string(delay) +
                                        " seconds; the delay counts whole seconds");
        }
    });
}

}  // namespace vorna::lint
