// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The host's window as screens see it: the QQuickWindow, the size of the screen and the safe area. In QML it
/// is called `Window`. Lives on the main thread.

#include <vorna/base/Export.h>

#include <QtCore/QMarginsF>
#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtCore/QSizeF>
#include <QtQmlIntegration/qqmlintegration.h>

class QQuickWindow;

namespace vorna::ui {

class VORNA_EXPORT HostWindow : public QObject {
    Q_OBJECT
    Q_PROPERTY(qreal screenWidth READ screenWidth NOTIFY screenChanged)
    Q_PROPERTY(qreal screenHeight READ screenHeight NOTIFY screenChanged)
    Q_PROPERTY(qreal safeAreaTop READ safeAreaTop NOTIFY safeAreaInsetsChanged)
    Q_PROPERTY(qreal safeAreaLeft READ safeAreaLeft NOTIFY safeAreaInsetsChanged)
    Q_PROPERTY(qreal safeAreaBottom READ safeAreaBottom NOTIFY safeAreaInsetsChanged)
    Q_PROPERTY(qreal safeAreaRight READ safeAreaRight NOTIFY safeAreaInsetsChanged)
    QML_NAMED_ELEMENT(Window)
    QML_UNCREATABLE("created by vorna::ui::attach")

  public:
    explicit HostWindow(QQuickWindow& quickWindow);
    HostWindow(const HostWindow&) = delete;
    HostWindow& operator=(const HostWindow&) = delete;
    HostWindow(HostWindow&&) = delete;
    HostWindow& operator=(HostWindow&&) = delete;
    ~HostWindow() override;

    /// Null as soon as its destruction begins.
    QQuickWindow* quickWindow() const;

    /// The size of the main screen in logical pixels: that of the physical screen if this window fills it,
    /// otherwise that of this window, which stands in for a screen on a desktop.
    QSizeF screenSize() const;

    qreal screenWidth() const { return screenSize().width(); }

    qreal screenHeight() const { return screenSize().height(); }

    /// Distance that notches, rounded corners and system bars extend into the window, in logical pixels.
    /// Initially zero.
    QMarginsF safeAreaInsets() const { return safeAreaInsets_; }

    void setSafeAreaInsets(const QMarginsF& insets);

    qreal safeAreaTop() const { return safeAreaInsets_.top(); }

    qreal safeAreaLeft() const { return safeAreaInsets_.left(); }

    qreal safeAreaBottom() const { return safeAreaInsets_.bottom(); }

    qreal safeAreaRight() const { return safeAreaInsets_.right(); }

  Q_SIGNALS:
    /// The size may have changed, or this window has become the key window.
    void screenChanged();
    void safeAreaInsetsChanged();

  private:
    /// Emits signals while it is being destroyed, when it is no longer a QQuickWindow.
    const QPointer<QObject> quickWindow_;
    QMarginsF safeAreaInsets_;
};

}  // namespace vorna::ui
