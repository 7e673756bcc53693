// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The user's language and region.

#include <vorna/platform/linux/Environment.h>

#include <string>
#include <string_view>

namespace vorna {

/// Returns a locale's name without codeset and modifier: "tr_TR" for "tr_TR.UTF-8", "sr_RS" for
/// "sr_RS@latin". "en_US_POSIX" for the C locale under any of its names, and for empty text.
std::string localeIdentifier(std::string_view localeName);

/// Returns the identifier of the locale for messages: that of the first of $LC_ALL, $LC_MESSAGES and $LANG
/// that is set and not empty.
std::string messagesLocale(const Environment& environment);

}  // namespace vorna
