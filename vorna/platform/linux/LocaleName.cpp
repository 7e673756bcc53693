// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/linux/LocaleName.h>

namespace vorna {

std::string localeIdentifier(std::string_view localeName) {
    const std::string_view identifier = localeName.substr(0, localeName.find_first_of(".@"));
    if (identifier.empty() || identifier == "C" || identifier == "POSIX") {
        return "en_US_POSIX";
    }
    return std::string(identifier);
}

std::string messagesLocale(const Environment& environment) {
    for (const char* const name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        if (const auto value = nonEmptyVariable(environment, name)) {
            return localeIdentifier(*value);
        }
    }
    return localeIdentifier({});
}

}  // namespace vorna
