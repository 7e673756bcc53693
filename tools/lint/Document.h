// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <tools/lint/Fields.h>
#include <vorna/documents/UIColor.h>
#include <vorna/json/DecodingError.h>
#include <vorna/json/SourceMap.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorna::lint {

enum class DocumentKind { paywall, onboarding };

// "paywall", "onboarding".
[[nodiscard]] std::string_view name(DocumentKind kind) noexcept;

enum class ScreenKind { paywall, basicStep, paywallStep, unknownStep };

// An object of the document that the library reads as a record. Numbers are those of entries in the source
// map.
struct Object {
    RecordType type = RecordType::paywall;
    std::size_t entry = 0;
    std::map<std::string, std::size_t, std::less<>> members;  // of equal keys the one that holds
};

// A paywall or a step.
struct Screen {
    ScreenKind kind = ScreenKind::paywall;
    Object object;
    std::vector<std::size_t> details;
    std::vector<Object> products;
    std::vector<std::string>
        missing;  // what the library finds missing; empty when the document does not decode

    [[nodiscard]] bool isStep() const noexcept { return kind != ScreenKind::paywall; }

    [[nodiscard]] bool sells() const noexcept {
        return kind == ScreenKind::paywall || kind == ScreenKind::paywallStep;
    }
};

// A text taken apart as far as it goes. Refers to the text, which must outlive it.
class Document {
  public:
    // Without a kind the shape tells it: an object is a paywall, an array an onboarding.
    explicit Document(std::string_view text, std::optional<DocumentKind> kind = std::nullopt);

    [[nodiscard]] std::string_view text() const noexcept { return text_; }

    // Absent when it was not given and the text does not tell.
    [[nodiscard]] std::optional<DocumentKind> kind() const noexcept { return kind_; }

    // Absent when the text is not JSON; the syntax error says why.
    [[nodiscard]] const std::optional<json::SourceMap>& map() const noexcept { return map_; }

    [[nodiscard]] const std::optional<json::DecodingError>& syntaxError() const noexcept {
        return syntaxError_;
    }

    // What the library says to JSON that is no document of this kind.
    [[nodiscard]] const std::optional<json::DecodingError>& decodingError() const noexcept {
        return decodingError_;
    }

    [[nodiscard]] const std::vector<Screen>& screens() const noexcept { return screens_; }

    [[nodiscard]] const json::SourceMap::Entry& entry(std::size_t number) const {
        return map_->entries()[number];
    }

    // The text that a string stands for; absent for every other value.
    [[nodiscard]] std::optional<std::string> string(std::size_t number) const;
    // Likewise of a member; absent too when there is no such member.
    [[nodiscard]] std::optional<std::string> string(const Object& object, std::string_view key) const;
    // True for what the screen treats as nothing: an absent member, null, empty text.
    [[nodiscard]] bool isEmpty(const Object& object, std::string_view key) const;
    // Absent unless it is given and can be read.
    [[nodiscard]] std::optional<UIColor> colour(const Object& object, std::string_view key) const;
    // As the library reads it, with the default for an absent one; absent when it is no delay.
    [[nodiscard]] std::optional<std::int64_t> delay(const Object& object) const;

  private:
    void findScreens();
    void decode();
    [[nodiscard]] ScreenKind kindOfStep(const Object& step) const;

    std::string_view text_;
    std::optional<DocumentKind> kind_;
    std::optional<json::SourceMap> map_;
    std::optional<json::DecodingError> syntaxError_;
    std::optional<json::DecodingError> decodingError_;
    std::vector<Screen> screens_;
};

}  // namespace vorna::lint
