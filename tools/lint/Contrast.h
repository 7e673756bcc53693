// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vorna/documents/UIColor.h>

#include <span>

namespace vorna::lint {

// What large or bold text needs to be read with ease, after the Web Content Accessibility Guidelines 2.
inline constexpr double leastContrast = 3.0;

// From 1, no difference, to 21, black on white: the ratio of the luminances of a text and of the layers it
// stands on, the lowest first. What lies below the lowest layer is not known; where it shines through, the
// better of black and white counts, so that a low contrast is one in any case.
[[nodiscard]] double contrast(const UIColor& text, std::span<const UIColor> layers);

}  // namespace vorna::lint
