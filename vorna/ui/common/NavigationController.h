// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A controller that shows one of a stack of others.
///
/// A host with a navigation of its own, a StackView say, hands over one that answers from it:
///
///     auto page = std::make_shared<vorna::ui::ViewController>();
///     window.setRootViewController(std::make_shared<vorna::ui::NavigationController>([page] { return page;
///     }));

#include <vorna/base/Export.h>
#include <vorna/ui/common/ViewController.h>

#include <functional>
#include <memory>

namespace vorna::ui {

class VORNA_EXPORT NavigationController : public vorna::ui::ViewController {
    Q_OBJECT
    Q_PROPERTY(QString barTitle READ barTitle CONSTANT)
    Q_PROPERTY(QString leftBarButtonText READ leftBarButtonText CONSTANT)
    QML_ELEMENT
    QML_UNCREATABLE("made by hosts and flows")

  public:
    using Answer = std::function<std::shared_ptr<ViewController>()>;

    /// Asked on the main thread whenever a screen is to be shown; may answer null.
    explicit NavigationController(Answer topViewController);
    /// Shows that one controller, whose view it loads as its own, under a navigation bar.
    explicit NavigationController(std::shared_ptr<ViewController> rootViewController);

    /// What was presented over this controller, or else the one on top of its stack. Null without either.
    std::shared_ptr<ViewController> visibleViewController();

    std::shared_ptr<ViewController> topViewController();

    QString barTitle();
    QString leftBarButtonText();
    Q_INVOKABLE void leftBarButtonPressed();

  protected:
    QUrl viewSource() const override;
    QQuickItem* loadView(QQuickItem& parent) override;

  private:
    const Answer answer_;
};

}  // namespace vorna::ui
