// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace vorna::ui {

/// A step's place in its sequence, and what the flow shows because of it.
struct StepPosition {
    /// Zero-based.
    int stepIndex = 0;
    int stepCount = 0;
    bool showExitButton = false;
    bool showArrow = false;
};

}  // namespace vorna::ui
