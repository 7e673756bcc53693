// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The two sides of a presentation: the one that presents and the screen that is presented. Each uses the
/// other through the interface here.

#include <vorna/base/Export.h>
#include <vorna/base/Result.h>

#include <QtCore/QObject>

#include <cstdint>
#include <functional>
#include <memory>

class QQuickItem;

namespace vorna::ui {

class HostWindow;
class ViewController;

enum class PresentationFailure : std::uint8_t {
    /// The presenting controller is not on screen.
    presenterNotOnScreen,
    /// Another screen covers the presenting controller.
    presenterCovered,
    /// There is no controller to present.
    nothingToPresent,
    alreadyOnScreen,
    /// The view could not be created. The log says why.
    noView
};

/// Presents and dismisses screens in one window. Controllers passed here are never contained in others. Main
/// thread.
class VORNA_EXPORT Presenter : public QObject {
  public:
    virtual HostWindow& window() const = 0;

    /// Returns the controller that is presented directly over that one and not being dismissed; null if there
    /// is none.
    virtual std::shared_ptr<ViewController> presentedOver(const ViewController& controller) const = 0;

    /// As `ViewController::present`. On failure nothing is shown and the completion never runs. This
    /// presenter may be destroyed before the call returns.
    virtual Result<void, PresentationFailure> present(const ViewController& over,
                                                      const std::shared_ptr<ViewController>& controller,
                                                      bool animated, std::function<void()> completion) = 0;

    /// As `ViewController::dismiss`. This presenter may be destroyed before the call returns.
    virtual void dismiss(const ViewController& controller, bool animated,
                         std::function<void()> completion) = 0;
};

/// A screen as its presenter sees it.
class VORNA_EXPORT Presentable {
  public:
    /// Becomes the bottom of the presenter's chain, and leaves its container if it has one.
    virtual void becomeRoot(Presenter& presenter) = 0;
    virtual void resignRoot() = 0;

    /// Loads the view into the item. On failure nothing has changed.
    virtual Result<void, PresentationFailure> enter(Presenter& presenter, QQuickItem& layer) = 0;

    /// Destroys the view and everything that serves it.
    virtual void leave() = 0;

  protected:
    Presentable() = default;
    Presentable(const Presentable&) = default;
    Presentable& operator=(const Presentable&) = default;
    Presentable(Presentable&&) = default;
    Presentable& operator=(Presentable&&) = default;
    ~Presentable() = default;
};

}  // namespace vorna::ui
