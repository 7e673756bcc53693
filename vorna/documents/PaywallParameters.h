// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The document of a paywall.

#include <vorna/base/Export.h>
#include <vorna/documents/DocumentField.h>
#include <vorna/documents/PaidProduct.h>
#include <vorna/json/DecodingError.h>
#include <vorna/json/EncodingError.h>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace vorna {

/// Made whole, by decoding or from all its values; there is none without. The members are open: who must not
/// change a document is given a const one.
class VORNA_EXPORT PaywallParameters {
  public:
    /// Address of the image or the video at the top.
    std::string media;
    std::string heading;
    /// A line each.
    std::vector<std::string> details;
    std::vector<PaidProduct> paidProducts;
    /// Seconds until the close button appears; at once when zero or less.
    std::int64_t exitButtonDelay = 0;
    /// Identifier of the product that is selected at first.
    std::string selectedPaidProduct;
    std::string buttonTitle;
    /// Addresses that the links open.
    std::string termsOfUse;
    std::string privacyPolicy;
    std::string footNote;
    std::string backgroundColor;
    /// Where the gradient of the button begins and ends.
    std::string actionButtonColor1;
    std::string actionButtonColor2;
    std::string headingColor;
    std::string buttonTitleColor;
    std::string termsOfUseColor;
    std::string footNoteColor;
    std::string restoreButtonColor;
    std::string privacyPolicyColor;
    std::string detailsColor;
    std::string exitButtonColor;

    PaywallParameters(std::string media, std::string heading, std::vector<std::string> details,
                      std::vector<PaidProduct> paidProducts, std::int64_t exitButtonDelay,
                      std::string selectedPaidProduct, std::string buttonTitle, std::string termsOfUse,
                      std::string privacyPolicy, std::string footNote, std::string backgroundColor,
                      std::string actionButtonColor1, std::string actionButtonColor2,
                      std::string headingColor, std::string buttonTitleColor, std::string termsOfUseColor,
                      std::string footNoteColor, std::string restoreButtonColor,
                      std::string privacyPolicyColor, std::string detailsColor, std::string exitButtonColor);

    /// Reads a document. Every key may be absent or null and stands for its default then; the first in the
    /// order of the table that holds another type of value fails the document as a whole, and the error tells
    /// path and position. A number may be written 5, 5.0 or 5e0. Keys that no field has are ignored, of equal
    /// keys the last holds.
    /// A text that is not UTF-8 fails like any other that is not JSON; `utf8::isValid` tells it apart
    /// beforehand. Any thread; any bytes.
    static std::variant<PaywallParameters, json::DecodingError> decode(std::string_view json);

    /// The table of its fields.
    static std::span<const RecordField<PaywallParameters>> fields() noexcept;

    friend bool operator==(const PaywallParameters&, const PaywallParameters&) = default;

  private:
    friend struct DocumentAccess;
    PaywallParameters() = default;
};

/// All keys in the order of the table. Fails for text that is not UTF-8.
VORNA_EXPORT std::variant<std::string, json::EncodingError> encode(const PaywallParameters& paywall);

}  // namespace vorna
