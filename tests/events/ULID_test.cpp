// SPDX-License-Identifier: Apache-2.0
#include <vorna/events/ULID.h>

#include <vorna/events/ULIDCoding.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iostream>
#include <limits>
#include <optional>
#include <ostream>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace vorna {

std::ostream& operator<<(std::ostream& stream, const ULID& ulid) {
    return stream << ulid.ulidString();
}

namespace {

constexpr ULID::Bytes allOnes = [] {
    ULID::Bytes bytes{};
    bytes.fill(0xFF);
    return bytes;
}();

/// Returns given numbers and records in which order the two kinds were drawn.
class GivenNumbers final : public RandomSource {
  public:
    GivenNumbers(std::uint16_t first, std::uint64_t second) : first_(first), second_(second) {}

    std::uint16_t next16() override {
        asked += "16 ";
        return first_;
    }

    std::uint64_t next64() override {
        asked += "64 ";
        return second_;
    }

    std::string asked;

  private:
    std::uint16_t first_;
    std::uint64_t second_;
};

/// The encoding by definition, bit by bit.
std::string textBitByBit(const ULID::Bytes& bytes) {
    constexpr std::string_view alphabet = "0123456789ABCDEFGHJKMNPQRSTVWXYZ";
    std::vector<int> bits(32, 0);
    for (const std::uint8_t byte : bytes) {
        for (int bit = 7; bit >= 0; --bit) {
            bits.push_back(byte >> bit & 1);
        }
    }
    std::string text;
    for (std::size_t start = 0; start < bits.size(); start += 5) {
        std::size_t value = 0;
        for (std::size_t bit = 0; bit < 5; ++bit) {
            value = value * 2 + static_cast<std::size_t>(bits[start + bit]);
        }
        text += alphabet[value];
    }
    return text.substr(6);
}

ULID randomULID(std::mt19937_64& generator) {
    ULID::Bytes bytes{};
    std::uniform_int_distribution<int> byte(0, 255);
    for (std::uint8_t& each : bytes) {
        each = static_cast<std::uint8_t>(byte(generator));
    }
    return ULID(bytes);
}

std::mt19937_64 seededGenerator() {
    const std::uint64_t seed = std::random_device()();
    ::testing::Test::RecordProperty("seed", std::to_string(seed));
    std::cout << "seed " << seed << '\n';
    return std::mt19937_64(seed);
}

constexpr int manyTimes = 200'000;

TEST(ULIDTime, OneMillisecondAfterTheEpochSetsTheLastOfTheFirstSixBytes) {
    GivenNumbers numbers(0xFFFF, 0xFFFFFFFFFFFFFFFF);
    const ULID ulid(Date{0.001}, numbers);
    const std::array<std::uint8_t, 6> expected{0, 0, 0, 0, 0, 1};
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), ulid.ulid().begin()));
    EXPECT_TRUE(ulid.ulidString().starts_with("0000000001"));
    EXPECT_EQ(ulid.timestamp(), Date{0.001});
}

TEST(ULIDTime, IsTruncatedToTheMillisecond) {
    GivenNumbers numbers(0, 0);
    EXPECT_EQ(ULID(Date{1.0019}, numbers).timestamp(), Date{1.001});
}

TEST(ULIDTime, LessThanAMillisecondBeforeTheEpochCountsAsTheEpoch) {
    GivenNumbers numbers(0, 0);
    EXPECT_EQ(ULID(Date{-0.0009}, numbers), ULID());
}

TEST(ULIDTime, KeepsTheLow48BitsOfALaterDate) {
    GivenNumbers numbers(0, 0);
    const double whole = std::ldexp(1.0, 48);
    EXPECT_EQ(ULID(Date{(whole - 1000) / 1000}, numbers).timestamp(), Date{(whole - 1000) / 1000});
    EXPECT_EQ(ULID(Date{(whole + 5000) / 1000}, numbers).timestamp(), Date{5});
}

