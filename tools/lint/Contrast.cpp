// SPDX-License-Identifier: Apache-2.0
#include <tools/lint/Contrast.h>

#include <algorithm>
#include <cmath>

namespace vorna::lint {

namespace {

UIColor over(const UIColor& above, const UIColor& below) {
    const auto mixed = [&above](double upper, double lower) {
        return upper * above.alpha + lower * (1 - above.alpha);
    };
    return {mixed(above.red, below.red), mixed(above.green, below.green), mixed(above.blue, below.blue), 1};
}

/// The relative luminance of an opaque sRGB colour.
double luminance(const UIColor& colour) {
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.red) + 0.7152 * linear(colour.green) + 0.0722 * linear(colour.blue);
}

double contrastAbove(UIColor ground, const UIColor& text, std::span<const UIColor> layers) {
    for (const UIColor& layer : layers) {
        ground = over(layer, ground);
    }
    const double one = luminance(over(text, ground));
    const double other = luminance(ground);
    return (std::max(one, other) + 0.05) / (std::min(one, other) + 0.05);
}

}  // namespace

double contrast(const UIColor& text, std::span<const UIColor> layers) {
    return std::max(contrastAbove({0, 0, 0, 1}, text, layers), contrastAbove({1, 1, 1, 1}, text, layers));
}

}  // namespace vorna::lint
