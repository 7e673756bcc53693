// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A 128-bit identifier that sorts by creation time: 48 bits of milliseconds since 1970, then 80 random bits.
/// As text it is 26 characters of Crockford's base 32, which sort in the same order. Identifies users and
/// sessions.

#include <vorna/base/Export.h>
#include <vorna/base/Result.h>
#include <vorna/json/DecodingError.h>
#include <vorna/platform/Date.h>
#include <vorna/platform/RandomSource.h>

#include <array>
#include <bit>
#include <compare>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <random>
#include <span>
#include <string>
#include <string_view>

namespace vorna {

namespace detail {

inline constexpr std::string_view crockfordAlphabet = "0123456789ABCDEFGHJKMNPQRSTVWXYZ";

/// The two characters of each 10-bit value in memory order, so that both are stored at once.
inline constexpr auto crockfordPairs = [] {
    std::array<std::uint16_t, 1024> pairs{};
    for (std::size_t value = 0; value < pairs.size(); ++value) {
        pairs[value] = std::bit_cast<std::uint16_t>(
            std::array{crockfordAlphabet[value >> 5], crockfordAlphabet[value & 31]});
    }
    return pairs;
}();

/// Marks a byte that is not a digit. Digits are below 32, so the bitwise OR of any number of entries shows
/// whether all were digits.
inline constexpr std::uint8_t notADigit = 0xFF;

/// The value of each byte as a digit: lower case counts as upper case, I and L as 1, O as 0.
inline constexpr auto crockfordDigits = [] {
    std::array<std::uint8_t, 256> digits{};
    digits.fill(notADigit);
    const auto assign = [&digits](char character, std::size_t value) {
        digits[static_cast<unsigned char>(character)] = static_cast<std::uint8_t>(value);
        if (character >= 'A') {
            digits[static_cast<unsigned char>(character - 'A' + 'a')] = static_cast<std::uint8_t>(value);
        }
    };
    for (std::size_t value = 0; value < crockfordAlphabet.size(); ++value) {
        assign(crockfordAlphabet[value], value);
    }
    assign('I', 1);
    assign('L', 1);
    assign('O', 0);
    return digits;
}();

}  // namespace detail

/// A plain value. All bytes are zero by default.
class VORNA_EXPORT ULID {
  public:
    using Bytes = std::array<std::uint8_t, 16>;
    using Text = std::array<char, 26>;

    constexpr ULID() noexcept = default;

    constexpr explicit ULID(const Bytes& ulid) noexcept : bytes_(ulid) {}

    /// Made from the low 48 bits of the date's milliseconds and fresh random bits of the system's secure
    /// source. Two from the same millisecond are in random order. A date that cannot be expressed in unsigned
    /// milliseconds is fatal.
    explicit ULID(Date timestamp);

    /// As above, with random bits from this source.
    ULID(Date timestamp, RandomSource& generator);

    /// As above, with any generator, which yields one 16-bit and then one 64-bit integer, each uniformly
    /// distributed over its full range.
    template <std::uniform_random_bit_generator Generator>
    ULID(Date timestamp, Generator& generator) {
        const auto first = std::uniform_int_distribution<std::uint16_t>()(generator);
        const auto second = std::uniform_int_distribution<std::uint64_t>()(generator);
        *this = fromParts(timestamp, first, second);
    }

    /// Returns std::nullopt unless there are exactly 16 bytes.
    static constexpr std::optional<ULID> fromData(std::span<const std::uint8_t> ulidData) noexcept {
        Bytes bytes{};
        if (ulidData.size() != bytes.size()) {
            return std::nullopt;
        }
        for (std::size_t index = 0; index < bytes.size(); ++index) {
            bytes[index] = ulidData[index];
        }
        return ULID(bytes);
    }

