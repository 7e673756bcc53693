// SPDX-License-Identifier: Apache-2.0
#pragma once

/// One screen: a view and the logic behind it. Screens are presented over one another, as a chain that begins
/// with the root view controller of a window.
///
/// Controllers are held by shared pointers and live on the main thread. While one is on screen, its window
/// holds it. Dismissing it destroys its view and everything that serves it, even if others still hold the
/// controller.

#include <vorna/base/Export.h>
#include <vorna/ui/common/HostWindow.h>
#include <vorna/ui/common/Presenter.h>

#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtCore/QString>
#include <QtCore/QUrl>
#include <QtQmlIntegration/qqmlintegration.h>
#include <QtQuick/QQuickItem>

#include <cstdint>
#include <functional>
#include <memory>

namespace vorna::ui {

enum class ModalPresentationStyle : std::uint8_t {
    /// Covers everything below, which is then no longer drawn.
    fullScreen,
    /// Covers everything below and leaves it visible.
    overFullScreen
};

enum class ModalTransitionStyle : std::uint8_t { coverVertical, crossDissolve };

class VORNA_EXPORT ViewController : public QObject,
                                    public std::enable_shared_from_this<ViewController>,
                                    public Presentable {
    Q_OBJECT
    Q_PROPERTY(vorna::ui::HostWindow* window READ window NOTIFY windowChanged)
    QML_ELEMENT
    QML_UNCREATABLE("created by the flows")

  public:
    ViewController();
    ViewController(const ViewController&) = delete;
    ViewController& operator=(const ViewController&) = delete;
    ViewController(ViewController&&) = delete;
    ViewController& operator=(ViewController&&) = delete;
    ~ViewController() override;

    /// Both apply to the next presentation.
    ModalPresentationStyle modalPresentationStyle = ModalPresentationStyle::fullScreen;
    ModalTransitionStyle modalTransitionStyle = ModalTransitionStyle::coverVertical;

    /// The window that shows this controller, or the one that contains it; null if it is not on screen.
    /// `Window::of` returns the same with all its operations.
    HostWindow* window() const;

    /// The container: a navigation or tab bar controller. Null if there is none.
    ViewController* parentViewController() const { return parent_; }

    /// The controller that was presented over this one, or over the one that contains it, and is not being
    /// dismissed; null if there is none.
    std::shared_ptr<ViewController> presentedViewController() const;

    /// Shows another controller over this one. Logs why and does nothing if this controller is not on screen
    /// or is covered already, or if the other is null, on screen already or has no view.
    ///
    /// Animated: the other arrives in its own transition style. Not animated: it is in place immediately, or
    /// moves according to the transition added to the window beforehand. The completion runs when the other
    /// is in place: at the end of its animation, or else before this call returns; never if nothing is shown.
    void present(const std::shared_ptr<ViewController>& controller, bool animated,
                 std::function<void()> completion = {});

    /// Removes this screen and no other: screens presented over it stay. For a contained controller, its
    /// container is removed. Does nothing, and runs no completion, if it is not presented or is already being
    /// dismissed.
    void dismiss(bool animated, std::function<void()> completion = {});

    /// Shown by a navigation bar over this controller.
    QString title() const { return title_; }

    QString leftBarButtonTitle() const { return leftBarButtonTitle_; }

    virtual void leftBarButtonTapped() {}

    /// The view while it is loaded; otherwise null.
    QQuickItem* view() const { return view_; }

  Q_SIGNALS:
    void windowChanged();

  protected:
    /// The QML file of the view. Its root has a required property `controller`.
    virtual QUrl viewSource() const { return {}; }

    /// Creates the view as a child of the item, which determines its size. Null, with a log line, on failure.
    virtual QQuickItem* loadView(QQuickItem& parent);

    /// The view has been created; the window is known.
    virtual void viewDidLoad() {}

    /// The screen has been removed: stop timers, downloads and players.
    virtual void viewDidDisappear() {}

    void setTitle(const QString& title) { title_ = title; }

    /// An empty title means no button.
    void setLeftBarButtonTitle(const QString& title) { leftBarButtonTitle_ = title; }

    /// Makes this the container of the other, loads the other's view into the item, and destroys it with this
    /// one. Does nothing if this cannot contain it, or its view cannot be created.
    void embed(std::shared_ptr<ViewController> child, QQuickItem& parent);

    /// Makes this the container of the other. False, and nothing changes, if the other is this one or
    /// contains it.
    [[nodiscard]] bool contain(ViewController& child);

  private:
    void becomeRoot(Presenter& presenter) override;
    void resignRoot() override;
    Result<void, PresentationFailure> enter(Presenter& presenter, QQuickItem& layer) override;
    void leave() override;

    void setPresenter(Presenter* presenter);
    /// This controller, or the outermost one that contains it.
    const ViewController& outermost() const;

    QPointer<ViewController> parent_;
    /// Set only in the outermost controller.
    QPointer<Presenter> presenter_;
    QPointer<QQuickItem> view_;
    std::shared_ptr<ViewController> embedded_;
    QString title_;
    QString leftBarButtonTitle_;
};

}  // namespace vorna::ui
