// SPDX-License-Identifier: Apache-2.0
#include <vorna/documents/UIColor.h>

#include <vorna/text/CodePoints.h>
#include <vorna/text/Utf8.h>
#include <vorna/text/Whitespace.h>

#include <cstddef>
#include <cstdint>
#include <limits>

namespace vorna {

namespace {

/// Parses the number at the beginning of a text, fed to it as upper-case code points.
class HexScanner {
  public:
    void take(char32_t codePoint) noexcept {
        if (state_ == State::before && text::isWhiteSpace(codePoint)) {
            return;
        }
        if (state_ == State::afterZero && codePoint == U'X') {
            // The zero belonged to a prefix, which does not count as a digit.
            hasDigit_ = false;
            state_ = State::digits;
            return;
        }
        const int digit = valueOf(codePoint);
        if (state_ == State::after || digit < 0) {
            state_ = State::after;
            return;
        }
        state_ = state_ == State::before && digit == 0 ? State::afterZero : State::digits;
        hasDigit_ = true;
        constexpr std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
        number_ = number_ > most >> 4U ? most : number_ << 4U | static_cast<std::uint64_t>(digit);
    }

    std::optional<std::uint64_t> number() const noexcept {
        return hasDigit_ ? std::optional(number_) : std::nullopt;
    }

  private:
    enum class State : std::uint8_t { before, afterZero, digits, after };

    static int valueOf(char32_t codePoint) noexcept {
        if (codePoint >= U'0' && codePoint <= U'9') {
            return static_cast<int>(codePoint - U'0');
        }
        return codePoint >= U'A' && codePoint <= U'F' ? static_cast<int>(codePoint - U'A') + 10 : -1;
    }

    State state_ = State::before;
    bool hasDigit_ = false;
    std::uint64_t number_ = 0;
};

double part(std::uint64_t number, unsigned lowestBit) noexcept {
    return static_cast<double>(number >> lowestBit & 0xFFU) / 255.0;
}

}  // namespace

std::optional<UIColor> UIColor::read(std::string_view hex) noexcept {
    if (!utf8::isValid(hex)) {
        return std::nullopt;
    }
    hex = text::trimmed(hex);
    if (hex.starts_with('#')) {
        hex.remove_prefix(1);
    }
    HexScanner scanner;
    text::CharacterCounter counter;
    while (!hex.empty()) {
        const text::CodePoint next = text::firstCodePoint(hex);
        for (const char32_t upper : text::upperCase(next.value)) {
            scanner.take(upper);
            counter.take(upper);
        }
        hex.remove_prefix(next.length);
    }
    const std::optional<std::uint64_t> number = scanner.number();
    if (number && counter.count() == 8) {
        return UIColor(part(*number, 24), part(*number, 16), part(*number, 8), part(*number, 0));
    }
    if (number && counter.count() == 6) {
        return UIColor(part(*number, 16), part(*number, 8), part(*number, 0), 1);
    }
    return std::nullopt;
}

UIColor::UIColor(std::string_view hex) noexcept : UIColor(read(hex).value_or(UIColor(0, 0, 0, 1))) {}

}  // namespace vorna
