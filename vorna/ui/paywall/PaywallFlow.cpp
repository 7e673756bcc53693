// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/paywall/PaywallFlow.h>

#include <vorna/documents/PaywallValidation.h>
#include <vorna/platform/Log.h>
#include <vorna/text/Utf8.h>
#include <vorna/ui/common/showJSONErrorScreen.h>
#include <vorna/ui/common/topViewController.h>
#include <vorna/ui/paywall/PaywallScreenViewController.h>

#include <memory>
#include <string>
#include <vector>

namespace vorna::ui {

void PaywallFlow::showPaywall(std::string_view jsonString) {
    if (!utf8::isValid(jsonString)) {
        log::debug({"❌ Failed to convert JSON string to Data"});
        return;
    }
    const auto decoded = PaywallParameters::decode(jsonString);
    if (!decoded) {
        log::debug({"❌ JSON Parsing Error: ", json::describe(decoded.error(), jsonString)});
        return;
    }
    const std::shared_ptr<ViewController> top = topViewController();
    if (!top) {
        log::debug({"❌ Failed to find top view controller"});
        return;
    }
    const PaywallParameters& paywall = *decoded;
    if (const std::vector<std::string> missing = validate(paywall); !missing.empty()) {
        showJSONErrorScreen("Paywall", missingFieldsMessage(missing));
        return;
    }
    const auto screen = std::make_shared<PaywallScreenViewController>(paywall);
    screen->modalPresentationStyle = ModalPresentationStyle::fullScreen;
    onShow_.currentPaywallScreen = screen;
    top->present(screen, true);
}

void PaywallFlow::closePaywall() {
    if (!onShow_.currentPaywallScreen) {
        log::debug({"No paywall screen to close"});
        return;
    }
    onShow_.currentPaywallScreen->dismiss(true, [this] {
        onShow_.currentOnboardingScreen = nullptr;
        log::debug({"Paywall screen closed"});
    });
}

}  // namespace vorna::ui
