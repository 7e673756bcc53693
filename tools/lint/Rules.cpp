// SPDX-License-Identifier: Apache-2.0
#include <tools/lint/Rules.h>

#include <tools/lint/ColourRules.h>
#include <tools/lint/ContentRules.h>
#include <tools/lint/StructureRules.h>

#include <array>
#include <utility>

namespace vorna::lint {

namespace {

constexpr std::array table{
    Rule{"not-json", Severity::error, "the text is not JSON", findTextThatIsNotJson},
    Rule{"not-a-document", Severity::error, "the JSON is neither an object nor an array",
         findValueThatIsNoDocument},
    Rule{"wrong-type", Severity::error, "a value has the wrong type for its field", findWrongTypes},
    Rule{"unknown-type", Severity::error, R"(the type of a step is neither "basic" nor "paywall")",
         findUnknownTypesOfSteps},
    Rule{"missing-field", Severity::error, "a field that the screen needs is missing or blank",
         findMissingFields},
    Rule{"no-products", Severity::error, "a paywall or a paywall step has no products", findMissingProducts},
    Rule{"no-steps", Severity::warning, "an onboarding has no steps", findMissingSteps},
    Rule{"unknown-key", Severity::warning, "a key is not a known field", findUnknownKeys},
    Rule{"duplicate-key", Severity::warning, "an object has the same key twice", findDuplicateKeys},
    Rule{"never-shown", Severity::warning, "a step has a field that steps of its type do not show",
         findFieldsNeverShown},
    Rule{"unreadable-colour", Severity::warning, "a colour is not valid and is drawn black",
         findUnreadableColours},
    Rule{"stray-characters-in-colour", Severity::warning,
         "a colour has unexpected characters, which are ignored", findStrayCharactersInColours},
    Rule{"missing-colour", Severity::warning, "a tag, badge or description has no colour and is drawn black",
         findMissingColours},
    Rule{"low-contrast", Severity::warning, "a text has too little contrast with its background",
         findLowContrasts},
    Rule{"unreadable-address", Severity::warning, "an address is not a complete URL",
         findUnreadableAddresses},
    Rule{"insecure-address", Severity::warning, "an address does not use https", findInsecureAddresses},
    Rule{"unknown-selected-product", Severity::warning, "no product has the selected identifier",
         findUnknownSelectedProducts},
    Rule{"duplicate-product", Severity::warning, "two products have the same identifier",
         findDuplicateProducts},
    Rule{"detail-line-cut", Severity::warning, "a detail line is longer than 37 characters",
         findDetailLinesThatAreCut},
    Rule{"negative-delay", Severity::warning, "the delay of the close button is negative",
         findNegativeDelays},
    Rule{"long-delay", Severity::warning, "the close button appears after more than a minute",
         findLongDelays},
};

}  // namespace

void Reporter::setRule(std::string_view code, Severity severity) {
    code_ = code;
    severity_ = severity;
}

void Reporter::atOffset(std::size_t offset, std::string message) {
    findings_.push_back({code_, severity_, {}, offset, {}, std::move(message)});
}

void Reporter::atEntry(std::size_t entry, std::string message) {
    const json::SourceMap::Entry& place = document_.entry(entry);
    findings_.push_back({code_,
                         severity_,
                         document_.map()->path(entry),
                         place.isMember() ? place.keyBegin : place.valueBegin,
                         {},
                         std::move(message)});
}

void Reporter::atField(const Object& object, std::string_view key, std::string message) {
    if (const auto member = object.members.find(key); member != object.members.end()) {
        atEntry(member->second, std::move(message));
        return;
    }
    json::Path path = document_.map()->path(object.entry);
    path.append(key);
    findings_.push_back({code_,
                         severity_,
                         std::move(path),
                         document_.entry(object.entry).valueBegin,
                         {},
                         std::move(message)});
}

std::span<const Rule> rules() noexcept {
    return table;
}

}  // namespace vorna::lint
