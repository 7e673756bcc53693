// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A controller that shows one of several others, chosen by the user. A host with its own tab bar supplies
/// one that reports the selected tab.

#include <vorna/base/Export.h>
#include <vorna/ui/common/ViewController.h>

#include <functional>
#include <memory>

namespace vorna::ui {

class VORNA_EXPORT TabBarController : public vorna::ui::ViewController {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("created by hosts")

  public:
    using Source = std::function<std::shared_ptr<ViewController>()>;

    /// Called on the main thread whenever a screen is to be shown; null means that no tab is selected.
    explicit TabBarController(Source selectedViewController);

    std::shared_ptr<ViewController> selectedViewController();

  private:
    const Source selectedViewController_;
};

}  // namespace vorna::ui
