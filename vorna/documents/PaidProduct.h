// SPDX-License-Identifier: Apache-2.0
#pragma once

/// One product that a paywall or a paywall step offers.

#include <vorna/base/Export.h>
#include <vorna/base/Result.h>
#include <vorna/documents/DocumentField.h>
#include <vorna/json/DecodingError.h>
#include <vorna/json/EncodingError.h>

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace vorna {

/// Always complete: decoded, or constructed from all values. The members are public; pass a const product
/// where it must not change. Decoding never yields std::nullopt, since an absent key becomes an empty text;
/// only the constructor can leave a text out.
class VORNA_EXPORT PaidProduct {
  public:
    /// The first line of the cell.
    std::string title;
    /// Shown unchanged.
    std::string price;
    /// The product's identifier in the store; passed to the host on taps.
    std::string identifier;
    std::string selectedBackgroundColor;
    std::string unselectedBackgroundColor;
    /// The colour of the border and of the shadow.
    std::string selectedBorderColor;
    std::string unselectedBorderColor;
    /// A small tag under the price; none if empty or absent.
    std::optional<std::string> tagText;
    /// A badge on the cell's upper edge; none if empty or absent.
    std::optional<std::string> badgeText;
    std::optional<std::string> badgeSelectedColor;
    std::optional<std::string> badgeUnselectedColor;
    std::optional<std::string> tagSelectedColor;
    std::optional<std::string> tagUnselectedColor;
    /// Small text under the title; none if empty or absent.
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

    /// Decodes one product. Every key may be absent or null; any value that is not text fails the whole
    /// product. Unknown keys are ignored; the last of duplicate keys wins. Any thread; any bytes.
    static Result<PaidProduct, json::DecodingError> decode(std::string_view json);

    /// The table of its fields.
    static std::span<const RecordField<PaidProduct>> fields() noexcept;

    friend bool operator==(const PaidProduct&, const PaidProduct&) = default;

  private:
    friend struct DocumentAccess;
    PaidProduct() = default;
};

/// All keys in the order of the table, without absent texts. Fails for text that is not UTF-8.
VORNA_EXPORT Result<std::string, json::EncodingError> encode(const PaidProduct& product);

}  // namespace vorna
