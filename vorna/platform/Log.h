// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The library's console output: whole lines on standard output, most of them only while `debug` is on.

#include <vorna/base/Export.h>

#include <atomic>
#include <initializer_list>
#include <string_view>

namespace vorna::log {

/// The switch behind `VornaCoreSDK::debug`. Any thread.
VORNA_EXPORT extern std::atomic<bool> enabled;

/// Prints "[VornaSDK] " and the concatenated pieces as one line; nothing while the switch is off. Bytes that
/// are not UTF-8 are shown as U+FFFD. Any thread; lines never mix.
VORNA_EXPORT void debug(std::initializer_list<std::string_view> pieces);

/// Prints the concatenated pieces as one line without the prefix, even while the switch is off: for the few
/// errors of the credential store and the file system that a host must see, and for missing fields of a
/// screen's document.
VORNA_EXPORT void always(std::initializer_list<std::string_view> pieces);

/// Prints, like `debug`, that the operation named by the pieces has failed, with the message of the current
/// exception. For use in a handler of `catchAll`. Never throws, not even if memory has run out.
VORNA_EXPORT void failure(std::initializer_list<std::string_view> pieces);

}  // namespace vorna::log
