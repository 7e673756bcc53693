// SPDX-License-Identifier: Apache-2.0
#pragma once

/// One product that a paywall or a paywall step offers.

#include <vorna/base/Export.h>
#include <vorna/documents/DocumentField.h>
#include <vorna/json/DecodingError.h>
#include <vorna/json/EncodingError.h>

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

namespace vorna {

/// Made whole, by decoding or from all its values; there is none without. The members are open: who must not
/// change a product is given a const one. A product that was decoded holds no absent text, since an absent
/// key gives an empty text; only the constructor leaves one out.
class VORNA_EXPORT PaidProduct {
  public:
    /// The first line of the cell.
    std::string title;
    /// Shown as given.
    std::string price;
    /// Of the product in the store; handed to the host on taps.
    std::string identifier;
    std::string selectedBackgroundColor;
    std::string unselectedBackgroundColor;
    /// The colour of the border and of the shadow.
    std::string selectedBorderColor;
    std::string unselectedBorderColor;
    /// A small tag under the price; none when empty or absent.
    std::optional<std::string> tagText;
    /// A badge on the cell's upper edge; none when empty or absent.
    std::optional<std::string> badgeText;
    std::optional<std::string> badgeSelectedColor;
    std::optional<std::string> badgeUnselectedColor;
    std::optional<std::string> tagSelectedColor;
    std::optional<std::string> tagUnselectedColor;
    /// Small text under the title; none when empty or absent.
    std::optional<std::string> descriptionText;
    std::optional<std::string> badgeTextColor;
    std::string titleColor;
    std::string priceColor;
    std::optional<std::string> tagTextColor;
    std::optional<std::string> descriptionTextColor;

    PaidProduct(std::string title, std::string price, std::string identifier,
                std::string selectedBackgroundColor, std::string unselectedBackgroundColor,
                std::string selectedBorderColor, std::string unselectedBorderColor,
                std::optional<std::string> tagText, std::optional<std::string> badgeText,
                std::optional<std::string> badgeSelectedColor,
                std::optional<std::string> badgeUnselectedColor, std::optional<std::string> tagSelectedColor,
                std::optional<std::string> tagUnselectedColor, std::optional<std::string> descriptionText,
                std::optional<std::string> badgeTextColor, std::string titleColor, std::string priceColor,
                std::optional<std::string> tagTextColor, std::optional<std::string> descriptionTextColor);

    /// Reads one product. Every key may be absent or null; one that holds no text fails the product as a
    /// whole. Keys that no field has are ignored, of equal keys the last holds. Any thread; any bytes.
    static std::variant<PaidProduct, json::DecodingError> decode(std::string_view json);

    /// The table of its fields.
    static std::span<const RecordField<PaidProduct>> fields() noexcept;

    friend bool operator==(const PaidProduct&, const PaidProduct&) = default;

  private:
    friend struct DocumentAccess;
    PaidProduct() = default;
};

/// All keys in the order of the table, without the texts that are absent. Fails for text that is not UTF-8.
VORNA_EXPORT std::variant<std::string, json::EncodingError> encode(const PaidProduct& product);

}  // namespace vorna