    /// Returns std::nullopt unless the text is 26 digits; see the table above for the variants accepted. The
    /// first character holds only 3 bits: the upper two of a larger digit are dropped.
    static constexpr std::optional<ULID> fromString(std::string_view ulidString) noexcept {
        if (ulidString.size() != Text().size()) {
            return std::nullopt;
        }
        // In groups, since steps in the same group depend on each other and those in different groups do not.
        std::uint64_t seen = 0;
        const auto group = [ulidString, &seen](std::size_t start, std::size_t length) {
            std::uint64_t value = 0;
            for (std::size_t index = start; index < start + length; ++index) {
                const std::uint64_t digit =
                    detail::crockfordDigits[static_cast<unsigned char>(ulidString[index])];
                seen |= digit;
                value = value << 5 | digit;
            }
            return value;
        };
        // 130 bits of text: 13 characters down to bit 65, one across the middle, 12 for the remainder.
        const std::uint64_t upper = group(0, 7) << 30 | group(7, 6);
        const std::uint64_t middle = group(13, 1);
        const std::uint64_t lower = group(14, 6) << 30 | group(20, 6);
        if (seen >= detail::crockfordAlphabet.size()) {
            return std::nullopt;
        }
        return fromHalves({upper << 1 | middle >> 4, middle << 60 | lower});
    }

    /// Made from the date and the first 10 bytes of the random part; further bytes are ignored. std::nullopt
    /// if there are fewer.
    static std::optional<ULID> fromRandomPart(Date timestamp, std::span<const std::uint8_t> randomPartData);

    /// Decodes a JSON text that consists of one string, the identifier's text; see `fromString`. For any
    /// other string the error is "Attempted to decode ULID from invalid ULID string.". Any thread; any bytes.
    static Result<ULID, json::DecodingError> decode(std::string_view json);

    /// The error of decoding any other string.
    static json::DecodingError invalidText();

    constexpr const Bytes& ulid() const noexcept { return bytes_; }

    constexpr std::span<const std::uint8_t, 16> ulidData() const noexcept { return bytes_; }

    /// The 26 characters in upper case, without allocating.
    constexpr Text toText() const noexcept {
        const auto [high, low] = halves();
        const auto pair = [](std::uint64_t bits) { return detail::crockfordPairs[bits & 1023]; };
        return std::bit_cast<Text>(std::array{pair(high >> 56), pair(high >> 46), pair(high >> 36),
                                              pair(high >> 26), pair(high >> 16), pair(high >> 6),
                                              pair(high << 4 | low >> 60), pair(low >> 50), pair(low >> 40),
                                              pair(low >> 30), pair(low >> 20), pair(low >> 10), pair(low)});
    }

    /// A view of the characters, valid during their lifetime.
    static constexpr std::string_view view(const Text& text) noexcept { return {text.data(), text.size()}; }

    static std::string_view view(Text&&) = delete;

    std::string ulidString() const;

    /// As `ulidString`.
    std::string description() const;

    /// The date, to the millisecond, within the range of 48 bits.
    constexpr Date timestamp() const noexcept {
        return Date{static_cast<double>(halves().high >> 16) / 1000.0};
    }

    /// Bytewise: by time, then by the random part.
    // NOLINTNEXTLINE(modernize-use-nullptr): clang-tidy 14 takes the defaulted comparison for a null pointer
    friend constexpr auto operator<=>(const ULID&, const ULID&) = default;

  private:
    static ULID fromParts(Date timestamp, std::uint16_t first, std::uint64_t second);

    /// The bytes as two big-endian numbers.
    struct Halves {
        std::uint64_t high = 0;
        std::uint64_t low = 0;
    };

    static constexpr std::uint64_t swappedToBigEndian(std::uint64_t number) noexcept {
        if constexpr (std::endian::native == std::endian::little) {
            return __builtin_bswap64(number);
        } else {
            return number;
        }
    }

    static constexpr ULID fromHalves(Halves halves) noexcept {
        return ULID(
            std::bit_cast<Bytes>(Halves{swappedToBigEndian(halves.high), swappedToBigEndian(halves.low)}));
    }

    constexpr Halves halves() const noexcept {
        const auto stored = std::bit_cast<Halves>(bytes_);
        return {swappedToBigEndian(stored.high), swappedToBigEndian(stored.low)};
    }

    Bytes bytes_{};
};

/// The JSON text of one string, the identifier's text.
VORNA_EXPORT std::string encode(const ULID& ulid);

}  // namespace vorna

template <>
struct std::hash<vorna::ULID> {
    std::size_t operator()(const vorna::ULID& ulid) const noexcept {
        const vorna::ULID::Bytes& bytes = ulid.ulid();
        return std::hash<std::string_view>()({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    }
};
