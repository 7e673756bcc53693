// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Onboarding documents, valid unless a test changes them.

#include <boost/json.hpp>

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

namespace vorna::support {

/// A basic step with that title; the given fields replace the defaults.
inline boost::json::object
basicStep(std::string_view title,
          std::initializer_list<std::pair<std::string_view, boost::json::value>> fields = {}) {
    boost::json::object step{{"type", "basic"},
                             {"media", "https://media.test/picture.png"},
                             {"title", title},
                             {"titleColor", "#00ff00"},
                             {"heading", "Heading of " + std::string(title)},
                             {"headingColor", "#ffeedd"},
                             {"buttonTitle", "Continue"},
                             {"buttonTitleColor", "#ffffff"},
                             {"backgroundColor", "#1b1b3a"},
                             {"actionButtonColor1", "#ff0000"},
                             {"actionButtonColor2", "#0000ff"},
                             {"exitButtonDelay", 0}};
    for (const auto& [key, value] : fields) {
        step[key] = value;
    }
    return step;
}

inline std::string documentOf(std::initializer_list<boost::json::object> steps) {
    boost::json::array array;
    for (const boost::json::object& step : steps) {
        array.push_back(step);
    }
    return boost::json::serialize(array);
}

}  // namespace vorna::support
