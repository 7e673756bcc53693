// SPDX-License-Identifier: Apache-2.0
#pragma once

/// One step of an onboarding, and the document that lists them.

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
/// change a step is given a const one.
class VORNA_EXPORT OnboardingStepsParameters {
  public:
    /// "basic" or "paywall"; anything else is refused by validation, not by decoding.
    std::string type;
    /// Address of the image or the video.
    std::string media;
    /// A small line over the heading.
    std::string title;
    std::string titleColor;
    std::string heading;
    std::string headingColor;
    /// A line each.
    std::vector<std::string> details;
    std::string detailsColor;
    std::string buttonTitle;
    std::string buttonTitleColor;
    /// Address that the link of a paywall step opens.
    std::string termsOfUse;
    std::string termsOfUseColor;
    std::string footNote;
    std::string footNoteColor;
    std::vector<PaidProduct> paidProducts;
    /// Identifier of the product that is selected at first.
    std::string selectedPaidProduct;
    /// Seconds until the close button appears; at once when zero or less.
    std::int64_t exitButtonDelay = 0;
    /// Address that the link of a paywall step opens.
    std::string privacyPolicy;
    std::string backgroundColor;
    /// Where the gradient of the button begins and ends.
    std::string actionButtonColor1;
    std::string actionButtonColor2;
    std::string restoreButtonColor;
    std::string privacyPolicyColor;
    std::string exitButtonColor;

    /// The order is not that of the document: the texts and what they open come first, the colours last.
    OnboardingStepsParameters(std::string type, std::string media, std::string heading,
                              std::vector<std::string> details, std::string buttonTitle,
                              std::vector<PaidProduct> paidProducts, std::string selectedPaidProduct,
                              std::int64_t exitButtonDelay, std::string termsOfUse, std::string privacyPolicy,
                              std::string title, std::string footNote, std::string backgroundColor,
                              std::string actionButtonColor1, std::string actionButtonColor2,
                              std::string detailsColor, std::string titleColor, std::string headingColor,
                              std::string buttonTitleColor, std::string termsOfUseColor,
                              std::string footNoteColor, std::string restoreButtonColor,
                              std::string privacyPolicyColor, std::string exitButtonColor);

    /// The table of its fields.
    static std::span<const RecordField<OnboardingStepsParameters>> fields() noexcept;

    friend bool operator==(const OnboardingStepsParameters&, const OnboardingStepsParameters&) = default;

  private:
    friend struct DocumentAccess;
    OnboardingStepsParameters() = default;
};

/// Reads a document: an array of objects, one for each step, in the order of showing. Every key may be absent
/// or null and stands for its default then; the first step, and in it the first key in the order of the
/// table, that holds another type of value fails the document as a whole, and the error tells path and
/// position. A number may be written 5, 5.0 or 5e0. Keys that no field has are ignored, of equal keys the
/// last holds.
/// A text that is not UTF-8 fails like any other that is not JSON; `utf8::isValid` tells it apart
/// beforehand. Any thread; any bytes.
VORNA_EXPORT std::variant<std::vector<OnboardingStepsParameters>, json::DecodingError>
decodeOnboardingSteps(std::string_view json);

/// All keys of a step in the order of the table; the array of the steps. Fails for text that is not UTF-8.
VORNA_EXPORT std::variant<std::string, json::EncodingError> encode(const OnboardingStepsParameters& step);
VORNA_EXPORT std::variant<std::string, json::EncodingError>
encode(const std::vector<OnboardingStepsParameters>& steps);

}  // namespace vorna
