// SPDX-License-Identifier: Apache-2.0
#pragma once

/// One step of an onboarding, and the document that lists the steps.

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

/// Always complete: decoded, or constructed from all values. The members are public; pass a const step where
/// it must not change.
class VORNA_EXPORT OnboardingStepsParameters {
  public:
    /// "basic" or "paywall"; validation rejects anything else, decoding does not.
    std::string type;
    /// Address of the image or the video.
    std::string media;
    /// A small line above the heading.
    std::string title;
    std::string titleColor;
    std::string heading;
    std::string headingColor;
    /// One line each.
    std::vector<std::string> details;
    std::string detailsColor;
    std::string buttonTitle;
    std::string buttonTitleColor;
    /// Address that a link of a paywall step opens.
    std::string termsOfUse;
    std::string termsOfUseColor;
    std::string footNote;
    std::string footNoteColor;
    std::vector<PaidProduct> paidProducts;
    /// Identifier of the product that is selected initially.
    std::string selectedPaidProduct;
    /// Seconds until the close button appears; immediately if zero or less.
    std::int64_t exitButtonDelay = 0;
    /// Address that a link of a paywall step opens.
    std::string privacyPolicy;
    std::string backgroundColor;
    /// The two ends of the button's gradient.
    std::string actionButtonColor1;
    std::string actionButtonColor2;
    std::string restoreButtonColor;
    std::string privacyPolicyColor;
    std::string exitButtonColor;

    /// Parameters are not in the order of the document: texts and addresses come first, colours last.
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

/// Decodes a document: an array of objects, one for each step, in display order. Every key may be absent or
/// null, which gives its default; the first step, and in it the first key in the order of the table, with a
/// value of another type fails the whole document, with an error that has an offset. A number may be written
/// 5, 5.0 or 5e0. Unknown keys are ignored; the last of duplicate keys wins. Text that is not UTF-8 is not
/// JSON either; check with `utf8::isValid` first to tell the two apart. Any thread; any bytes.
VORNA_EXPORT Result<std::vector<OnboardingStepsParameters>, json::DecodingError>
decodeOnboardingSteps(std::string_view json);

/// All keys of a step in the order of the table; the array of all steps. Fails for text that is not UTF-8.
VORNA_EXPORT Result<std::string, json::EncodingError> encode(const OnboardingStepsParameters& step);
VORNA_EXPORT Result<std::string, json::EncodingError>
encode(const std::vector<OnboardingStepsParameters>& steps);

}  // namespace vorna
