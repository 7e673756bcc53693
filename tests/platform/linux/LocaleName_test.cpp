// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/linux/LocaleName.h>

#include <tests/platform/linux/SystemTree.h>

#include <gtest/gtest.h>

namespace vorna {
namespace {

using tests::environmentOf;

struct Row {
    const char* localeName;
    const char* identifier;
};

TEST(LocaleIdentifier, HasNeitherCodesetNorModifier) {
    for (const Row& row :
         {Row{"tr_TR.UTF-8", "tr_TR"}, Row{"tr_TR", "tr_TR"}, Row{"de", "de"}, Row{"sr_RS@latin", "sr_RS"},
          Row{"ca_ES.UTF-8@valencia", "ca_ES"}, Row{"en_GB.ISO-8859-15", "en_GB"}}) {
        EXPECT_EQ(localeIdentifier(row.localeName), row.identifier) << row.localeName;
    }
}

TEST(LocaleIdentifier, OfTheCLocaleIsThatOfPosix) {
    for (const char* const name : {"C", "POSIX", "", "C.UTF-8", "C.utf8", "POSIX.UTF-8", ".UTF-8"}) {
        EXPECT_EQ(localeIdentifier(name), "en_US_POSIX") << name;
    }
}

TEST(MessagesLocale, TheVariableOfHighestPriorityDecides) {
    EXPECT_EQ(messagesLocale(environmentOf({{"LANG", "de_DE.UTF-8"}})), "de_DE");
    EXPECT_EQ(messagesLocale(environmentOf({{"LANG", "de_DE.UTF-8"}, {"LC_MESSAGES", "tr_TR.UTF-8"}})),
              "tr_TR");
    EXPECT_EQ(
        messagesLocale(environmentOf({{"LANG", "de_DE"}, {"LC_MESSAGES", "tr_TR"}, {"LC_ALL", "fr_FR"}})),
        "fr_FR");
}

TEST(MessagesLocale, AnEmptyVariableIsIgnoredButNotTheCLocale) {
    EXPECT_EQ(messagesLocale(environmentOf({{"LC_ALL", ""}, {"LC_MESSAGES", ""}, {"LANG", "de_DE"}})),
              "de_DE");
    EXPECT_EQ(messagesLocale(environmentOf({{"LC_ALL", "C"}, {"LANG", "de_DE"}})), "en_US_POSIX");
}

TEST(MessagesLocale, IsThePosixOneIfNothingIsSet) {
    EXPECT_EQ(messagesLocale(environmentOf({})), "en_US_POSIX");
}

}  // namespace
}  // namespace vorna
