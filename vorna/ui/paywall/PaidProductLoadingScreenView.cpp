// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/paywall/PaidProductLoadingScreenView.h>

#include <vorna/ui/common/ViewLoader.h>

namespace vorna::ui {

PaidProductLoadingScreenView::PaidProductLoadingScreenView() {
    modalPresentationStyle = ModalPresentationStyle::overFullScreen;
    modalTransitionStyle = ModalTransitionStyle::crossDissolve;
}

QUrl PaidProductLoadingScreenView::viewSource() const {
    return viewFile("paywall/LoadingOverlayView.qml");
}

}  // namespace vorna::ui