TEST(ULIDTimeDeathTest, IsFatalOutsideTheRange) {
    GivenNumbers numbers(0, 0);
    for (const double seconds :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(), -0.001,
          std::ldexp(1.0, 64) / 1000}) {
        EXPECT_DEATH(ULID(Date{seconds}, numbers), "clock") << seconds;
    }
}

TEST(ULIDRandomPart, IsA16BitNumberThenA64BitNumberBothBigEndian) {
    GivenNumbers numbers(0x0102, 0x030405060708090A);
    const ULID ulid(Date{0}, numbers);
    EXPECT_EQ(ulid.ulid(), (ULID::Bytes{0, 0, 0, 0, 0, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));
    EXPECT_EQ(numbers.asked, "16 64 ");
}

TEST(ULIDRandomPart, ComesFromAnyGeneratorOverTheWholeRange) {
    std::mt19937 narrow(7);  // NOLINT(cert-msc32-c,cert-msc51-cpp): the same on every run
    ULID::Bytes seenOnes{};
    ULID::Bytes seenZeros{};
    for (int round = 0; round < 200; ++round) {
        const ULID ulid(Date{0}, narrow);
        for (std::size_t index = 0; index < seenOnes.size(); ++index) {
            seenOnes[index] = static_cast<std::uint8_t>(seenOnes[index] | ulid.ulid()[index]);
            seenZeros[index] = static_cast<std::uint8_t>(seenZeros[index] | ~ulid.ulid()[index]);
        }
    }
    for (std::size_t index = 6; index < seenOnes.size(); ++index) {
        EXPECT_EQ(seenOnes[index], 0xFF) << "byte " << index;
        EXPECT_EQ(seenZeros[index], 0xFF) << "byte " << index;
    }
}

TEST(ULIDRandomPart, IsTheFirstTenOfTheGivenBytes) {
    const std::vector<std::uint8_t> given{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    const std::span<const std::uint8_t> bytes = given;
    const ULID expected(ULID::Bytes{0, 0, 0, 0, 0, 1, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10});
    EXPECT_EQ(ULID::fromRandomPart(Date{0.001}, bytes), expected);
    EXPECT_EQ(ULID::fromRandomPart(Date{0.001}, bytes.first(10)), expected);
    EXPECT_EQ(ULID::fromRandomPart(Date{0.001}, bytes.first(9)), std::nullopt);
    EXPECT_EQ(ULID::fromRandomPart(Date{0.001}, {}), std::nullopt);
}

TEST(ULIDBytes, AreKeptUnchanged) {
    const ULID::Bytes bytes{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
    const ULID ulid(bytes);
    EXPECT_EQ(ulid.ulid(), bytes);
    EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), ulid.ulidData().begin(), ulid.ulidData().end()));
}

TEST(ULIDBytes, MustNumberSixteen) {
    const std::vector<std::uint8_t> bytes(17, 0xAB);
    const std::span<const std::uint8_t> all = bytes;
    EXPECT_EQ(ULID::fromData(all), std::nullopt);
    EXPECT_EQ(ULID::fromData(all.first(15)), std::nullopt);
    EXPECT_EQ(ULID::fromData({}), std::nullopt);
    const std::optional<ULID> ulid = ULID::fromData(all.first(16));
    ASSERT_TRUE(ulid);
    EXPECT_TRUE(
        std::all_of(ulid->ulid().begin(), ulid->ulid().end(), [](std::uint8_t b) { return b == 0xAB; }));
}

TEST(ULIDText, OfTheSmallestAndTheLargestIdentifier) {
    EXPECT_EQ(ULID().ulidString(), "00000000000000000000000000");
    EXPECT_EQ(ULID(allOnes).ulidString(), "7ZZZZZZZZZZZZZZZZZZZZZZZZZ");
    EXPECT_EQ(ULID(allOnes).description(), "7ZZZZZZZZZZZZZZZZZZZZZZZZZ");
}

