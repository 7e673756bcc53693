// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/linux/OsRelease.h>

#include <vorna/platform/linux/ShellAssignments.h>
#include <vorna/platform/linux/SystemFile.h>
#include <vorna/text/Utf8.h>

#include <sys/utsname.h>

namespace vorna {

std::string osVersion(const std::optional<std::string>& osRelease, std::string_view kernelRelease) {
    const std::optional<std::string> version =
        osRelease ? assignedValue(*osRelease, "VERSION_ID") : std::nullopt;
    return version ? *version : std::string(kernelRelease);
}

std::string readOsVersion(const std::string& root, std::string_view kernelRelease) {
    std::optional<std::string> osRelease = readSystemFile(root + "/etc/os-release");
    if (!osRelease) {
        osRelease = readSystemFile(root + "/usr/lib/os-release");
    }
    return osVersion(osRelease, kernelRelease);
}

std::string currentOsVersion(const std::string& root) {
    utsname kernel = {};
    uname(&kernel);
    return utf8::repaired(readOsVersion(root, kernel.release));
}

}  // namespace vorna
