// SPDX-License-Identifier: Apache-2.0
#include <vorna/documents/DocumentCoding.h>

#include <tests/documents/support/Documents.h>

#include <vorna/documents/OnboardingStepsParameters.h>
#include <vorna/documents/PaidProduct.h>
#include <vorna/documents/PaywallParameters.h>
#include <vorna/json/SourceMap.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace vorna {
namespace {

using test::DocumentType;
using test::documentTypes;
using test::ExpectedField;
using test::filledValue;
using test::jsonText;
using test::wholeObject;

struct FieldCase {
    const DocumentType* document;
    const ExpectedField* field;
};

std::vector<FieldCase> allFields() {
    std::vector<FieldCase> cases;
    for (const DocumentType& document : documentTypes()) {
        for (const ExpectedField& field : document.fields) {
            cases.push_back({&document, &field});
        }
    }
    return cases;
}

class EveryField : public testing::TestWithParam<FieldCase> {
  protected:
    const DocumentType& document() const { return *GetParam().document; }

    const ExpectedField& field() const { return *GetParam().field; }

    std::string objectWith(const std::string& value) const {
        return "{" + jsonText(field().key) + ":" + value + "}";
    }

    /// The document after decoding and encoding, or the error.
    std::string recoded(const std::string& object) const {
        const auto result = document().recoded(object);
        return result ? *result : json::describe(result.error(), object);
    }

