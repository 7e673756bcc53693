// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Documents of screens that offer products, valid unless a test changes them.

#include <boost/json.hpp>

#include <fstream>
#include <initializer_list>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>

namespace vorna::support {

using DocumentFields = std::initializer_list<std::pair<std::string_view, boost::json::value>>;

namespace detail {

inline boost::json::object with(boost::json::object object, DocumentFields fields) {
    for (const auto& [key, value] : fields) {
        object[key] = value;
    }
    return object;
}

}  // namespace detail

/// A product with only a title and a price.
inline boost::json::object product(std::string_view identifier, DocumentFields fields = {}) {
    return detail::with({{"title", "Title"},
                         {"titleColor", "#ffffff"},
                         {"price", "$9.99"},
                         {"priceColor", "#ffffff"},
                         {"identifier", identifier},
                         {"selectedBackgroundColor", "#204060"},
                         {"unselectedBackgroundColor", "#101820"},
                         {"selectedBorderColor", "#ff00ff"},
                         {"unselectedBorderColor", "#808080"}},
                        fields);
}

/// Products "p0", "p1" and so on.
inline boost::json::array products(int count) {
    boost::json::array array;
    for (int index = 0; index < count; ++index) {
        array.push_back(product("p" + std::to_string(index)));
    }
    return array;
}

/// With three products, of which the second, "p1", is selected, and a close button without delay.
inline boost::json::object paywall(DocumentFields fields = {}) {
    return detail::with({{"media", "https://media.test/picture.png"},
                         {"heading", "Heading"},
                         {"headingColor", "#ffeedd"},
                         {"details", {"First", "Second"}},
                         {"detailsColor", "#ddeeff"},
                         {"paidProducts", products(3)},
                         {"selectedPaidProduct", "p1"},
                         {"exitButtonDelay", 0},
                         {"exitButtonColor", "#ffffff"},
                         {"buttonTitle", "Continue"},
                         {"buttonTitleColor", "#ffffff"},
                         {"termsOfUse", "https://terms.test/a"},
                         {"termsOfUseColor", "#00ff00"},
                         {"privacyPolicy", "https://privacy.test/b"},
                         {"privacyPolicyColor", "#00ffff"},
                         {"restoreButtonColor", "#ffff00"},
                         {"footNote", "Foot note"},
                         {"footNoteColor", "#cccccc"},
                         {"backgroundColor", "#1b1b3a"},
                         {"actionButtonColor1", "#ff0000"},
                         {"actionButtonColor2", "#0000ff"}},
                        fields);
}

inline std::string paywallText(DocumentFields fields = {}) {
    return boost::json::serialize(paywall(fields));
}

/// A step of an onboarding, with the same products.
inline boost::json::object paywallStep(DocumentFields fields = {}) {
    boost::json::object step = paywall();
    step["type"] = "paywall";
    step["title"] = "Title";
    step["titleColor"] = "#00ff00";
    return detail::with(std::move(step), fields);
}

/// The text of an example document, given its path below the examples; empty if there is none.
inline std::string exampleDocument(const std::string& path) {
    std::ifstream file(std::string(VORNA_EXAMPLE_DOCUMENTS) + "/" + path);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

}  // namespace vorna::support
