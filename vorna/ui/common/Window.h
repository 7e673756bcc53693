// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A window of the host's in which the library may show screens: its root view controller stands for what the
/// host shows, and a chain of presented screens lies over it.
///
/// Made by `vorna::ui::attach`; ends with the QQuickWindow. Lives on the main thread.

#include <vorna/base/Export.h>
#include <vorna/ui/common/Transition.h>
#include <vorna/ui/common/ViewController.h>

#include <QtCore/QMarginsF>
#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtCore/QSizeF>
#include <QtQmlIntegration/qqmlintegration.h>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>

#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

class QQmlEngine;

namespace vorna::ui {

class VORNA_EXPORT Window final : public QObject {
    Q_OBJECT
    Q_PROPERTY(qreal screenWidth READ screenWidth NOTIFY screenChanged)
    Q_PROPERTY(qreal screenHeight READ screenHeight NOTIFY screenChanged)
    Q_PROPERTY(qreal safeAreaTop READ safeAreaTop NOTIFY safeAreaInsetsChanged)
    Q_PROPERTY(qreal safeAreaLeft READ safeAreaLeft NOTIFY safeAreaInsetsChanged)
    Q_PROPERTY(qreal safeAreaBottom READ safeAreaBottom NOTIFY safeAreaInsetsChanged)
    Q_PROPERTY(qreal safeAreaRight READ safeAreaRight NOTIFY safeAreaInsetsChanged)
    QML_ELEMENT
    QML_UNCREATABLE("made by vorna::ui::attach")

  public:
    /// The window in which screens are shown: the one attached or activated last. Null without any.
    static Window* keyWindow();
    /// The window attached first among those that are still there. Null without any.
    static Window* firstWindow();
    /// The one made for that window of the host's; made on the first call.
    static Window& forQuickWindow(QQuickWindow& quickWindow);

    explicit Window(QQuickWindow& quickWindow);
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;
    Window(Window&&) = delete;
    Window& operator=(Window&&) = delete;
    ~Window() override;

    /// Null from the moment its destruction begins.
    QQuickWindow* quickWindow() const;

    void makeKey();

    /// Never null.
    std::shared_ptr<ViewController> rootViewController() const { return root_; }

    /// A navigation or tab bar controller that answers for what the host shows. What has been presented
    /// stays.
    void setRootViewController(std::shared_ptr<ViewController> controller);

    /// The size of the main screen in logical pixels: of the screen where this window fills it, else of this
    /// window, which stands for a screen on a desktop.
    QSizeF screenSize() const;

    qreal screenWidth() const { return screenSize().width(); }

    qreal screenHeight() const { return screenSize().height(); }

    /// How far notches, rounded corners and system bars reach into the window, in logical pixels. Zero at
    /// start.
    QMarginsF safeAreaInsets() const { return safeAreaInsets_; }

    void setSafeAreaInsets(const QMarginsF& insets);

    qreal safeAreaTop() const { return safeAreaInsets_.top(); }

    qreal safeAreaLeft() const { return safeAreaInsets_.left(); }

    qreal safeAreaBottom() const { return safeAreaInsets_.bottom(); }

    qreal safeAreaRight() const { return safeAreaInsets_.right(); }

    /// The next screen that is presented or dismissed without an animation of its own, within this turn of
    /// the event loop, moves like this.
    void addTransition(Transition transition);

    /// True while a screen arrives or leaves before the user's eyes.
    bool isMoving() const { return animation_ != nullptr; }

    /// The screens on show over the root, lowest first, without one that is on its way out.
    std::vector<std::shared_ptr<ViewController>> presentedViewControllers() const;

  Q_SIGNALS:
    void screenChanged();
    void safeAreaInsetsChanged();

  private:
    friend class ViewController;

    struct Presentation {
        std::shared_ptr<ViewController> controller;
        QPointer<QQuickItem> layer;
        /// What had the keyboard's focus before.
        QPointer<QQuickItem> focusBefore;
        bool coversFully = true;
        bool isArriving = false;
        bool isLeaving = false;
    };

    static void reportRefusal(std::string_view reason);

    std::shared_ptr<ViewController> presentedOver(const ViewController& controller) const;
    void present(const ViewController& presenter, const std::shared_ptr<ViewController>& controller,
                 bool animated, std::function<void()> completion);
    void dismiss(const ViewController& controller, bool animated, std::function<void()> completion);

    std::vector<Presentation>::iterator find(const ViewController& controller);
    bool isTop(const ViewController& controller) const;
    bool isCovered(std::vector<Presentation>::const_iterator presentation) const;
    void remove(const ViewController& controller);
    void run(const Transition& transition, TransitionAnimation::Items items, std::function<void()> done);
    /// False when that has led to the end of this window.
    bool finishTransition();
    void settle();
    static void focus(QQuickItem* item);
    void adoptHostItems();
    static QQuickItem& makeLayer(QQuickItem& parent);

    /// While it is destroyed it still tells of changes, and is no QQuickWindow any more.
    const QPointer<QObject> quickWindow_;
    const std::shared_ptr<QQmlEngine> engine_;
    std::shared_ptr<ViewController> root_;
    std::vector<Presentation> presentations_;
    QMarginsF safeAreaInsets_;
    std::optional<Transition> nextTransition_;
    std::unique_ptr<TransitionAnimation> animation_;

    /// Holds what the host shows.
    QPointer<QQuickItem> hostLayer_;
    /// Holds a layer for each presented screen.
    QPointer<QQuickItem> stage_;
};

}  // namespace vorna::ui