TEST(ULIDText, IsKnownAtCompileTime) {
    static constexpr ULID::Text text = ULID(allOnes).toText();
    static_assert(ULID::view(text) == "7ZZZZZZZZZZZZZZZZZZZZZZZZZ");
    static_assert(ULID::fromString("7zzzzzzzzzzzzzzzzzzzzzzzzz") == ULID(allOnes));
    static_assert(!ULID::fromString("7zzzzzzzzzzzzzzzzzzzzzzzz="));
    static_assert(ULID() < ULID(allOnes));
    EXPECT_EQ(ULID(allOnes).toText(), text);
}

TEST(ULIDText, FollowsTheDefinitionBitByBit) {
    std::mt19937_64 generator = seededGenerator();
    for (int round = 0; round < manyTimes; ++round) {
        const ULID ulid = randomULID(generator);
        ASSERT_EQ(ulid.ulidString(), textBitByBit(ulid.ulid()));
    }
}

TEST(ULIDText, ReadsBackToTheSameBytes) {
    std::mt19937_64 generator = seededGenerator();
    for (int round = 0; round < manyTimes; ++round) {
        const ULID ulid = randomULID(generator);
        ASSERT_EQ(ULID::fromString(ulid.ulidString()), ulid);
    }
}

TEST(ULIDText, IsReadInLowerCaseToo) {
    EXPECT_EQ(ULID::fromString("7zzzzzzzzzzzzzzzzzzzzzzzzz"), ULID(allOnes));
    std::mt19937_64 generator = seededGenerator();
    for (int round = 0; round < manyTimes; ++round) {
        const ULID ulid = randomULID(generator);
        std::string text = ulid.ulidString();
        for (char& character : text) {
            if (character >= 'A' && character <= 'Z' && (generator() & 1U) != 0) {
                character = static_cast<char>(character - 'A' + 'a');
            }
        }
        ASSERT_EQ(ULID::fromString(text), ulid) << text;
    }
}

TEST(ULIDText, LettersThatLookLikeDigitsAreReadAsDigits) {
    for (const char alike : {'o', 'O'}) {
        EXPECT_EQ(ULID::fromString(std::string(26, alike)), ULID());
    }
    for (const char alike : {'i', 'I', 'l', 'L'}) {
        EXPECT_EQ(ULID::fromString(std::string(26, alike)), ULID::fromString(std::string(26, '1'))) << alike;
    }
}

TEST(ULIDText, LeadingCharacterAboveSevenLosesItsHighBits) {
    EXPECT_EQ(ULID::fromString("8ZZZZZZZZZZZZZZZZZZZZZZZZZ"), ULID::fromString("0ZZZZZZZZZZZZZZZZZZZZZZZZZ"));
    EXPECT_EQ(ULID::fromString("ZZZZZZZZZZZZZZZZZZZZZZZZZZ"), ULID(allOnes));
    EXPECT_TRUE(ULID::fromString("8ZZZZZZZZZZZZZZZZZZZZZZZZZ"));
}

TEST(ULIDText, OfAnotherLengthIsRejected) {
    for (const std::size_t length :
         {std::size_t{0}, std::size_t{1}, std::size_t{25}, std::size_t{27}, std::size_t{52}}) {
        EXPECT_EQ(ULID::fromString(std::string(length, '0')), std::nullopt) << length;
    }
    // 26 characters, but more bytes.
    EXPECT_EQ(ULID::fromString("0000000000000000000000000\xC3\xA9"), std::nullopt);
}

TEST(ULIDText, WithAnyOtherByteAtAnyPlaceIsRejected) {
    constexpr std::string_view readable = "0123456789ABCDEFGHIJKLMNOPQRSTVWXYZabcdefghijklmnopqrstvwxyz";
    for (std::size_t place = 0; place < 26; ++place) {
        for (int byte = 0; byte < 256; ++byte) {
            std::string text(26, '0');
            text[place] = static_cast<char>(byte);
            const bool isReadable = readable.find(static_cast<char>(byte)) != std::string_view::npos;
            EXPECT_EQ(ULID::fromString(text).has_value(), isReadable) << "byte " << byte << " at " << place;
        }
    }
}

