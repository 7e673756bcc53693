// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Which language and region the user has chosen.

#include <vorna/platform/linux/Environment.h>

#include <string>
#include <string_view>

namespace vorna {

/// A locale's name without its codeset and modifier: "tr_TR" of "tr_TR.UTF-8", "sr_RS" of "sr_RS@latin".
/// "en_US_POSIX" for the locale of the C language, whatever it is called, and for empty text.
std::string localeIdentifier(std::string_view localeName);

/// The identifier of the locale that messages are shown in: the first of $LC_ALL, $LC_MESSAGES and $LANG that
/// is set and not empty decides.
std::string messagesLocale(const Environment& environment);

}  // namespace vorna
