// SPDX-License-Identifier: Apache-2.0
#pragma once

/// One of the host's windows, in which the library may show screens: its root view controller represents what
/// the host shows, and a chain of presented screens covers it.
///
/// Created by `vorna::ui::attach`; destroyed with the QQuickWindow. Lives on the main thread.

#include <vorna/base/Export.h>
#include <vorna/ui/common/HostWindow.h>
#include <vorna/ui/common/Transition.h>
#include <vorna/ui/common/ViewController.h>

#include <memory>
#include <vector>

class QQmlEngine;
class QQuickWindow;

namespace vorna::ui {

class HostLayer;
class PresentationChain;

class VORNA_EXPORT Window final : public HostWindow {
    Q_OBJECT

  public:
    /// The window in which screens are shown: the one attached or activated last. Null if there are none.
    static Window* keyWindow();
    /// The window attached first among those that still exist. Null if there are none.
    static Window* firstWindow();
    /// The one for that host window; created by the first call.
    static Window& forQuickWindow(QQuickWindow& quickWindow);
    /// The window that shows the controller, or null.
    static Window* of(const ViewController& controller);

    explicit Window(QQuickWindow& quickWindow);
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;
    Window(Window&&) = delete;
    Window& operator=(Window&&) = delete;
    ~Window() override;

    void makeKey();

    /// Never null.
    std::shared_ptr<ViewController> rootViewController() const;

    /// A navigation or tab bar controller that reports what the host shows. Presented screens stay; null
    /// changes nothing.
    void setRootViewController(std::shared_ptr<ViewController> controller);

    /// Animates the next screen that is presented or dismissed without its own animation within this turn of
    /// the event loop.
    void addTransition(Transition transition);

    /// True while a screen visibly arrives or leaves.
    bool isMoving() const;

    /// The presented screens, lowest first, except one that is being dismissed.
    std::vector<std::shared_ptr<ViewController>> presentedViewControllers() const;

  private:
    /// Kept alive for the views.
    const std::shared_ptr<QQmlEngine> engine_;
    const std::unique_ptr<HostLayer> host_;
    const std::unique_ptr<PresentationChain> chain_;
};

}  // namespace vorna::ui