TEST(ULIDText, ThatEndsInPaddingIsRejected) {
    EXPECT_EQ(ULID::fromString("0000000000000000000000000="), std::nullopt);
    EXPECT_EQ(ULID::fromString("00000000000000000000======"), std::nullopt);
    EXPECT_EQ(ULID::fromString("=========================="), std::nullopt);
}

TEST(ULIDOrder, MatchesTheOrderOfBytesAndTexts) {
    std::mt19937_64 generator = seededGenerator();
    for (int round = 0; round < manyTimes; ++round) {
        const ULID left = randomULID(generator);
        ULID::Bytes bytes = left.ulid();
        // Close to each other, so that each byte decides in some cases.
        bytes[generator() % bytes.size()] = static_cast<std::uint8_t>(generator());
        const ULID right(bytes);
        const bool isLess = std::lexicographical_compare(left.ulid().begin(), left.ulid().end(),
                                                         right.ulid().begin(), right.ulid().end());
        ASSERT_EQ(left < right, isLess);
        ASSERT_EQ(left.ulidString() < right.ulidString(), isLess);
        ASSERT_EQ(left >= right, !isLess);
        ASSERT_EQ(right > left, isLess);
        ASSERT_EQ(left == right, left.ulid() == right.ulid());
    }
}

TEST(ULIDOrder, MatchesTheOrderOfTime) {
    std::mt19937_64 generator = seededGenerator();
    std::uniform_int_distribution<std::uint64_t> anyMillisecond(0, (std::uint64_t{1} << 47) - 1);
    for (int round = 0; round < manyTimes; ++round) {
        const std::uint64_t earlier = anyMillisecond(generator);
        const std::uint64_t later = earlier + 1 + generator() % 1000;
        // Half a millisecond from the boundary: most milliseconds are not exact as a double.
        const ULID first(Date{(static_cast<double>(earlier) + 0.5) / 1000}, generator);
        const ULID second(Date{(static_cast<double>(later) + 0.5) / 1000}, generator);
        ASSERT_LT(first, second);
        ASSERT_LT(first.ulidString(), second.ulidString());
        ASSERT_LT(first.timestamp().secondsSince1970, second.timestamp().secondsSince1970);
    }
}

TEST(ULIDHash, DistinguishesIdentifiersThatDifferInOneByte) {
    std::unordered_set<std::size_t> hashes;
    std::unordered_set<ULID> ulids;
    for (std::size_t place = 0; place < 16; ++place) {
        for (int byte = 1; byte < 256; ++byte) {
            ULID::Bytes bytes{};
            bytes[place] = static_cast<std::uint8_t>(byte);
            hashes.insert(std::hash<ULID>()(ULID(bytes)));
            ulids.insert(ULID(bytes));
        }
    }
    EXPECT_EQ(hashes.size(), 16U * 255U);
    EXPECT_EQ(ulids.size(), 16U * 255U);
    EXPECT_TRUE(ulids.contains(ULID(ULID::Bytes{0, 0, 9})));
    EXPECT_EQ(std::hash<ULID>()(ULID(allOnes)), std::hash<ULID>()(ULID(allOnes)));
}

struct Ticket {
    ULID ulid;
    std::vector<ULID> others;

    template <class Self, class Visit>
    static void visitFields(Self& self, Visit&& visit) {
        visit("ulid", self.ulid);
        visit("others", self.others);
    }
};

TEST(ULIDOfADate, HasItsTimeAndSecureRandomBits) {
    std::unordered_set<ULID> made;
    ULID::Bytes everSet{};
    for (int count = 0; count < 1000; ++count) {
        const ULID ulid(Date{0.001});
        EXPECT_EQ(ulid.ulidString().substr(0, 10), "0000000001");
        made.insert(ulid);
        for (std::size_t place = 6; place < everSet.size(); ++place) {
            everSet[place] = static_cast<std::uint8_t>(everSet[place] | ulid.ulid()[place]);
        }
    }
    EXPECT_EQ(made.size(), 1000U);
    EXPECT_EQ(everSet, (ULID::Bytes{0, 0, 0, 0, 0, 0, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255}));
}

