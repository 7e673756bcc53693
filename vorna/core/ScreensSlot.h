// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The place where the installed screens are kept, and where they meet the library's instance, whichever of
/// the two comes first.

#include <vorna/core/Screens.h>

#include <memory>

namespace vorna::screens {

/// The installed ones, or stand-ins that find no window to show anything in and say so. Never null.
std::shared_ptr<Screens> installed();

/// The instance exists: the screens may use these, now or as soon as they are installed.
void provide(const ScreenServices& services);

}  // namespace vorna::screens
