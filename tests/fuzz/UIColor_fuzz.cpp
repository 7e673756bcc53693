// SPDX-License-Identifier: Apache-2.0
#include <tests/fuzz/Fuzz.h>

#include <vorna/documents/UIColor.h>
#include <vorna/text/Graphemes.h>
#include <vorna/text/Utf8.h>
#include <vorna/text/Whitespace.h>

#include <optional>

using namespace vorna;

namespace {

bool isPart(double part) {
    return part >= 0 && part <= 1;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view hex = fuzz::textOf(data, size);
    const UIColor colour(hex);
    fuzz::require(isPart(colour.red) && isPart(colour.green) && isPart(colour.blue) && isPart(colour.alpha));
    const std::optional<UIColor> read = UIColor::read(hex);
    fuzz::require(colour == read.value_or(UIColor(0, 0, 0, 1)));
    fuzz::require(UIColor(text::trimmed(hex)) == colour);
    if (read) {
        fuzz::require(utf8::isValid(hex) && !text::isBlank(hex));
    }
    const std::string_view few = text::firstCharacters(hex, 3);
    fuzz::require(text::characterCount(few) <= 3 && hex.starts_with(few));
    return 0;
}
