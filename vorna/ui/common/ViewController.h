// SPDX-License-Identifier: Apache-2.0
#pragma once

/// One screen: a view and what stands behind it. Screens are presented over one another, as a chain that
/// begins with the root view controller of a window.
///
/// Controllers are held by shared pointers and live on the main thread. While one is on show its window holds
/// it; when it is dismissed, its view and everything that works for it ends, also when somebody still holds
/// the controller.

#include <vorna/base/Export.h>

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

class Window;

enum class ModalPresentationStyle : std::uint8_t {
    /// Covers everything below, which is then not drawn any more.
    fullScreen,
    /// Covers everything below and lets it shine through.
    overFullScreen
};

enum class ModalTransitionStyle : std::uint8_t { coverVertical, crossDissolve };

class VORNA_EXPORT ViewController : public QObject, public std::enable_shared_from_this<ViewController> {
    Q_OBJECT
    Q_MOC_INCLUDE("vorna/ui/common/Window.h")
    Q_PROPERTY(vorna::ui::Window* window READ window NOTIFY windowChanged)
    QML_ELEMENT
    QML_UNCREATABLE("made by the flows")

  public:
    ViewController();
    ViewController(const ViewController&) = delete;
    ViewController& operator=(const ViewController&) = delete;
    ViewController(ViewController&&) = delete;
    ViewController& operator=(ViewController&&) = delete;
    ~ViewController() override;

    /// Both count for the next presentation.
    ModalPresentationStyle modalPresentationStyle = ModalPresentationStyle::fullScreen;
    ModalTransitionStyle modalTransitionStyle = ModalTransitionStyle::coverVertical;

    /// The window in whose chain this controller, or the one that contains it, is; null when it is not on
    /// show.
    Window* window() const;

    /// The container: a navigation or tab bar controller. Null where there is none.
    ViewController* parentViewController() const { return parent_; }

    /// The controller that was presented over this one, or over the one that contains it, and is not on its
    /// way out. Null where there is none.
    std::shared_ptr<ViewController> presentedViewController() const;

    /// Shows another controller over this one. Does nothing, and says so in the log, when this controller is
    /// not on show, when another covers it already, or when the other is on show somewhere.
    ///
    /// Animated: the other arrives in its own transition style. Not animated: it is there at once, or moves
    /// as a transition tells that was added to the window beforehand. The completion runs when the other is
    /// in place: at the end of an animation, or before this call returns; never when there is nothing shown.
    void present(const std::shared_ptr<ViewController>& controller, bool animated,
                 std::function<void()> completion = {});

    /// Takes this screen away, and no other: what was presented over it stays. A contained controller takes
    /// away its container. Does nothing, and runs no completion, when it is not presented or is on its way
    /// out already.
    void dismiss(bool animated, std::function<void()> completion = {});

    /// What a navigation bar over this controller shows.
    QString title() const { return title_; }

    QString leftBarButtonTitle() const { return leftBarButtonTitle_; }

    virtual void leftBarButtonTapped() {}

    /// The view, once it has been loaded; null before and afterwards.
    QQuickItem* view() const { return view_; }

  Q_SIGNALS:
    void windowChanged();

  protected:
    /// The QML file of the view. Its root has a required property `controller`.
    virtual QUrl viewSource() const { return {}; }

    /// Makes the view as a child of the item, which gives it its size. Null when that fails.
    virtual QQuickItem* loadView(QQuickItem& parent);

    /// The view has been made; the window is known.
    virtual void viewDidLoad() {}

    /// The screen has been taken away: timers, downloads and players end here.
    virtual void viewDidDisappear() {}

    void setTitle(const QString& title) { title_ = title; }

    /// There is no button while its title is empty.
    void setLeftBarButtonTitle(const QString& title) { leftBarButtonTitle_ = title; }

    /// Makes this the container of the other, loads the other's view into the item, and lets it end with this
    /// one. False when that fails.
    bool embed(std::shared_ptr<ViewController> child, QQuickItem& parent);

    /// Makes this the container of the other. False, and nothing changes, where the other is this one or
    /// contains it.
    bool contain(ViewController& child);

  private:
    friend class Window;

    bool enter(Window& window, QQuickItem& parent);
    void setWindow(Window* window);
    void leave();
    /// This controller, or the outermost one that contains it.
    const ViewController& outermost() const;

    QPointer<ViewController> parent_;
    QPointer<Window> window_;
    QPointer<QQuickItem> view_;
    std::shared_ptr<ViewController> embedded_;
    QString title_;
    QString leftBarButtonTitle_;
};

}  // namespace vorna::ui
