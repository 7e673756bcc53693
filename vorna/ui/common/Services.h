// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The parts of the library that the screens use, available once its instance exists.

#include <vorna/core/Screens.h>

namespace vorna::ui::services {

/// Called once. Any thread.
void provide(const ScreenServices& services);

/// Null pointers before `provide`. Any thread.
ScreenServices get();

}  // namespace vorna::ui::services
