// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/linux/VendorIdentifier.h>

#include <tests/platform/linux/SystemTree.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace vorna {
namespace {

constexpr const char* machineId = "0f1e2d3c4b5a69788796a5b4c3d2e1f0\n";

TEST(VendorOf, IsAllButTheLastComponent) {
    EXPECT_EQ(vendorOf("com.example.app"), "com.example");
    EXPECT_EQ(vendorOf("com.example.app.extension"), "com.example.app");
    EXPECT_EQ(vendorOf("example.app"), "example");
    EXPECT_EQ(vendorOf("com.example."), "com.example");
}

TEST(VendorOf, AnIdentifierWithoutComponentsIsItsOwnVendor) {
    EXPECT_EQ(vendorOf("game"), "game");
    EXPECT_EQ(vendorOf(".game"), ".game");
    EXPECT_EQ(vendorOf(""), "");
}

// The expected text was computed independently, with Python's hmac and hashlib.
TEST(IdentifierForVendor, IsTheVendorsNameHashedUnderTheMachinesIdentifier) {
    EXPECT_EQ(identifierForVendor(machineId, "com.example"), "F67BFABE-847C-8FBD-8742-DCF2493F68C3");
}

/// x matches any upper-case hexadecimal digit, y one of 8, 9, A and B.
bool hasForm(std::string_view text, std::string_view form) {
    return std::ranges::equal(text, form, [](char character, char kind) {
        const std::string_view allowed = kind == 'x' ? "0123456789ABCDEF" : "89AB";
        return kind == 'x' || kind == 'y' ? allowed.find(character) != std::string_view::npos
                                          : character == kind;
    });
}

TEST(IdentifierForVendor, IsAnUpperCaseUuidOfVersion8) {
    std::set<std::string> different;
    for (int number = 0; number < 200; ++number) {
        const auto identifier = identifierForVendor(machineId, "vendor" + std::to_string(number));
        ASSERT_TRUE(identifier && hasForm(*identifier, "xxxxxxxx-xxxx-8xxx-yxxx-xxxxxxxxxxxx")) << number;
        different.insert(*identifier);
    }
    EXPECT_EQ(different.size(), 200U);
}

TEST(IdentifierForVendor, DiffersBetweenMachines) {
    EXPECT_NE(identifierForVendor(machineId, "com.example"),
              identifierForVendor("1f1e2d3c4b5a69788796a5b4c3d2e1f0", "com.example"));
}

TEST(IdentifierForVendor, DoesNotDependOnTheFormatOfTheMachinesIdentifier) {
    EXPECT_EQ(identifierForVendor(machineId, "v"),
              identifierForVendor("0F1E2D3C4B5A69788796A5B4C3D2E1F0", "v"));
}

TEST(IdentifierForVendor, DoesNotExistIfTheMachineHasNoIdentifier) {
    for (const char* const contents :
         {"", "\n", "uninitialized\n", "0f1e2d3c4b5a69788796a5b4c3d2e1f", "0f1e2d3c4b5a69788796a5b4c3d2e1f00",
          "0f1e2d3c4b5a69788796a5b4c3d2e1g0", "+f1e2d3c4b5a69788796a5b4c3d2e1f0",
          "00000000000000000000000000000000"}) {
        EXPECT_EQ(identifierForVendor(contents, "com.example"), std::nullopt) << contents;
    }
}

struct Row {
    const char* tree = nullptr;
    std::optional<std::string> identifier;
};

TEST(IdentifierForVendor, IsCorrectForTheStoredSystems) {
    for (const Row& row : {Row{"pinephone-postmarketos", "F67BFABE-847C-8FBD-8742-DCF2493F68C3"},
                           Row{"desktop-debian", "AB5A8C3B-83F0-8741-AA8A-0E82A332B6ED"},
                           // Only D-Bus has an identifier of this machine.
                           Row{"raspberry-pi", "851707F8-4FB2-8A2B-BB20-A34E54DCDDFD"},
                           Row{"olimex-lime2-archlinuxarm", std::nullopt},
                           Row{"alpine-container", std::nullopt}, Row{"laptop-opensuse", std::nullopt}}) {
        EXPECT_EQ(readIdentifierForVendor(tests::systemTree(row.tree), "com.example"), row.identifier)
            << row.tree;
    }
}

}  // namespace
}  // namespace vorna
