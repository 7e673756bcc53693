// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Finds the controller over which a new screen is presented.

#include <vorna/base/Export.h>
#include <vorna/ui/common/ViewController.h>

#include <memory>

namespace vorna::ui {

/// Follows navigation controllers, selected tabs and presented screens, starting from the candidate. Null if
/// there is no candidate, or a navigation controller shows nothing. Main thread.
VORNA_EXPORT std::shared_ptr<ViewController> topViewController(std::shared_ptr<ViewController> candidate);

/// As above, starting from the root of the key window. Null also if there is no window.
VORNA_EXPORT std::shared_ptr<ViewController> topViewController();

}  // namespace vorna::ui
