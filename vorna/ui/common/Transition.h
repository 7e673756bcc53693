// SPDX-License-Identifier: Apache-2.0
#pragma once

/// How one screen takes the place of another before the user's eyes.

#include <QtCore/QEasingCurve>
#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtCore/QVariantAnimation>
#include <QtQuick/QQuickItem>

#include <chrono>
#include <cstdint>
#include <functional>

namespace vorna::ui {

enum class TransitionStyle : std::uint8_t {
    /// The new screen rises from below over the old one, and sinks back when it goes.
    coverVertical,
    /// The new screen fades in over the old one, and out when it goes.
    crossDissolve,
    /// Both move to the left: the new screen comes in from the right and pushes the old one out.
    pushFromRight
};

struct Transition {
    TransitionStyle style = TransitionStyle::pushFromRight;
    std::chrono::milliseconds duration{300};
    QEasingCurve timing{QEasingCurve::InOutQuad};
};

/// One transition under way. Lives on the main thread; ends silently with this object.
class TransitionAnimation final : public QObject {
  public:
    struct Items {
        QList<QPointer<QQuickItem>> arriving;
        QList<QPointer<QQuickItem>> leaving;
    };

    /// Starts at once. Items are moved within their parents, whose size is theirs; when `done` is called they
    /// are back at the origin and opaque.
    TransitionAnimation(const Transition& transition, Items items, std::function<void()> done);

    /// Goes to the end at once and calls `done`. Does nothing when it has been called already.
    void finish();

  private:
    void show(double progress);
    void rest();

    const TransitionStyle style_;
    const Items items_;
    std::function<void()> done_;
    QVariantAnimation animation_;
};

}  // namespace vorna::ui
