// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/common/PresentationChain.h>

#include <vorna/ui/common/MainQueue.h>

#include <QtQuick/QQuickWindow>

#include <algorithm>
#include <chrono>
#include <iterator>
#include <utility>

namespace vorna::ui {

namespace {

// As on phones.
constexpr std::chrono::milliseconds coverDuration{400};
constexpr std::chrono::milliseconds dissolveDuration{250};

Transition transitionOf(const ViewController& controller, bool arrives) {
    if (controller.modalTransitionStyle == ModalTransitionStyle::crossDissolve) {
        return {TransitionStyle::crossDissolve, dissolveDuration, QEasingCurve::InOutQuad};
    }
    return {TransitionStyle::coverVertical, coverDuration,
            arrives ? QEasingCurve::OutCubic : QEasingCurve::InCubic};
}

/// The root until the host sets one.
class HostViewController final : public ViewController {};

Presentable& presentable(ViewController& controller) {
    return controller;
}

void focus(QQuickItem* item) {
    if (item != nullptr && !item->hasActiveFocus()) {
        item->forceActiveFocus(Qt::OtherFocusReason);
    }
}

}  // namespace

PresentationChain::PresentationChain(HostWindow& window, HostLayer& host)
    : window_(window),
      host_(host),
      root_(std::make_shared<HostViewController>()) {
    presentable(*root_).becomeRoot(*this);
}

PresentationChain::~PresentationChain() {
    removeAll();
}

void PresentationChain::removeAll() {
    animation_.reset();
    Entries ending = std::exchange(entries_, {});
    while (!ending.empty()) {
        const std::shared_ptr<ViewController> topmost = std::move(ending.back().controller);
        ending.pop_back();
        presentable(*topmost).leave();
    }
}

void PresentationChain::setRoot(std::shared_ptr<ViewController> controller) {
    if (controller && controller != root_) {
        presentable(*root_).resignRoot();
        root_ = std::move(controller);
        presentable(*root_).becomeRoot(*this);
    }
}

std::vector<std::shared_ptr<ViewController>> PresentationChain::presented() const {
    std::vector<std::shared_ptr<ViewController>> controllers;
    for (const Entry& entry : entries_) {
        if (!entry.isLeaving) {
            controllers.push_back(entry.controller);
        }
    }
    return controllers;
}

void PresentationChain::addTransition(Transition transition) {
    nextTransition_ = std::move(transition);
    mainQueue::async([self = QPointer<PresentationChain>(this)] {
        if (self) {
            self->nextTransition_.reset();
        }
    });
}

std::shared_ptr<ViewController> PresentationChain::presentedOver(const ViewController& controller) const {
    bool found = &controller == root_.get();
    for (const Entry& entry : entries_) {
        if (found && !entry.isLeaving) {
            return entry.controller;
        }
        found = found || entry.controller.get() == &controller;
    }
    return nullptr;
}

PresentationChain::Entries::iterator PresentationChain::find(const ViewController& controller) {
    return std::find_if(entries_.begin(), entries_.end(),
                        [&](const Entry& entry) { return entry.controller.get() == &controller; });
}

bool PresentationChain::isTop(const ViewController& controller) const {
    return &controller == (entries_.empty() ? root_ : entries_.back().controller).get();
}

bool PresentationChain::isCovered(Entries::const_iterator entry) const {
    return std::any_of(std::next(entry), entries_.end(),
                       [](const Entry& above) { return above.coversFully; });
}

Result<void, PresentationFailure>
PresentationChain::present(const ViewController& over, const std::shared_ptr<ViewController>& controller,
                           bool animated, std::function<void()> completion) {
    if (!survivesEndOfTransition() || window_.quickWindow() == nullptr) {
        return Unexpected(PresentationFailure::presenterNotOnScreen);
    }
    if (!controller) {
        return Unexpected(PresentationFailure::nothingToPresent);
    }
    if (controller->window() != nullptr) {
        return Unexpected(PresentationFailure::alreadyOnScreen);
    }
    if (!isTop(over)) {
        return Unexpected(PresentationFailure::presenterCovered);
    }
    QQuickItem* const layer = host_.addScreenLayer();
    if (layer == nullptr) {
        return Unexpected(PresentationFailure::noView);
    }
    layer->setFlag(QQuickItem::ItemIsFocusScope);
    if (auto entered = presentable(*controller).enter(*this, *layer); !entered) {
        layer->deleteLater();
        return entered;
    }
    const QPointer<QQuickItem> below = entries_.empty() ? host_.item() : entries_.back().layer;
    const bool coversFully = controller->modalPresentationStyle == ModalPresentationStyle::fullScreen;
    const std::optional<Transition> added = std::exchange(nextTransition_, std::nullopt);
    entries_.push_back(
        {controller, layer, window_.quickWindow()->activeFocusItem(), coversFully, animated || added, false});
    updateLayers();
    if (animated) {
        animate(transitionOf(*controller, true), {{layer}, {}}, std::move(completion));
        return {};
    }
    if (added) {
        // A screen that does not cover fully leaves what is below visible, and in place.
        animate(*added, {{layer}, coversFully ? QList{below} : QList<QPointer<QQuickItem>>{}}, {});
    }
    if (completion) {
        completion();
    }
    return {};
}

void PresentationChain::dismiss(const ViewController& controller, bool animated,
                                std::function<void()> completion) {
    if (const auto found = find(controller); found == entries_.end() || found->isLeaving) {
        return;
    }
    if (!survivesEndOfTransition()) {
        return;
    }
    const auto found = find(controller);
    if (found == entries_.end() || found->isLeaving) {
        return;
    }
    const std::shared_ptr<ViewController> leaving = found->controller;
    const bool isTopmost = std::next(found) == entries_.end();
    const std::optional<Transition> added = std::exchange(nextTransition_, std::nullopt);
    if (isCovered(found) || !(animated || (added && isTopmost))) {
        remove(*leaving);
        if (completion) {
            completion();
        }
        return;
    }
    found->isLeaving = true;
    const QPointer<QQuickItem> layer = found->layer;
    updateLayers();
    if (animated) {
        animate(transitionOf(*leaving, false), {{}, {layer}},
                [this, leaving, completion = std::move(completion)] {
                    remove(*leaving);
                    if (completion) {
                        completion();
                    }
                });
        return;
    }
    const QPointer<QQuickItem> uncovered = found == entries_.begin() ? host_.item() : std::prev(found)->layer;
    animate(*added, {{uncovered}, {layer}}, [this, leaving] { remove(*leaving); });
    if (completion) {
        completion();
    }
}

void PresentationChain::remove(const ViewController& controller) {
    const auto found = find(controller);
    if (found == entries_.end()) {
        return;
    }
    const Entry ending = std::move(*found);
    const auto above = entries_.erase(found);
    const bool wasTopmost = above == entries_.end();
    if (!wasTopmost) {
        above->focusBefore = ending.focusBefore;
    }
    presentable(*ending.controller).leave();
    updateLayers();
    if (ending.layer) {
        ending.layer->setVisible(false);
        // An invisible item would still receive keys.
        ending.layer->setEnabled(false);
        ending.layer->deleteLater();
    }
    if (wasTopmost) {
        focus(ending.focusBefore);
    }
}

void PresentationChain::animate(const Transition& transition, TransitionAnimation::Items items,
                                std::function<void()> done) {
    animation_ =
        std::make_unique<TransitionAnimation>(transition, std::move(items), [this, done = std::move(done)] {
            // It is the caller, so it cannot be deleted yet.
            if (animation_) {
                animation_.release()->deleteLater();
            }
            for (Entry& entry : entries_) {
                entry.isArriving = false;
            }
            updateLayers();
            if (done) {
                done();
            }
        });
}

/// Ends the transition in progress, whose completion may destroy the window. Returns whether this chain still
/// exists.
bool PresentationChain::survivesEndOfTransition() {
    const QPointer<PresentationChain> self(this);
    if (animation_) {
        animation_->finish();
    }
    return !self.isNull();
}

/// Hides what is fully covered and enables the topmost screen only.
void PresentationChain::updateLayers() {
    bool isHidden = false;
    bool isBelow = false;
    // NOLINTNEXTLINE(modernize-loop-convert): clang 14 cannot compile the views of libstdc++ 12
    for (auto entry = entries_.rbegin(); entry != entries_.rend(); ++entry) {
        const bool isMoving = entry->isArriving || entry->isLeaving;
        if (entry->layer) {
            entry->layer->setVisible(!isHidden);
            // The second tap of a double tap must not reach the screen that the first one has presented.
            entry->layer->setEnabled(!isBelow && !isMoving);
        }
        if (!entry->isLeaving) {
            if (!isBelow && !entry->isArriving) {
                focus(entry->layer);
            }
            isBelow = true;
        }
        // While a screen moves, what it covers is visible.
        isHidden = isHidden || (entry->coversFully && !isMoving);
    }
    if (const QPointer<QQuickItem> hostItem = host_.item()) {
        hostItem->setVisible(!isHidden);
        hostItem->setEnabled(!isBelow);
    }
}

}  // namespace vorna::ui