    json::Path path() const {
        json::Path path = document().place;
        path.append(std::string_view(field().key));
        return path;
    }
};

TEST_P(EveryField, DefaultsWhenAbsentOrNull) {
    EXPECT_EQ(recoded("{}"), wholeObject(document().fields));
    EXPECT_EQ(recoded(objectWith("null")), wholeObject(document().fields));
}

TEST_P(EveryField, KeepsItsValue) {
    const std::string value = filledValue(field());
    const std::string expected = wholeObject(document().fields, {{field().key, value}});
    EXPECT_EQ(recoded(objectWith(value)), expected);
    EXPECT_EQ(recoded(expected), expected);
}

TEST_P(EveryField, KeepsTextsUnchanged) {
    if (filledValue(field()).front() == '"') {
        for (const char* const text : {"", "  ", "Ücretsiz dene 🎉", "\n\"\\/"}) {
            EXPECT_EQ(recoded(objectWith(jsonText(text))),
                      wholeObject(document().fields, {{field().key, jsonText(text)}}));
        }
    }
}

TEST_P(EveryField, UsesTheLastOfDuplicateKeys) {
    const std::string key = jsonText(field().key);
    const std::string value = filledValue(field());
    const std::string expected = wholeObject(document().fields, {{field().key, value}});
    EXPECT_EQ(recoded("{" + key + ":false," + key + ":" + value + "}"), expected);
    EXPECT_EQ(recoded("{" + key + ":" + value + "," + key + ":null}"), wholeObject(document().fields));
}

TEST_P(EveryField, FailsTheDocumentWithAValueOfAnotherType) {
    using json::Kind;
    const std::vector<std::pair<std::string, Kind>> values = {
        {R"("5")", Kind::string}, {"true", Kind::boolean}, {"false", Kind::boolean}, {"7", Kind::number},
        {"0.5", Kind::number},    {"[]", Kind::array},     {"{}", Kind::object},
    };
    const std::string right = filledValue(field()).substr(0, 1);
    const std::string expected = right == "5" ? "a 64-bit integer" : right == "[" ? "an array" : "a string";
    std::size_t wrong = 0;
    for (const auto& [value, kind] : values) {
        if (right == value.substr(0, 1) || (right == "5" && value == "7")) {
            continue;
        }
        const auto result = document().recoded(objectWith(value));
        ASSERT_FALSE(result) << value;
        const auto& error = result.error();
        EXPECT_EQ(error.path, path());
        EXPECT_EQ(error.expected, expected);
        EXPECT_EQ(error.found, right == "5" && value == "0.5"
                                   ? json::DecodingError::Found(json::DecodingError::Number{value})
                                   : json::DecodingError::Found(kind));
        ++wrong;
    }
    EXPECT_EQ(wrong, 6U);
}

TEST_P(EveryField, FailsTheDocumentWithAnElementOfAnotherType) {
    if (filledValue(field()).front() != '[') {
        return;
    }
    const bool isLines = field().kind == FieldKind::lines;
    for (const char* const element : {"null", "7", "true", "[]", isLines ? "{}" : R"("text")"}) {
        const std::string array = std::string("[") + (isLines ? R"("a")" : "{}") + "," + element + "]";
        const auto result = document().recoded(objectWith(array));
        ASSERT_FALSE(result) << array;
        const auto& error = result.error();
        json::Path second = path();
        second.append(std::size_t{1});
        EXPECT_EQ(error.path, second);
        EXPECT_EQ(error.expected, isLines ? "a string" : "an object");
    }
}

INSTANTIATE_TEST_SUITE_P(Cases, EveryField, testing::ValuesIn(allFields()), [](const auto& testCase) {
    return std::string(testCase.param.document->name) + "_" + testCase.param.field->key;
});

template <class Record>
void expectTable(const std::vector<ExpectedField>& expected) {
    const std::span<const RecordField<Record>> fields = Record::fields();
    ASSERT_EQ(fields.size(), expected.size());
    for (std::size_t index = 0; index < fields.size(); ++index) {
        const DocumentField& field = fields[index];
        EXPECT_EQ(field.key, expected[index].key);
        EXPECT_EQ(field.kind, expected[index].kind) << field.key;
        EXPECT_EQ(field.required, expected[index].required) << field.key;
        const std::string value = filledValue(expected[index]);
        EXPECT_EQ(field.type(), value.front() == '"'                          ? FieldType::string
                                : value.front() != '['                        ? FieldType::integer
                                : expected[index].kind == FieldKind::products ? FieldType::products
                                                                              : FieldType::strings)
            << field.key;
        const std::string defaultText = field.type() == FieldType::string ? jsonText(field.textDefault)
                                        : field.type() == FieldType::integer
                                            ? std::to_string(field.numberDefault)
                                            : "[]";
        EXPECT_EQ(defaultText, expected[index].defaultText) << field.key;
    }
}

TEST(DocumentTables, MatchTheDocuments) {
    expectTable<PaidProduct>(test::paidProductFields());
    expectTable<PaywallParameters>(test::paywallFields());
    expectTable<OnboardingStepsParameters>(test::onboardingStepFields());
}

TEST(DocumentTables, GiveAccessToTheMembers) {
    const auto paywall = PaywallParameters::decode(R"({"details":["a","b"],"heading":"h"})").value();
    std::size_t visited = 0;
    visitFields(paywall, [&](const DocumentField& field, const auto& value) {
        ++visited;
        if constexpr (std::is_same_v<decltype(value), const std::string&>) {
            if (field.key == "heading") {
                EXPECT_EQ(&value, &paywall.heading);
            }
        }
    });
    EXPECT_EQ(visited, 21U);
}

std::string problemOf(const std::string& text) {
    const auto decoded = PaywallParameters::decode(text);
    return decoded ? "none" : json::describe(decoded.error(), text);
}

struct PlaceCase {
    const char* name;
    std::string text;
    const char* problem;
};

class DocumentErrors : public testing::TestWithParam<PlaceCase> {};

TEST_P(DocumentErrors, HavePositionPathAndReason) {
    EXPECT_EQ(problemOf(GetParam().text), GetParam().problem);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, DocumentErrors,
    testing::Values(
        PlaceCase{"OneLine", R"({"media": 7})",
                  "line 1, column 11: media: expected a string, found a number"},
        PlaceCase{"SeveralLines",
                  "{\n  \"heading\": \"a\",\n  \"paidProducts\": [{},\n    {\"price\":\n 7}]}",
                  "line 5, column 2: paidProducts[1].price: expected a string, found a number"},
        PlaceCase{"LinesThatEndAsOnWindows", "{\r\n\"heading\":\r\n  []}",
                  "line 3, column 3: heading: expected a string, found an array"},
        PlaceCase{"LettersOfSeveralBytesBefore", "{\"heading\":\"çğış😀\",\"media\":7}",
                  "line 1, column 28: media: expected a string, found a number"},
        PlaceCase{"TabsBefore", "\t\t{\"media\":\t7}",
                  "line 1, column 13: media: expected a string, found a number"},
        PlaceCase{"AKeyWrittenWithEscapes", R"({"\u006dedia":7})",
                  "line 1, column 15: media: expected a string, found a number"},
        PlaceCase{"AnEscapedQuotationMarkBefore", R"({"a\"}]":"\\","media":7})",
                  "line 1, column 23: media: expected a string, found a number"},
        PlaceCase{"LastOfDuplicateKeys", R"({"media":7,"media":"x","media":true})",
                  "line 1, column 32: media: expected a string, found a boolean"},
        PlaceCase{"DuplicateKeysWrittenDifferently", R"({"media":7,"medi\u0061":[]})",
                  "line 1, column 25: media: expected a string, found an array"},
        PlaceCase{"BelowDuplicateKeys", R"({"paidProducts":[{"title":1}],"paidProducts":[{},{"title":2}]})",
                  "line 1, column 59: paidProducts[1].title: expected a string, found a number"},
        PlaceCase{"KeysWithDotsAndBrackets",
                  R"({"paidProducts[0].title":1,"a":{"media":2},"paidProducts":[{"title":3}]})",
                  "line 1, column 69: paidProducts[0].title: expected a string, found a number"},
        PlaceCase{"TheFirstInTheOrderOfTheTable", R"({"exitButtonColor":1,"details":2,"heading":3,"x":4})",
                  "line 1, column 44: heading: expected a string, found a number"},
        PlaceCase{"ALine", R"({"details":["a", "b", {"c":[]}]})",
                  "line 1, column 23: details[2]: expected a string, found an object"},
        PlaceCase{"ALongNumber", R"({"exitButtonDelay" : 99999999999999999999 })",
                  "line 1, column 22: exitButtonDelay: expected a 64-bit integer, found the number "
                  "99999999999999999999"},
        PlaceCase{"TheTop", "\n []", "line 2, column 2: expected an object, found an array"},
        PlaceCase{"Malformed", "{\n  \"media\": tru}", "line 2, column 12: syntax error"},
        PlaceCase{"MalformedBehindLettersOfSeveralBytes", "{\"ğ\":\"😀\" x",
                  "line 1, column 10: syntax error"},
        PlaceCase{"Empty", "", "line 1, column 1: incomplete JSON"},
        PlaceCase{"Blank", "  \n", "line 2, column 1: incomplete JSON"},
        PlaceCase{"CutOff", R"({"media":")", "line 1, column 11: incomplete JSON"},
        PlaceCase{"SomethingBehind", "{} {}", "line 1, column 4: extra data"},
        PlaceCase{"AByteOrderMark", "\xEF\xBB\xBF{}", "line 1, column 1: syntax error"}),
    [](const auto& testCase) { return testCase.param.name; });

