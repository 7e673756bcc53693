// SPDX-License-Identifier: Apache-2.0
#include <tools/lint/NearestName.h>
#include <tools/lint/StructureRules.h>
#include <vorna/json/Kind.h>
#include <vorna/json/Position.h>

#include <charconv>
#include <optional>
#include <utility>

namespace vorna::lint {

namespace {

using json::Kind;

constexpr std::string_view nothingIsShown = "nothing is shown";

// The names that the library's validation gives to what is not simply missing begin like this.
constexpr std::string_view noProducts = "paidProducts (";
constexpr std::string_view noKnownType = "type (";

// What the application shows in place of this screen.
std::string errorScreenInstead(const Screen& screen) {
    return screen.isStep() ? "the sequence ends with the error screen in place of this step"
                           : "the error screen is shown in place of the paywall";
}

std::string quoted(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

// The byte that a position stands for. Positions only grow along the text.
std::size_t offsetOf(std::string_view text, const json::DecodingError& error) {
    std::size_t lineBegin = 0;
    for (std::size_t line = 1; line < error.line; ++line) {
        const std::size_t end = text.find('\n', lineBegin);
        if (end == std::string_view::npos) {
            return text.size();
        }
        lineBegin = end + 1;
    }
    const std::string_view rest = text.substr(lineBegin);
    std::size_t low = 0;
    std::size_t high = rest.substr(0, rest.find('\n')).size();
    while (low < high) {
        const std::size_t middle = low + (high - low) / 2;
        if (json::positionAt(rest, middle).column < error.column) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return lineBegin + low;
}

// What an error says apart from where.
std::string_view withoutPosition(const json::DecodingError& error) {
    const std::string where =
        "line " + std::to_string(error.line) + ", column " + std::to_string(error.column) + ": ";
    const std::string_view description = error.description;
    return description.starts_with(where) ? description.substr(where.size()) : description;
}

std::string expected(std::string_view wanted, Kind found) {
    return "expected " + std::string(wanted) + ", found " + std::string(json::kindName(found)) + ": " +
           std::string(nothingIsShown);
}

class TypeCheck {
  public:
    TypeCheck(const Document& document, Reporter& reporter) : document_(document), reporter_(reporter) {}

    bool foundAny() const noexcept { return foundAny_; }

    // The elements of an array, where null is no stand-in for a default.
    void elements(std::size_t array, Kind wanted) {
        const auto entries = document_.map()->entries();
        for (std::size_t number = array + 1;
             number < entries.size() && entries[number].valueBegin < entries[array].valueEnd; ++number) {
            if (entries[number].parent == array && entries[number].kind != wanted) {
                mismatch(number, wanted == Kind::string ? "a string" : "an object");
            }
        }
    }

    void fields(const Object& object) {
        for (const auto& [key, entry] : object.members) {
            if (const DocumentField* const known = findField(object.type, key)) {
                field(object, *known, entry);
            }
        }
    }

  private:
    void mismatch(std::size_t entry, std::string_view wanted) {
        foundAny_ = true;
        reporter_.atEntry(entry, expected(wanted, document_.entry(entry).kind));
    }

    void field(const Object& object, const DocumentField& known, std::size_t entry) {
        const Kind kind = document_.entry(entry).kind;
        if (kind == Kind::null) {
            return;
        }
        switch (known.type()) {
        case FieldType::string:
            if (kind != Kind::string) {
                mismatch(entry, "a string");
            }
            return;
        case FieldType::integer:
            if (kind != Kind::number) {
                mismatch(entry, "a whole number");
            } else if (!document_.delay(object)) {
                foundAny_ = true;
                reporter_.atEntry(entry, "expected a whole number of at most 64 bits: " +
                                             std::string(nothingIsShown));
            }
            return;
        case FieldType::strings:
        case FieldType::products:
            if (kind != Kind::array) {
                mismatch(entry, "an array");
            } else {
                elements(entry, known.type() == FieldType::strings ? Kind::string : Kind::object);
            }
            return;
        }
    }

    const Document& document_;
    Reporter& reporter_;
    bool foundAny_ = false;
};

// A name as validation gives it, such as "paidProducts[0].price", as object and key.
std::pair<const Object*, std::string_view> fieldNamed(const Screen& screen, std::string_view name) {
    const std::size_t bracket = name.find('[');
    if (bracket == std::string_view::npos) {
        return {&screen.object, name};
    }
    std::size_t product = 0;
    std::from_chars(name.data() + bracket + 1, name.data() + name.size(), product);
    if (product >= screen.products.size()) {
        return {&screen.object, name};
    }
    return {&screen.products[product], name.substr(name.find('.') + 1)};
}

template <class Use>
void forEachRecord(const Document& document, const Use& use) {
    for (const Screen& screen : document.screens()) {
        use(screen.object);
        for (const Object& product : screen.products) {
            use(product);
        }
    }
}

}  // namespace

void findTextThatIsNotJson(const Document& document, Reporter& reporter) {
    const auto& error = document.syntaxError();
    if (!error) {
        return;
    }
    const bool isBlank = document.text().find_first_not_of(" \t\r\n") == std::string_view::npos;
    const std::string reason = isBlank ? "the text is empty" : std::string(withoutPosition(*error));
    reporter.atOffset(offsetOf(document.text(), *error),
                      "this is not JSON (" + reason + "): " + std::string(nothingIsShown));
}

void findValueThatIsNoDocument(const Document& document, Reporter& reporter) {
    if (document.map() && !document.kind()) {
        reporter.atEntry(0, "expected an object for a paywall or an array for an onboarding, found " +
                                std::string(json::kindName(document.entry(0).kind)) + ": " +
                                std::string(nothingIsShown));
    }
}

void findWrongTypes(const Document& document, Reporter& reporter) {
    if (!document.decodingError()) {
        return;
    }
    TypeCheck check(document, reporter);
    const Kind top = document.entry(0).kind;
    if (document.kind() == DocumentKind::onboarding && top == Kind::array) {
        check.elements(0, Kind::object);
    }
    forEachRecord(document, [&check](const Object& object) { check.fields(object); });
    if (!check.foundAny()) {
        const json::DecodingError& error = *document.decodingError();
        reporter.atOffset(offsetOf(document.text(), error),
                          std::string(withoutPosition(error)) + ": " + std::string(nothingIsShown));
    }
}

void findUnknownTypesOfSteps(const Document& document, Reporter& reporter) {
    for (const Screen& screen : document.screens()) {
        for (const std::string& missing : screen.missing) {
            if (missing.starts_with(noKnownType)) {
                reporter.atField(screen.object, "type",
                                 R"(must be "basic" or "paywall", letter for letter: )" +
                                     errorScreenInstead(screen) + " and lists " + quoted(missing));
            }
        }
    }
}

void findMissingFields(const Document& document, Reporter& reporter) {
    for (const Screen& screen : document.screens()) {
        for (const std::string& missing : screen.missing) {
            if (missing.starts_with(noProducts) || missing.starts_with(noKnownType)) {
                continue;
            }
            const auto [object, key] = fieldNamed(screen, missing);
            const bool isThere = object->members.contains(key);
            reporter.atField(*object, key,
                             std::string(isThere ? "is empty" : "is missing") + ": " +
                                 errorScreenInstead(screen) + " and lists " + quoted(missing));
        }
    }
}

void findMissingProducts(const Document& document, Reporter& reporter) {
    for (const Screen& screen : document.screens()) {
        for (const std::string& missing : screen.missing) {
            if (missing.starts_with(noProducts)) {
                reporter.atField(screen.object, "paidProducts",
                                 "there must be a product: " + errorScreenInstead(screen) + " and lists " +
                                     quoted(missing));
            }
        }
    }
}

void findMissingSteps(const Document& document, Reporter& reporter) {
    if (document.kind() == DocumentKind::onboarding && !document.decodingError() &&
        document.screens().empty() && document.map()) {
        reporter.atEntry(0, "there is no step: the sequence is over before anything is shown");
    }
}

void findUnknownKeys(const Document& document, Reporter& reporter) {
    forEachRecord(document, [&](const Object& object) {
        std::vector<std::string_view> names;
        for (const DocumentField& field : fieldsOf(object.type)) {
            names.push_back(field.key);
        }
        for (const auto& [key, entry] : object.members) {
            if (findField(object.type, key) != nullptr) {
                continue;
            }
            const std::optional<std::string_view> nearest = nearestName(key, names);
            reporter.atEntry(entry, "no field is called so, and it is ignored" +
                                        (nearest ? "; did you mean " + quoted(*nearest) + "?" : ""));
        }
    });
}

void findDuplicateKeys(const Document& document, Reporter& reporter) {
    if (!document.map()) {
        return;
    }
    const auto entries = document.map()->entries();
    for (std::size_t number = 0; number < entries.size(); ++number) {
        if (entries[number].repeatsKey) {
            reporter.atEntry(number, "this key stands in the object before: the value there is ignored");
        }
    }
}

void findFieldsNeverShown(const Document& document, Reporter& reporter) {
    for (const Screen& screen : document.screens()) {
        if (!screen.isStep() || screen.kind == ScreenKind::unknownStep) {
            continue;
        }
        for (const auto& [key, entry] : screen.object.members) {
            const DocumentField* const field = findField(RecordType::step, key);
            if (field == nullptr || document.isEmpty(screen.object, key)) {
                continue;
            }
            if (key == "details" || key == "detailsColor") {
                reporter.atEntry(entry, "a step never shows detail lines; put further text into the heading");
            } else if (screen.kind == ScreenKind::basicStep &&
                       (field->required == FieldRequirement::onPaywallSteps)) {
                reporter.atEntry(entry,
                                 "a basic step never shows this; only a step of the type \"paywall\" does");
            }
        }
    }
}

}  // namespace vorna::lint
