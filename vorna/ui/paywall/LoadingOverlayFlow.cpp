// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/paywall/LoadingOverlayFlow.h>

#include <vorna/ui/common/topViewController.h>
#include <vorna/ui/paywall/PaidProductLoadingScreenView.h>

#include <memory>

namespace vorna::ui {

void LoadingOverlayFlow::show() {
    // An overlay that was closed along with its window does not prevent a new one.
    if (onShow_.currentLoadingScreen && onShow_.currentLoadingScreen->window() != nullptr) {
        return;
    }
    const std::shared_ptr<ViewController> top = topViewController();
    if (!top) {
        return;
    }
    const auto overlay = std::make_shared<PaidProductLoadingScreenView>();
    top->present(overlay, true, [this, overlay] { onShow_.currentLoadingScreen = overlay; });
}

void LoadingOverlayFlow::close() {
    if (onShow_.currentLoadingScreen) {
        onShow_.currentLoadingScreen->dismiss(true, [this] { onShow_.currentLoadingScreen = nullptr; });
    }
}

}  // namespace vorna::ui
