// SPDX-License-Identifier: Apache-2.0
#include <tools/lint/StructureRules.h>

#include <tools/lint/NearestName.h>

#include <vorna/json/Kind.h>

#include <algorithm>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <variant>

namespace vorna::lint {

namespace {

using json::describe;
using json::Kind;

constexpr std::string_view nothingIsShown = "; nothing is shown";

std::string quoted(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

std::string consequence(const Screen& screen, const MissingField& field) {
    return "an error screen listing " + quoted(listedName(field)) + " replaces " +
           (screen.isStep() ? "this step and ends the onboarding" : "the paywall");
}

/// The screen's object or that of one of its products.
const Object& objectOf(const Screen& screen, const MissingField& field) {
    const std::span<const json::Path::Step> steps = field.path.steps();
    return steps.size() == 1 ? screen.object : screen.products[std::get<std::size_t>(steps[1])];
}

/// Reports each field that is missing for one of the reasons; `problem(object, key)` says what is wrong.
template <class Problem>
void reportMissing(const Document& document, Reporter& reporter,
                   std::initializer_list<MissingField::Reason> reasons, const Problem& problem) {
    for (const Screen& screen : document.screens()) {
        for (const MissingField& field : screen.missing) {
            if (std::find(reasons.begin(), reasons.end(), field.reason) == reasons.end()) {
                continue;
            }
            const Object& object = objectOf(screen, field);
            const auto& key = std::get<std::string>(field.path.steps().back());
            reporter.atField(object, key, problem(object, key) + "; " + consequence(screen, field));
        }
    }
}

class TypeCheck {
  public:
    TypeCheck(const Document& document, Reporter& reporter) : document_(document), reporter_(reporter) {}

    bool foundAny() const noexcept { return foundAny_; }

    /// Checks the elements of an array, where null does not stand for a default.
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
        reporter_.atEntry(entry, describe({.expected = wanted, .found = document_.entry(entry).kind}) +
                                     std::string(nothingIsShown));
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
                mismatch(entry, "an integer");
            } else if (!document_.delay(object)) {
                foundAny_ = true;
                reporter_.atEntry(entry, "expected a 64-bit integer" + std::string(nothingIsShown));
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
    if (document.map()) {
        return;
    }
    const json::DecodingError& error = document.map().error();
    const bool isBlank = document.text().find_first_not_of(" \t\r\n") == std::string_view::npos;
    reporter.atOffset(error.offset.value_or(0),
                      "not valid JSON: " + (isBlank ? "the text is empty" : describe(error)) +
                          std::string(nothingIsShown));
}

void findValueThatIsNoDocument(const Document& document, Reporter& reporter) {
    if (document.map() && !document.kind()) {
        reporter.atEntry(0, describe({.expected = "an object (paywall) or an array (onboarding)",
                                      .found = document.entry(0).kind}) +
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
        reporter.atOffset(error.offset.value_or(0), describe(error) + std::string(nothingIsShown));
    }
}

void findUnknownTypesOfSteps(const Document& document, Reporter& reporter) {
    reportMissing(document, reporter, {MissingField::Reason::unknownType},
                  [](const Object& /*object*/, const std::string& /*key*/) {
                      return std::string(R"(must be exactly "basic" or "paywall")");
                  });
}

void findMissingFields(const Document& document, Reporter& reporter) {
    reportMissing(document, reporter, {MissingField::Reason::blank, MissingField::Reason::noLines},
                  [](const Object& object, const std::string& key) {
                      return std::string(object.members.contains(key) ? "empty" : "missing");
                  });
}

void findMissingProducts(const Document& document, Reporter& reporter) {
    reportMissing(
        document, reporter, {MissingField::Reason::noProducts},
        [](const Object& /*object*/, const std::string& /*key*/) { return std::string("no products"); });
}

void findMissingSteps(const Document& document, Reporter& reporter) {
    if (document.kind() == DocumentKind::onboarding && !document.decodingError() &&
        document.screens().empty() && document.map()) {
        reporter.atEntry(0, "no steps; the onboarding finishes without showing anything");
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
            reporter.atEntry(entry, "unknown field; ignored" +
                                        (nearest ? " (did you mean " + quoted(*nearest) + "?)" : ""));
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
            reporter.atEntry(number, "duplicate key; the earlier value is ignored");
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
                reporter.atEntry(entry, "steps do not show detail lines; put the text in the heading");
            } else if (screen.kind == ScreenKind::basicStep &&
                       (field->required == FieldRequirement::onPaywallSteps)) {
                reporter.atEntry(entry, "basic steps do not show this; only paywall steps do");
            }
        }
    }
}

}  // namespace vorna::lint
