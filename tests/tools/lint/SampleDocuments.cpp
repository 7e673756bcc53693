// SPDX-License-Identifier: Apache-2.0
#include <tests/tools/lint/SampleDocuments.h>

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <boost/json/string.hpp>

namespace vorna::lint {

namespace {

using boost::json::array;
using boost::json::object;

void apply(std::string_view change, object& to) {
    const boost::json::value members =
        boost::json::parse(boost::json::string_view(change.data(), change.size()));
    for (const auto& member : members.as_object()) {
        if (member.value().is_string() && member.value().as_string() == "<absent>") {
            to.erase(member.key());
        } else {
            to[member.key()] = member.value();
        }
    }
}

object product(const char* identifier) {
    return {{"title", "Yearly"},
            {"price", "$19.99"},
            {"identifier", identifier},
            {"selectedBackgroundColor", "#2B3038"},
            {"unselectedBackgroundColor", "#1D2025"},
            {"selectedBorderColor", "#E6EBF2"},
            {"unselectedBorderColor", "#3A4048"},
            {"titleColor", "#FFFFFF"},
            {"priceColor", "#E6EBF2"}};
}

array products(std::string_view changeOfFirst) {
    array both{product("first"), product("second")};
    apply(changeOfFirst, both[0].as_object());
    return both;
}

object common() {
    return {{"media", "https://example.com/mountains.jpg"},
            {"heading", "Pro"},
            {"headingColor", "#FFFFFF"},
            {"buttonTitle", "Upgrade"},
            {"buttonTitleColor", "#15171A"},
            {"backgroundColor", "#15171A"},
            {"actionButtonColor1", "#F2F4F7"},
            {"actionButtonColor2", "#C9D3E0"}};
}

void addOffer(object& to, std::string_view changeOfFirstProduct) {
    to["paidProducts"] = products(changeOfFirstProduct);
    to["selectedPaidProduct"] = "second";
    to["termsOfUse"] = "https://example.com/terms";
    to["termsOfUseColor"] = "#C2CAD6";
    to["privacyPolicy"] = "https://example.com/privacy";
    to["privacyPolicyColor"] = "#C2CAD6";
    to["restoreButtonColor"] = "#C2CAD6";
    to["footNote"] = "Cancel any time.";
    to["footNoteColor"] = "#9BA1AA";
}

object step(const char* type) {
    object step = common();
    step["type"] = type;
    step["title"] = "Welcome";
    step["titleColor"] = "#FFFFFF";
    return step;
}

}  // namespace

std::string paywall(std::string_view change, std::string_view changeOfFirstProduct) {
    object document = common();
    addOffer(document, changeOfFirstProduct);
    document["details"] = array{"No advertisements"};
    document["detailsColor"] = "#C8CCD2";
    apply(change, document);
    return boost::json::serialize(document);
}

std::string onboarding(std::string_view changeOfBasic, std::string_view changeOfPaywallStep,
                       std::string_view changeOfFirstProduct) {
    object basic = step("basic");
    apply(changeOfBasic, basic);
    object offer = step("paywall");
    addOffer(offer, changeOfFirstProduct);
    apply(changeOfPaywallStep, offer);
    return boost::json::serialize(array{std::move(basic), std::move(offer)});
}

}  // namespace vorna::lint
