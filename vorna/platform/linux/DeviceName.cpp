// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/linux/DeviceName.h>

#include <vorna/platform/linux/ShellAssignments.h>
#include <vorna/platform/linux/SystemFile.h>
#include <vorna/text/Utf8.h>

#include <sys/utsname.h>

namespace vorna {

std::string deviceName(const std::optional<std::string>& machineInfo, std::string_view hostName) {
    const std::optional<std::string> pretty =
        machineInfo ? assignedValue(*machineInfo, "PRETTY_HOSTNAME") : std::nullopt;
    return pretty ? *pretty : std::string(hostName);
}

std::string readDeviceName(const std::string& root, std::string_view hostName) {
    return deviceName(readSystemFile(root + "/etc/machine-info"), hostName);
}

std::string currentDeviceName(const std::string& root) {
    utsname kernel = {};
    uname(&kernel);
    return utf8::repaired(readDeviceName(root, kernel.nodename));
}

}  // namespace vorna
