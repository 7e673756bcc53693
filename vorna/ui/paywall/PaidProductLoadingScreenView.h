// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The dimming overlay with the spinner.

#include <vorna/ui/common/ViewController.h>

#include <QtQmlIntegration/qqmlintegration.h>

namespace vorna::ui {

class PaidProductLoadingScreenView : public vorna::ui::ViewController {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("created by the overlay's flow")

  public:
    PaidProductLoadingScreenView();

  protected:
    QUrl viewSource() const override;
};

}  // namespace vorna::ui
