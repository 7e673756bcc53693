// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A controller that shows one of several others, chosen by the user. A host with a tab bar of its own hands
/// over one that answers from it.

#include <vorna/base/Export.h>
#include <vorna/ui/common/ViewController.h>

#include <functional>
#include <memory>

namespace vorna::ui {

class VORNA_EXPORT TabBarController : public vorna::ui::ViewController {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by hosts")

  public:
    using Answer = std::function<std::shared_ptr<ViewController>()>;

    /// Asked on the main thread whenever a screen is to be shown; null means that no tab is selected.
    explicit TabBarController(Answer selectedViewController);

    std::shared_ptr<ViewController> selectedViewController();

  private:
    const Answer answer_;
};

}  // namespace vorna::ui
