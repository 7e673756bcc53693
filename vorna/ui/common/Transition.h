// SPDX-License-Identifier: Apache-2.0
#pragma once

/// How one screen visibly replaces another.

#include <QtCore/QEasingCurve>

#include <chrono>
#include <cstdint>

namespace vorna::ui {

enum class TransitionStyle : std::uint8_t {
    /// The new screen rises from below over the old one, and sinks back when it leaves.
    coverVertical,
    /// The new screen fades in over the old one, and out when it leaves.
    crossDissolve,
    /// Both move to the left: the new screen comes in from the right and pushes the old one out.
    pushFromRight
};

struct Transition {
    TransitionStyle style = TransitionStyle::pushFromRight;
    std::chrono::milliseconds duration{300};
    QEasingCurve timing{QEasingCurve::InOutQuad};
};

}  // namespace vorna::ui
