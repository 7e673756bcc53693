// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Contrast between a text and its background, after the Web Content Accessibility Guidelines 2.

#include <vorna/documents/UIColor.h>

#include <span>

namespace vorna::lint {

/// The minimum that the guidelines require of large or bold text.
inline constexpr double leastContrast = 3.0;

/// From 1, no difference, to 21, black on white: the ratio between the luminance of a text and that of the
/// layers beneath it, given from the bottom up. Below the bottom layer the colour is unknown; if that layer
/// is translucent, the better of black and white counts, so that a reported low contrast is always real.
[[nodiscard]] double contrast(const UIColor& text, std::span<const UIColor> layers);

}  // namespace vorna::lint