TEST(DocumentErrors, AreValues) {
    const std::string text = "{\n \"paidProducts\":[{},{\"price\":7}]}";
    EXPECT_EQ(PaywallParameters::decode(text).error(),
              (json::DecodingError{text.find('7'), json::Path{"paidProducts", 1U, "price"}, "a string",
                                   json::Kind::number}));
    EXPECT_EQ(
        PaywallParameters::decode("{").error(),
        (json::DecodingError{1, json::Path{}, "JSON", json::DecodingError::Malformed{"incomplete JSON"}}));
}

TEST(Documents, IgnoreUnknownKeys) {
    EXPECT_EQ(problemOf(R"({"Media":7,"unknown":{"media":[1,2]},"":null})"), "none");
}

TEST(Documents, MustBeUtf8) {
    EXPECT_NE(problemOf("{\"media\":\"\xFF\"}"), "none");
    EXPECT_NE(problemOf("{\"media\":\"\xED\xA0\x80\"}"), "none");
    EXPECT_NE(problemOf("{\"unknown\":\"\xC0\x80\"}"), "none");
    EXPECT_NE(problemOf("{\"\xFF\":7}"), "none");
    EXPECT_NE(problemOf(R"({"media":"\ud800"})"), "none");
}

TEST(Documents, MayBeNestedUpTo512Levels) {
    const auto nested = [](std::size_t arrays) {
        return R"({"unknown":)" + std::string(arrays, '[') + std::string(arrays, ']') + "}";
    };
    EXPECT_EQ(problemOf(nested(511)), "none");
    EXPECT_NE(problemOf(nested(512)), "none");
    EXPECT_NE(problemOf(nested(1'000'000)), "none");
    EXPECT_EQ(problemOf(R"({"media":)" + std::string(511, '[') + std::string(511, ']') + "}"),
              "line 1, column 10: media: expected a string, found an array");
}

