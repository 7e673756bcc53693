// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The document of a paywall.

#include <vorna/base/Export.h>
#include <vorna/base/Result.h>
#include <vorna/documents/DocumentField.h>
#include <vorna/documents/PaidProduct.h>
#include <vorna/json/DecodingError.h>
#include <vorna/json/EncodingError.h>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vorna {

/// Always complete: decoded, or constructed from all values. The members are public; pass a const document
/// where it must not change.
class VORNA_EXPORT PaywallParameters {
  public:
    /// Address of the image or the video at the top.
    std::string media;
    std::string heading;
    /// One line each.
    std::vector<std::string> details;
    std::vector<PaidProduct> paidProducts;
    /// Seconds until the close button appears; immediately if zero or less.
    std::int64_t exitButtonDelay = 0;
    /// Identifier of the product that is selected initially.
    std::string selectedPaidProduct;
    std::string buttonTitle;
    /// Addresses that the links open.
    std::string termsOfUse;
    std::string privacyPolicy;
    std::string footNote;
    std::string backgroundColor;
    /// The two ends of the button's gradient.
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

    /// Decodes a document. Every key may be absent or null, which gives its default; the first key in the
    /// order of the table with a value of another type fails the whole document, with an error that has an
    /// offset. A number may be written 5, 5.0 or 5e0. Unknown keys are ignored; the last of duplicate keys
    /// wins. Text that is not UTF-8 is not JSON either; check with `utf8::isValid` first to tell the two
    /// apart. Any thread; any bytes.
    static Result<PaywallParameters, json::DecodingError> decode(std::string_view json);

    /// The table of its fields.
    static std::span<const RecordField<PaywallParameters>> fields() noexcept;

    friend bool operator==(const PaywallParameters&, const PaywallParameters&) = default;

  private:
    friend struct DocumentAccess;
    PaywallParameters() = default;
};

/// All keys in the order of the table. Fails for text that is not UTF-8.
VORNA_EXPORT Result<std::string, json::EncodingError> encode(const PaywallParameters& paywall);

}  // namespace vorna
