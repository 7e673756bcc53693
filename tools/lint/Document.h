// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A document, parsed for the rules.

#include <tools/lint/Fields.h>

#include <vorna/base/Result.h>
#include <vorna/documents/MissingField.h>
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

/// "paywall" or "onboarding".
[[nodiscard]] std::string_view name(DocumentKind kind) noexcept;

enum class ScreenKind { paywall, basicStep, paywallStep, unknownStep };

/// An object of the document that the library decodes as a record. Entries are numbers in the source map.
struct Object {
    RecordType type = RecordType::paywall;
    std::size_t entry = 0;
    /// Except those superseded by a duplicate key.
    std::map<std::string, std::size_t, std::less<>> members;
};

/// A paywall or a step.
struct Screen {
    ScreenKind kind = ScreenKind::paywall;
    Object object;
    std::vector<std::size_t> details;
    std::vector<Object> products;
    /// According to the library; empty if the document cannot be decoded.
    std::vector<MissingField> missing;

    [[nodiscard]] bool isStep() const noexcept { return kind != ScreenKind::paywall; }

    [[nodiscard]] bool sells() const noexcept {
        return kind == ScreenKind::paywall || kind == ScreenKind::paywallStep;
    }
};

/// Refers to the text, which must outlive it. A text with errors is parsed as far as possible.
class Document {
  public:
    /// By default, an object is a paywall and an array an onboarding.
    explicit Document(std::string_view text, std::optional<DocumentKind> kind = std::nullopt);

    [[nodiscard]] std::string_view text() const noexcept { return text_; }

    /// std::nullopt if neither given nor evident from the shape.
    [[nodiscard]] std::optional<DocumentKind> kind() const noexcept { return kind_; }

    /// The error if the text is not JSON.
    [[nodiscard]] const Result<json::SourceMap, json::DecodingError>& map() const noexcept { return map_; }

    /// The library's error if JSON is not a document of this kind.
    [[nodiscard]] const std::optional<json::DecodingError>& decodingError() const noexcept {
        return decodingError_;
    }

    [[nodiscard]] const std::vector<Screen>& screens() const noexcept { return screens_; }

    [[nodiscard]] const json::SourceMap::Entry& entry(std::size_t number) const {
        return map_->entries()[number];
    }

    /// The decoded text of a string; std::nullopt for any other value.
    [[nodiscard]] std::optional<std::string> string(std::size_t number) const;
    /// As above, for a member; std::nullopt also if there is no such member.
    [[nodiscard]] std::optional<std::string> string(const Object& object, std::string_view key) const;
    /// Whether the screen treats the member as absent: no such member, null, empty text or an empty list.
    [[nodiscard]] bool isEmpty(const Object& object, std::string_view key) const;
    /// std::nullopt unless it is given and valid.
    [[nodiscard]] std::optional<UIColor> colour(const Object& object, std::string_view key) const;
    /// As the library decodes it, with the default for an absent one; std::nullopt if it is not an integer.
    [[nodiscard]] std::optional<std::int64_t> delay(const Object& object) const;

  private:
    void findScreens();
    void decode();
    [[nodiscard]] ScreenKind kindOfStep(const Object& step) const;

    std::string_view text_;
    std::optional<DocumentKind> kind_;
    Result<json::SourceMap, json::DecodingError> map_;
    std::optional<json::DecodingError> decodingError_;
    std::vector<Screen> screens_;
};

}  // namespace vorna::lint
