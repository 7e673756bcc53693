// SPDX-License-Identifier: Apache-2.0
#pragma once

/// What the screens take from the library, once its instance exists.

#include <vorna/core/Screens.h>

#include <memory>

namespace vorna::ui::services {

/// Called once. Any thread.
void provide(const ScreenServices& services);

/// Its pointers are null before `provide`. Any thread.
ScreenServices get();

}  // namespace vorna::ui::services
