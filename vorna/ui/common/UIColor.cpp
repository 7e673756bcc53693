#include <vorna/ui/common/UIColor.h>

#include <vorna/text/CodePoints.h>
#include <vorna/text/Utf8.h>
#include <vorna/text/Whitespace.h>

#include <utf8proc.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>

namespace vorna {

namespace {

/// The number that a text begins with, as the text is fed one upper-case code point after the other.
class HexScanner {
  public:
    void take(char32_t codePoint) noexcept {
        if (state_ == State::before && text::isWhiteSpace(codePoint)) {
            return;
        }
        if (state_ == State::behindZero && codePoint == U'X') {
            // The zero was a prefix's, which does not count as a digit.
            hasDigit_ = false;
            state_ = State::digits;
            return;
        }
        const int digit = valueOf(codePoint);
        if (state_ == State::behind || digit < 0) {
            state_ = State::behind;
            return;
        }
        state_ = state_ == State::before && digit == 0 ? State::behindZero : State::digits;
        hasDigit_ = true;
        constexpr std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
        number_ = number_ > most >> 4U ? most : number_ << 4U | static_cast<std::uint64_t>(digit);
    }

    std::optional<std::uint64_t> number() const noexcept {
        return hasDigit_ ? std::optional(number_) : std::nullopt;
    }

  private:
    enum class State : std::uint8_t { before, behindZero, digits, behind };

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

/// Counts characters as a reader does, one code point after the other.
class CharacterCounter {
  public:
    void take(char32_t codePoint) noexcept {
        const auto next = static_cast<utf8proc_int32_t>(codePoint);
        if (count_ == 0 || utf8proc_grapheme_break_stateful(previous_, next, &state_)) {
            ++count_;
        }
        previous_ = next;
    }

    std::size_t count() const noexcept { return count_; }

  private:
    std::size_t count_ = 0;
    utf8proc_int32_t previous_ = 0;
    utf8proc_int32_t state_ = 0;
};

/// The upper case of a code point, which may be several: "ß" is "SS" and the ligature "ﬀ" is "FF". Folding
/// takes such letters apart; what is upper case already stays whole.
template <class Visit>
void forEachUpperCase(char32_t codePoint, const Visit& visit) noexcept {
    const auto whole = static_cast<utf8proc_int32_t>(codePoint);
    if (codePoint < 0x80 || utf8proc_category(whole) == UTF8PROC_CATEGORY_LU) {
        visit(static_cast<char32_t>(utf8proc_toupper(whole)));
        return;
    }
    utf8proc_int32_t folded[4] = {};
    int boundary = 0;
    const utf8proc_ssize_t count = utf8proc_decompose_char(
        whole, folded, static_cast<utf8proc_ssize_t>(std::size(folded)), UTF8PROC_CASEFOLD, &boundary);
    if (count < 1 || count > static_cast<utf8proc_ssize_t>(std::size(folded))) {
        visit(codePoint);
        return;
    }
    for (const utf8proc_int32_t part : std::span(folded).first(static_cast<std::size_t>(count))) {
        visit(static_cast<char32_t>(utf8proc_toupper(part)));
    }
}

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
    CharacterCounter counter;
    while (!hex.empty()) {
        const text::CodePoint next = text::firstCodePoint(hex);
        forEachUpperCase(next.value, [&](char32_t upper) {
            scanner.take(upper);
            counter.take(upper);
        });
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
