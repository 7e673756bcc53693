// SPDX-License-Identifier: Apache-2.0
#include <vorna/device/DeviceMetadata.h>

namespace vorna {

std::string timezoneText(std::int32_t secondsFromGMT) {
    const std::int32_t hours = secondsFromGMT / 3600;
    const std::int32_t rest = secondsFromGMT - hours * 3600;
    std::int32_t minutes = rest / 60;
    if (rest < -59) {
        minutes = -minutes;
    }
    std::string text = secondsFromGMT < 0 ? "UTC-" : "UTC+";
    text += std::to_string(hours);
    text += minutes < 10 ? ":0" : ":";
    text += std::to_string(minutes);
    return text;
}

}  // namespace vorna
