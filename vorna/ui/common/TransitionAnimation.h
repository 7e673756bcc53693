// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Moves the items of a transition.

#include <vorna/ui/common/Transition.h>

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtCore/QVariantAnimation>
#include <QtQuick/QQuickItem>

#include <functional>

namespace vorna::ui {

/// One transition in progress. Main thread. Destroying it stops the items where they are and does not call
/// `done`.
class TransitionAnimation final : public QObject {
  public:
    struct Items {
        QList<QPointer<QQuickItem>> arriving;
        QList<QPointer<QQuickItem>> leaving;
    };

    /// Starts immediately. Items are as large as their parents and move within them; when `done` is called
    /// they are back at the origin and opaque.
    TransitionAnimation(const Transition& transition, Items items, std::function<void()> done);

    /// Skips to the end and calls `done`, unless that has been called already.
    void finish();

  private:
    void show(double progress);
    void reset();

    const TransitionStyle style_;
    const Items items_;
    std::function<void()> done_;
    QVariantAnimation animation_;
};

}  // namespace vorna::ui
