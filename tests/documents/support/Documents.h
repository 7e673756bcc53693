// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Shared by the tests of the screens' documents: the fields of the documents, written by hand and
/// independent of the library's tables, and documents made from them.

#include <vorna/base/Result.h>
#include <vorna/documents/DocumentField.h>
#include <vorna/documents/PaidProduct.h>
#include <vorna/json/DecodingError.h>

#include <map>
#include <string>
#include <string_view>
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
    /// Decodes an object of this type and encodes it again; returns the encoding, or the error.
    Result<std::string, json::DecodingError> (*recoded)(const std::string& object);
    /// The path of the object in an error.
    json::Path place;
};

const std::vector<ExpectedField>& paidProductFields();
const std::vector<ExpectedField>& paywallFields();
const std::vector<ExpectedField>& onboardingStepFields();
const std::vector<DocumentType>& documentTypes();

/// JSON by key.
using Values = std::map<std::string, std::string>;

/// An object with all fields in their order; those without a given value have their defaults.
std::string wholeObject(const std::vector<ExpectedField>& fields, const Values& values = {});

/// A value of the right type, as JSON, that validation accepts. Texts contain their key.
std::string filledValue(const ExpectedField& field);

/// An object with all fields filled, except for the given values.
std::string filledObject(const std::vector<ExpectedField>& fields, const Values& otherwise = {});

/// The product whose encoding is `filledObject(paidProductFields())`.
PaidProduct sampleProduct();

/// A text as JSON.
std::string jsonText(std::string_view text);

/// All code points that are white space or line breaks, each as UTF-8.
const std::vector<std::string>& whiteSpaces();

}  // namespace vorna::test
