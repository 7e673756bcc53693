// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The library's console output: whole lines on standard output, most of them only while the host has
/// switched `debug` on.

#include <vorna/base/Export.h>

#include <atomic>
#include <initializer_list>
#include <string_view>

namespace vorna::log {

/// The switch behind `VornaCoreSDK::debug`. Read and written from any thread.
VORNA_EXPORT extern std::atomic<bool> enabled;

/// Prints "[VornaSDK] " and the pieces, joined without anything between them, as one line; nothing while the
/// switch is off. Bytes that are not UTF-8 are shown as U+FFFD. Any thread; lines never mix.
VORNA_EXPORT void debug(std::initializer_list<std::string_view> pieces);

/// Prints the pieces as one line without the prefix, whatever the switch says: for the few errors of the
/// credential store and the file system that a host must see, and for what a screen's document lacks.
VORNA_EXPORT void always(std::initializer_list<std::string_view> pieces);

/// Where an exception ends, in its `catch (...)`: prints like `debug` that what the pieces name has failed,
/// and what the exception says. Throws nothing itself, however little memory there is.
VORNA_EXPORT void failure(std::initializer_list<std::string_view> pieces) noexcept;

}  // namespace vorna::log
