// SPDX-License-Identifier: Apache-2.0
#pragma once

/// What the tests of the screens' documents share: what the documents hold, written down by hand and apart
/// from the library's tables, and documents made from that.

#include <vorna/documents/DocumentField.h>
#include <vorna/documents/PaidProduct.h>
#include <vorna/json/DecodingError.h>

#include <map>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace vorna::test {

struct ExpectedField {
    const char* key;
    FieldKind kind;
    FieldRequirement required;
    /// As JSON.
    const char* defaultText = R"("")";
};

/// A kind of document.
struct DocumentType {
    const char* name;
    /// In the order of encoding.
    const std::vector<ExpectedField>& fields;
    /// Decodes an object of this type and gives its encoding, or the error.
    std::variant<std::string, json::DecodingError> (*recoded)(const std::string& object);
    /// What stands before a key in the path of an error.
    const char* place;
};

const std::vector<ExpectedField>& paidProductFields();
const std::vector<ExpectedField>& paywallFields();
const std::vector<ExpectedField>& onboardingStepFields();
const std::vector<DocumentType>& documentTypes();

/// JSON by key.
using Values = std::map<std::string, std::string>;

/// An object with all fields in their order; those that no value is given for have their defaults.
std::string wholeObject(const std::vector<ExpectedField>& fields, const Values& values = {});

/// A value of the right type, as JSON, that validation has nothing against. Texts tell their key.
std::string filledValue(const ExpectedField& field);

/// An object with all fields filled but those that are given otherwise.
std::string filledObject(const std::vector<ExpectedField>& fields, const Values& otherwise = {});

/// The product of which `filledObject` is the encoding.
PaidProduct sampleProduct();

/// A text as JSON.
std::string jsonText(std::string_view text);

/// All code points that are white space or line breaks, each as UTF-8.
const std::vector<std::string>& whiteSpaces();

}  // namespace vorna::test