/// Generous enough for an unoptimised build on a busy machine, but not for an algorithm of quadratic time.
template <class Work>
void expectIsQuick(Work work) {
    const auto began = std::chrono::steady_clock::now();
    work();
    EXPECT_LT(std::chrono::steady_clock::now() - began, std::chrono::seconds(10));
}

TEST(LargeDocuments, MayHoldTenMebibytesOfText) {
    const std::string text(std::size_t{10} << 20U, 'x');
    expectIsQuick([&] {
        const auto paywall = PaywallParameters::decode(R"({"heading":")" + text + "\"}").value();
        EXPECT_EQ(paywall.heading, text);
    });
}

TEST(LargeDocuments, MayHoldTenThousandProducts) {
    std::string text = R"({"paidProducts":[{"price":"0"})";
    for (int index = 1; index < 10'000; ++index) {
        text += R"(,{"price":")" + std::to_string(index) + R"("})";
    }
    expectIsQuick([&] {
        const auto paywall = PaywallParameters::decode(text + "]}").value();
        ASSERT_EQ(paywall.paidProducts.size(), 10'000U);
        EXPECT_EQ(paywall.paidProducts.back().price, "9999");
    });
    expectIsQuick([&] {
        const auto error = PaywallParameters::decode(text + ",\n7]}").error();
        EXPECT_EQ(error.path, (json::Path{"paidProducts", 10'000U}));
        EXPECT_EQ(error.offset, text.size() + 2);
    });
}

TEST(LargeDocuments, MayHoldAHundredThousandSteps) {
    std::string text = R"([{"type":"basic"})";
    for (int index = 1; index < 100'000; ++index) {
        text += R"(,{"type":"basic","exitButtonDelay":5.0})";
    }
    expectIsQuick([&] {
        const auto steps = decodeOnboardingSteps(text + "]").value();
        ASSERT_EQ(steps.size(), 100'000U);
        EXPECT_EQ(steps.back().exitButtonDelay, 5);
    });
    expectIsQuick([&] {
        const std::string wrong = text + ",\r\n{\"type\":null,\"title\":0}]";
        EXPECT_EQ(json::describe(decodeOnboardingSteps(wrong).error(), wrong),
                  "line 2, column 22: [100000].title: expected a string, found a number");
    });
}

TEST(LargeDocuments, MayHaveManyUnknownAndDuplicateKeys) {
    std::string text = R"({"media":"first")";
    for (int index = 0; index < 100'000; ++index) {
        text += ",\"key" + std::to_string(index) + "\":0,\"media\":\"later\"";
    }
    expectIsQuick([&] { EXPECT_EQ(PaywallParameters::decode(text + "}").value().media, "later"); });
}

}  // namespace
}  // namespace vorna
