// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace vorna::ui {

/// What the flow adds to a step's own fields.
struct StepPosition {
    /// Zero-based.
    int stepIndex = 0;
    int stepCount = 0;
    bool showExitButton = false;
    bool showArrow = false;
};

}  // namespace vorna::ui
