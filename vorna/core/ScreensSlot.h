// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Holds the installed screens and connects them with the library's instance, whichever comes first.

#include <vorna/core/Screens.h>

#include <memory>

namespace vorna::screens {

/// Returns the installed screens, or stand-ins that log that there is no window. Never null.
std::shared_ptr<Screens> installed();

/// Starts the screens with these services, now or as soon as they are installed.
void provide(const ScreenServices& services);

}  // namespace vorna::screens