TEST(ULIDAsJSON, IsOneString) {
    EXPECT_EQ(encode(ULID(allOnes)), R"("7ZZZZZZZZZZZZZZZZZZZZZZZZZ")");
    EXPECT_EQ(encode(ULID()), R"("00000000000000000000000000")");
    EXPECT_EQ(ULID::decode(R"("7ZZZZZZZZZZZZZZZZZZZZZZZZZ")"), ULID(allOnes));
    EXPECT_EQ(ULID::decode(" \"7zzzzzzzzzzzzzzzzzzzzzzzzz\"\n"), ULID(allOnes));
    EXPECT_EQ(ULID::decode(R"("\u0037ZZZZZZZZZZZZZZZZZZZZZZZZZ")"), ULID(allOnes));
    const ULID random(Date{1'704'067'200.25});
    EXPECT_EQ(ULID::decode(encode(random)), random);
}

TEST(ULIDAsJSON, IsRefusedIfItIsAnythingElse) {
    const auto errorOf = [](std::string_view text) { return json::describe(ULID::decode(text).error()); };
    for (const std::string_view text :
         {R"("")", R"("7ZZZ")", R"("U0000000000000000000000000")", R"("000000000000000000000000000")",
          R"("0000000000000000000000000\u0000")", R"("ÇÇÇÇÇÇÇÇÇÇÇÇÇ")"}) {
        EXPECT_EQ(errorOf(text), "Attempted to decode ULID from invalid ULID string.") << text;
    }
    EXPECT_EQ(errorOf("7"), "expected a string, found a number");
    EXPECT_EQ(errorOf("null"), "expected a string, found null");
    EXPECT_EQ(errorOf(R"(["7ZZZZZZZZZZZZZZZZZZZZZZZZZ"])"), "expected a string, found an array");
    for (const std::string_view text :
         {"", "7ZZZZZZZZZZZZZZZZZZZZZZZZZ", "\"7ZZZ", R"("7ZZZZZZZZZZZZZZZZZZZZZZZZZ" x)", "\xFF"}) {
        EXPECT_FALSE(ULID::decode(text)) << text;
    }
}

TEST(ULIDInJSON, IsItsText) {
    const json::Encoded encoded = json::encode(Ticket{ULID(allOnes), {ULID(), ULID(allOnes)}});
    EXPECT_EQ(encoded.value(), R"({"ulid":"7ZZZZZZZZZZZZZZZZZZZZZZZZZ",)"
                               R"("others":["00000000000000000000000000","7ZZZZZZZZZZZZZZZZZZZZZZZZZ"]})");
    const json::Decoded<Ticket> decoded = json::decode<Ticket>(encoded.value());
    EXPECT_EQ(decoded.value().ulid, ULID(allOnes));
    EXPECT_EQ(decoded.value().others, (std::vector{ULID(), ULID(allOnes)}));
}

TEST(ULIDInJSON, ReportsOtherText) {
    const auto errorOf = [](std::string_view text) {
        return json::describe(json::decode<Ticket>(text).error());
    };
    EXPECT_EQ(errorOf(R"({"ulid":"7ZZZ","others":[]})"),
              "ulid: Attempted to decode ULID from invalid ULID string.");
    EXPECT_EQ(errorOf(R"({"ulid":"7ZZZZZZZZZZZZZZZZZZZZZZZZZ","others":["U0000000000000000000000000"]})"),
              "others[0]: Attempted to decode ULID from invalid ULID string.");
    EXPECT_EQ(errorOf(R"({"ulid":7,"others":[]})"), "ulid: expected a string, found a number");
}

}  // namespace
}  // namespace vorna
