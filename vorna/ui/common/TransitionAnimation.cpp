// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/common/TransitionAnimation.h>

#include <utility>

namespace vorna::ui {

namespace {

void place(const QPointer<QQuickItem>& item, double x, double y, double opacity) {
    if (item) {
        // Relative to the size, in case the window is resized meanwhile.
        item->setPosition({x * item->width(), y * item->height()});
        item->setOpacity(opacity);
    }
}

}  // namespace

TransitionAnimation::TransitionAnimation(const Transition& transition, Items items,
                                         std::function<void()> done)
    : style_(transition.style),
      items_(std::move(items)),
      done_(std::move(done)) {
    animation_.setStartValue(0.0);
    animation_.setEndValue(1.0);
    animation_.setDuration(static_cast<int>(transition.duration.count()));
    animation_.setEasingCurve(transition.timing);
    connect(&animation_, &QVariantAnimation::valueChanged, this,
            [this](const QVariant& value) { show(value.toDouble()); });
    connect(&animation_, &QVariantAnimation::finished, this, [this] { finish(); });
    show(0);
    animation_.start();
}

void TransitionAnimation::finish() {
    if (!done_) {
        return;
    }
    const std::function<void()> done = std::exchange(done_, nullptr);
    animation_.stop();
    reset();
    done();
}

void TransitionAnimation::show(double progress) {
    const double remaining = 1 - progress;
    for (const QPointer<QQuickItem>& item : items_.arriving) {
        switch (style_) {
        case TransitionStyle::coverVertical:
            place(item, 0, remaining, 1);
            break;
        case TransitionStyle::crossDissolve:
            place(item, 0, 0, progress);
            break;
        case TransitionStyle::pushFromRight:
            place(item, remaining, 0, 1);
            break;
        }
    }
    for (const QPointer<QQuickItem>& item : items_.leaving) {
        switch (style_) {
        case TransitionStyle::coverVertical:
            place(item, 0, progress, 1);
            break;
        case TransitionStyle::crossDissolve:
            place(item, 0, 0, remaining);
            break;
        case TransitionStyle::pushFromRight:
            place(item, -progress, 0, 1);
            break;
        }
    }
}

void TransitionAnimation::reset() {
    for (const QPointer<QQuickItem>& item : items_.arriving) {
        place(item, 0, 0, 1);
    }
    for (const QPointer<QQuickItem>& item : items_.leaving) {
        place(item, 0, 0, 1);
    }
}

}  // namespace vorna::ui
