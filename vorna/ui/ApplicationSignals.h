// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Delivers the six signals of the application's life from what Qt and the system tell.

namespace vorna::ui::applicationSignals {

/// From now on, once. An application that is active already is reported so at the next turn of the event
/// loop, when the host has had its chance to initialise the library. Main thread.
void deliver();

}  // namespace vorna::ui::applicationSignals
