// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/linux/DataDirectory.h>

#include <cerrno>

namespace vorna {

std::string programName() {
    return folderName(program_invocation_short_name);
}

std::string folderName(std::string_view text) {
    if (text.empty() || text == "." || text == "..") {
        return "application";
    }
    std::string name(text);
    for (char& character : name) {
        if (character == '/' || static_cast<unsigned char>(character) < 0x20 || character == 0x7F) {
            character = '_';
        }
    }
    return name;
}

std::optional<std::string> defaultDataDirectory(const std::optional<std::string>& bundleIdentifier,
                                                const Environment& environment) {
    std::optional<std::string> data = environment.variable("XDG_DATA_HOME");
    if (!data || !data->starts_with('/')) {
        data = homeFolder(environment);
        if (!data) {
            return std::nullopt;
        }
        *data += "/.local/share";
    }
    const bool isNamed = bundleIdentifier && !bundleIdentifier->empty();
    return *data + "/" + (isNamed ? folderName(*bundleIdentifier) : programName());
}

}  // namespace vorna
