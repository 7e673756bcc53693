// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/linux/DataDirectory.h>

#include <glib.h>

#include <cerrno>
#include <cstddef>
#include <memory>
#include <utility>

namespace vorna {

namespace {

bool namesNoFolder(std::string_view text) {
    return text.empty() || text == "." || text == "..";
}

/// Shortens a name to what file systems accept. Different names stay different.
std::string shortened(std::string name) {
    constexpr std::size_t longest = 255;
    constexpr std::size_t digits = 16;
    if (name.size() <= longest) {
        return name;
    }
    const std::unique_ptr<char, decltype(&g_free)> hash(
        g_compute_checksum_for_data(G_CHECKSUM_SHA256, reinterpret_cast<const guchar*>(name.data()),
                                    name.size()),
        g_free);
    std::size_t kept = longest - digits - 1;
    // Not in the middle of a character.
    while (kept > 0 && (static_cast<unsigned char>(name[kept]) & 0xC0U) == 0x80U) {
        --kept;
    }
    name.resize(kept);
    return name + '-' + std::string(hash.get(), digits);
}

}  // namespace

std::string programName() {
    return folderName(program_invocation_short_name);
}

std::string applicationName(const std::optional<std::string>& bundleIdentifier) {
    return !bundleIdentifier || namesNoFolder(*bundleIdentifier) ? programName()
                                                                 : folderName(*bundleIdentifier);
}

std::string folderName(std::string_view text) {
    if (namesNoFolder(text)) {
        return "application";
    }
    std::string name(text);
    for (char& character : name) {
        if (character == '/' || static_cast<unsigned char>(character) < 0x20 || character == 0x7F) {
            character = '_';
        }
    }
    return shortened(std::move(name));
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
    return *data + "/" + applicationName(bundleIdentifier);
}

}  // namespace vorna
