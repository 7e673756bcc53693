// SPDX-License-Identifier: Apache-2.0
#include <tools/lint/Document.h>

#include <vorna/documents/OnboardingValidation.h>
#include <vorna/documents/PaywallValidation.h>
#include <vorna/documents/StepKind.h>

#include <boost/json/parse.hpp>
#include <boost/json/value.hpp>

#include <unordered_map>
#include <utility>

namespace vorna::lint {

namespace {

constexpr std::string_view delayKey = "exitButtonDelay";

}  // namespace

std::string_view name(DocumentKind kind) noexcept {
    return kind == DocumentKind::paywall ? "paywall" : "onboarding";
}

Document::Document(std::string_view text, std::optional<DocumentKind> kind)
    : text_(text),
      kind_(kind),
      map_(json::SourceMap::read(text)) {
    if (!map_) {
        return;
    }
    if (!kind_) {
        if (entry(0).kind == json::Kind::object) {
            kind_ = DocumentKind::paywall;
        } else if (entry(0).kind == json::Kind::array) {
            kind_ = DocumentKind::onboarding;
        }
    }
    if (kind_) {
        findScreens();
        decode();
    }
}

void Document::findScreens() {
    struct Place {
        std::size_t screen = 0;
        std::optional<std::size_t> product;
    };

    /// Those that are records, by entry.
    std::unordered_map<std::size_t, Place> objects;
    std::unordered_map<std::size_t, std::size_t> details;
    std::unordered_map<std::size_t, std::size_t> products;
    const auto addScreen = [this, &objects](ScreenKind kind, RecordType type, std::size_t number) {
        objects[number] = {screens_.size(), std::nullopt};
        Screen& screen = screens_.emplace_back();
        screen.kind = kind;
        screen.object.type = type;
        screen.object.entry = number;
    };

    // A value precedes what it contains, so one pass is enough.
    const auto entries = map_->entries();
    const bool isOnboarding = kind_ == DocumentKind::onboarding;
    for (std::size_t number = 0; number < entries.size(); ++number) {
        const json::SourceMap::Entry& current = entries[number];
        const bool isObject = current.kind == json::Kind::object;
        if (number == 0) {
            if (!isOnboarding && isObject) {
                addScreen(ScreenKind::paywall, RecordType::paywall, number);
            }
            continue;
        }
        if (isOnboarding && current.parent == 0 && !current.isMember()) {
            if (isObject) {
                addScreen(ScreenKind::unknownStep, RecordType::step, number);
            }
            continue;
        }
        if (const auto line = details.find(current.parent); line != details.end()) {
            screens_[line->second].details.push_back(number);
            continue;
        }
        if (const auto row = products.find(current.parent); row != products.end()) {
            // Anything but an object is kept as well, so that indexes are right.
            Screen& screen = screens_[row->second];
            objects[number] = {row->second, screen.products.size()};
            Object& product = screen.products.emplace_back();
            product.type = RecordType::product;
            product.entry = number;
            continue;
        }
        const auto owner = objects.find(current.parent);
        if (owner == objects.end() || !current.isMember() || current.isSuperseded) {
            continue;
        }
        const auto [screenNumber, productNumber] = owner->second;
        Screen& screen = screens_[screenNumber];
        std::string key = map_->key(number);
        if (!productNumber && current.kind == json::Kind::array) {
            if (key == "details") {
                details[number] = screenNumber;
            } else if (key == "paidProducts") {
                products[number] = screenNumber;
            }
        }
        Object& object = productNumber ? screen.products[*productNumber] : screen.object;
        object.members.insert_or_assign(std::move(key), number);
    }
    if (isOnboarding) {
        for (Screen& screen : screens_) {
            screen.kind = kindOfStep(screen.object);
        }
    }
}

ScreenKind Document::kindOfStep(const Object& step) const {
    const std::optional<std::string> type = string(step, "type");
    const std::optional<StepKind> known = type ? stepKindOf(*type) : std::nullopt;
    if (!known) {
        return ScreenKind::unknownStep;
    }
    return *known == StepKind::basic ? ScreenKind::basicStep : ScreenKind::paywallStep;
}

void Document::decode() {
    if (kind_ == DocumentKind::paywall) {
        auto decoded = PaywallParameters::decode(text_);
        if (decoded) {
            screens_.front().missing = missingFields(*decoded);
        } else {
            decodingError_ = std::move(decoded).error();
        }
        return;
    }
    auto decoded = decodeOnboardingSteps(text_);
    if (!decoded) {
        decodingError_ = std::move(decoded).error();
        return;
    }
    for (std::size_t index = 0; index < decoded->size(); ++index) {
        screens_[index].missing = missingFields((*decoded)[index]);
    }
}

std::optional<std::string> Document::string(std::size_t number) const {
    if (entry(number).kind != json::Kind::string) {
        return std::nullopt;
    }
    const std::string_view quoted = map_->valueText(number);
    if (quoted.find('\\') == std::string_view::npos) {
        return std::string(quoted.substr(1, quoted.size() - 2));
    }
    const boost::json::value value =
        boost::json::parse(boost::json::string_view(quoted.data(), quoted.size()));
    return std::string(value.as_string());
}

std::optional<std::string> Document::string(const Object& object, std::string_view key) const {
    const auto member = object.members.find(key);
    return member == object.members.end() ? std::nullopt : string(member->second);
}

bool Document::isEmpty(const Object& object, std::string_view key) const {
    const auto member = object.members.find(key);
    if (member == object.members.end()) {
        return true;
    }
    const std::string_view value = map_->valueText(member->second);
    const json::Kind kind = entry(member->second).kind;
    if (kind == json::Kind::array) {
        // An array without elements contains only white space.
        return value.find_first_not_of(" \t\r\n", 1) == value.size() - 1;
    }
    return kind == json::Kind::null || value == "\"\"";
}

std::optional<UIColor> Document::colour(const Object& object, std::string_view key) const {
    const std::optional<std::string> text = string(object, key);
    return text ? UIColor::read(*text) : std::nullopt;
}

std::optional<std::int64_t> Document::delay(const Object& object) const {
    const auto member = object.members.find(delayKey);
    const std::string value =
        member == object.members.end() ? "null" : std::string(map_->valueText(member->second));
    // Leaves the definition of a delay to the library; the field is the same in every document.
    const auto decoded = PaywallParameters::decode("{\"" + std::string(delayKey) + "\":" + value + "}");
    return decoded ? std::optional(decoded->exitButtonDelay) : std::nullopt;
}

}  // namespace vorna::lint
