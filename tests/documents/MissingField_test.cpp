// SPDX-License-Identifier: Apache-2.0
#include <vorna/documents/MissingField.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace vorna {
namespace {

using json::Path;
using Reason = MissingField::Reason;

TEST(MissingField, IsListedByItsPath) {
    EXPECT_EQ(listedName({Path{"heading"}, Reason::blank}), "heading");
    EXPECT_EQ(listedName({Path{"details"}, Reason::noLines}), "details");
    EXPECT_EQ(listedName({Path{"paidProducts", 12U, "price"}, Reason::blank}), "paidProducts[12].price");
}

TEST(MissingField, IsListedWithARemarkIfItIsMoreThanBlank) {
    EXPECT_EQ(listedName({Path{"paidProducts"}, Reason::noProducts}), "paidProducts (boş)");
    EXPECT_EQ(listedName({Path{"type"}, Reason::unknownType}), "type (geçersiz)");
}

TEST(MissingField, IsSortedBytewise) {
    const std::vector<MissingField> fields{
        {Path{"paidProducts", 2U, "price"}, Reason::blank},
        {Path{"paidProducts", 10U, "price"}, Reason::blank},
        {Path{"paidProducts"}, Reason::noProducts},
        {Path{"media"}, Reason::blank},
        {Path{"actionButtonColor1"}, Reason::blank},
    };
    EXPECT_THAT(listedNames(fields), testing::ElementsAre("actionButtonColor1", "media", "paidProducts (boş)",
                                                          "paidProducts[10].price", "paidProducts[2].price"));
    EXPECT_THAT(listedNames({}), testing::IsEmpty());
}

}  // namespace
}  // namespace vorna
