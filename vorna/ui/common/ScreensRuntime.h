// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Owns everything that the screens have once per process.

#include <vorna/platform/NeverDestroyed.h>

namespace vorna::ui {

/// Each part is created by the first call that requests it, on the calling thread, and never destroyed: other
/// threads may use it until the process ends, and so may posts that arrive after the application object is
/// gone. `vorna/ui` has no other static or global variables.
///
/// Does not depend on any of its parts, so that every folder can keep its own here.
class ScreensRuntime {
  public:
    /// Any thread; the part says which threads may use it.
    template <class Part>
    static Part& part() {
        static NeverDestroyed<Part> value;
        return *value;
    }
};

}  // namespace vorna::ui
