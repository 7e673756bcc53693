// SPDX-License-Identifier: Apache-2.0
#include <tools/schemas/FieldText.h>

#include <tools/lint/Fields.h>

#include <gtest/gtest.h>

namespace vorna::schemas {
namespace {

TEST(FieldText, DescribesEveryField) {
    for (const RecordType record : {RecordType::paywall, RecordType::step, RecordType::product}) {
        for (const DocumentField& field : lint::fieldsOf(record)) {
            EXPECT_FALSE(fieldText(record, field.key).empty()) << field.key;
        }
    }
}

TEST(FieldText, DescribesNoOtherFieldAndNoneTwice) {
    std::size_t fields = 0;
    for (const RecordType record : {RecordType::paywall, RecordType::step, RecordType::product}) {
        fields += lint::fieldsOf(record).size();
    }
    EXPECT_EQ(fieldTexts().size(), fields);
    for (const FieldText& text : fieldTexts()) {
        EXPECT_NE(lint::findField(text.record, text.key), nullptr) << text.key;
        EXPECT_EQ(fieldText(text.record, text.key).data(), text.text.data())
            << text.key << " has two descriptions";
        EXPECT_EQ(text.text.find('|'), std::string_view::npos) << "ends the table's cell";
    }
}

}  // namespace
}  // namespace vorna::schemas
