// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A controller that shows one of a stack of others.
///
/// A host with its own navigation, such as a StackView, supplies one that reports its current page:
///
///     auto page = std::make_shared<vorna::ui::ViewController>();
///     window.setRootViewController(
///         std::make_shared<vorna::ui::NavigationController>([page] { return page; }));

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
    QML_UNCREATABLE("created by hosts and flows")

  public:
    using Source = std::function<std::shared_ptr<ViewController>()>;

    /// Called on the main thread whenever a screen is to be shown; may return null.
    explicit NavigationController(Source topViewController);
    /// Shows that controller under a navigation bar and loads its view inside this one's.
    explicit NavigationController(std::shared_ptr<ViewController> rootViewController);

    /// Returns the controller presented over this one, else the top of its stack; null if there is neither.
    std::shared_ptr<ViewController> visibleViewController();

    std::shared_ptr<ViewController> topViewController();

    QString barTitle();
    QString leftBarButtonText();
    Q_INVOKABLE void leftBarButtonPressed();

  protected:
    QUrl viewSource() const override;
    QQuickItem* loadView(QQuickItem& parent) override;

  private:
    const Source topViewController_;
};

}  // namespace vorna::ui
