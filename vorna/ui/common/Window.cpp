// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/common/Window.h>

#include <vorna/platform/Log.h>
#include <vorna/ui/common/MainQueue.h>
#include <vorna/ui/common/ObjectTree.h>
#include <vorna/ui/common/ViewLoader.h>

#include <QtGui/QScreen>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>

#include <algorithm>
#include <iterator>
#include <utility>

namespace vorna::ui {

namespace {

// As phones do it.
constexpr std::chrono::milliseconds coverDuration{400};
constexpr std::chrono::milliseconds dissolveDuration{250};

/// Above whatever a host stacks, below the popups of Qt Quick Controls, which lie at 1000001.
constexpr qreal stageHeight = 1'000'000;

/// Our windows: one for each QQuickWindow that was attached, in that order.
std::vector<std::unique_ptr<Window>>& windows() {
    static std::vector<std::unique_ptr<Window>> value;
    return value;
}

Window* key = nullptr;

Transition transitionOf(const ViewController& controller, bool arrives) {
    if (controller.modalTransitionStyle == ModalTransitionStyle::crossDissolve) {
        return {TransitionStyle::crossDissolve, dissolveDuration, QEasingCurve::InOutQuad};
    }
    return {TransitionStyle::coverVertical, coverDuration,
            arrives ? QEasingCurve::OutCubic : QEasingCurve::InCubic};
}

/// Stands for what the host shows where the host has not said more.
class HostViewController final : public ViewController {};

}  // namespace

Window* Window::keyWindow() {
    return key;
}

Window* Window::firstWindow() {
    return windows().empty() ? nullptr : windows().front().get();
}

Window& Window::forQuickWindow(QQuickWindow& quickWindow) {
    for (const std::unique_ptr<Window>& window : windows()) {
        if (window->quickWindow() == &quickWindow) {
            return *window;
        }
    }
    Window& window = *windows().emplace_back(std::make_unique<Window>(quickWindow));
    // The QQuickWindow is gone when this arrives, with all items in it.
    connect(&quickWindow, &QObject::destroyed, &window, [&window] {
        const auto own = std::find_if(windows().begin(), windows().end(),
                                      [&](const auto& other) { return other.get() == &window; });
        const std::unique_ptr<Window> ending = std::move(*own);
        windows().erase(own);
        if (key == &window) {
            key = nullptr;
            if (!windows().empty()) {
                windows().back()->makeKey();
            }
        }
    });
    return window;
}

Window::Window(QQuickWindow& quickWindow)
    : quickWindow_(&quickWindow),
      engine_(sharedEngine()),
      root_(std::make_shared<HostViewController>()) {
    QQuickItem& content = *quickWindow.contentItem();
    hostLayer_ = &makeLayer(content);
    hostLayer_->setObjectName(QStringLiteral("vornaHost"));
    stage_ = &makeLayer(content);
    stage_->setObjectName(QStringLiteral("vornaStage"));
    stage_->setZ(stageHeight);
    root_->setWindow(this);
    adoptHostItems();
    connect(&content, &QQuickItem::childrenChanged, this, &Window::adoptHostItems);

    connect(&quickWindow, &QQuickWindow::widthChanged, this, &Window::screenChanged);
    connect(&quickWindow, &QQuickWindow::heightChanged, this, &Window::screenChanged);
    connect(&quickWindow, &QQuickWindow::visibilityChanged, this, &Window::screenChanged);
    connect(&quickWindow, &QQuickWindow::screenChanged, this, &Window::screenChanged);
    connect(&quickWindow, &QQuickWindow::activeChanged, this, [this] {
        if (const QQuickWindow* const own = this->quickWindow(); own != nullptr && own->isActive()) {
            makeKey();
        }
    });
}

Window::~Window() {
    animation_.reset();
    std::vector<Presentation> ending = std::move(presentations_);
    presentations_.clear();
    while (!ending.empty()) {
        const std::shared_ptr<ViewController> topmost = std::move(ending.back().controller);
        ending.pop_back();
        topmost->leave();
    }
}

QQuickWindow* Window::quickWindow() const {
    // One made in QML is called a window by its meta-object to the very end; C++ knows better.
    return dynamic_cast<QQuickWindow*>(quickWindow_.data());
}

void Window::makeKey() {
    if (std::exchange(key, this) != this) {
        Q_EMIT screenChanged();
    }
}

void Window::setRootViewController(std::shared_ptr<ViewController> controller) {
    if (controller && controller != root_) {
        root_->setWindow(nullptr);
        root_ = std::move(controller);
        // It may have been a page of another one before.
        root_->parent_ = nullptr;
        root_->setWindow(this);
    }
}

QSizeF Window::screenSize() const {
    const QQuickWindow* const window = quickWindow();
    if (window == nullptr) {
        return {};
    }
    const QWindow::Visibility visibility = window->visibility();
    const bool fillsScreen = visibility == QWindow::FullScreen || visibility == QWindow::Maximized;
    if (fillsScreen && window->screen() != nullptr) {
        return window->screen()->geometry().size();
    }
    return window->size();
}

void Window::setSafeAreaInsets(const QMarginsF& insets) {
    if (insets != safeAreaInsets_) {
        safeAreaInsets_ = insets;
        Q_EMIT safeAreaInsetsChanged();
    }
}

void Window::addTransition(Transition transition) {
    nextTransition_ = std::move(transition);
    mainQueue::async([self = QPointer<Window>(this)] {
        if (self) {
            self->nextTransition_.reset();
        }
    });
}

std::vector<std::shared_ptr<ViewController>> Window::presentedViewControllers() const {
    std::vector<std::shared_ptr<ViewController>> controllers;
    for (const Presentation& presentation : presentations_) {
        if (!presentation.isLeaving) {
            controllers.push_back(presentation.controller);
        }
    }
    return controllers;
}

void Window::reportRefusal(std::string_view reason) {
    log::debug({"❌ Failed to present a screen: ", reason});
}

std::shared_ptr<ViewController> Window::presentedOver(const ViewController& controller) const {
    bool found = &controller == root_.get();
    for (const Presentation& presentation : presentations_) {
        if (found && !presentation.isLeaving) {
            return presentation.controller;
        }
        found = found || presentation.controller.get() == &controller;
    }
    return nullptr;
}

std::vector<Window::Presentation>::iterator Window::find(const ViewController& controller) {
    return std::find_if(presentations_.begin(), presentations_.end(), [&](const Presentation& presentation) {
        return presentation.controller.get() == &controller;
    });
}

bool Window::isTop(const ViewController& controller) const {
    return presentations_.empty() ? &controller == root_.get()
                                  : &controller == presentations_.back().controller.get();
}

bool Window::isCovered(std::vector<Presentation>::const_iterator presentation) const {
    return std::any_of(std::next(presentation), presentations_.end(),
                       [](const Presentation& above) { return above.coversFully; });
}

void Window::present(const ViewController& presenter, const std::shared_ptr<ViewController>& controller,
                     bool animated, std::function<void()> completion) {
    if (!finishTransition()) {
        return;
    }
    if (!stage_ || quickWindow() == nullptr || !controller || controller->window() != nullptr) {
        reportRefusal("it is on show already");
        return;
    }
    if (!isTop(presenter)) {
        reportRefusal("another one covers the controller to present from");
        return;
    }
    QQuickItem& layer = makeLayer(*stage_);
    layer.setFlag(QQuickItem::ItemIsFocusScope);
    if (!controller->enter(*this, layer)) {
        layer.deleteLater();
        return;
    }
    const Presentation* const below = presentations_.empty() ? nullptr : &presentations_.back();
    const QPointer<QQuickItem> belowLayer = below == nullptr ? hostLayer_ : below->layer;
    const bool coversFully = controller->modalPresentationStyle == ModalPresentationStyle::fullScreen;
    const std::optional<Transition> attached = std::exchange(nextTransition_, std::nullopt);
    presentations_.push_back(
        {controller, &layer, quickWindow()->activeFocusItem(), coversFully, animated || attached, false});
    settle();
    if (animated) {
        run(transitionOf(*controller, true), {{&layer}, {}}, std::move(completion));
        return;
    }
    if (attached) {
        // A screen that covers only by half keeps what lies below in sight, and in place.
        run(*attached, {{&layer}, coversFully ? QList{belowLayer} : QList<QPointer<QQuickItem>>{}}, [] {});
    }
    if (completion) {
        completion();
    }
}

void Window::dismiss(const ViewController& controller, bool animated, std::function<void()> completion) {
    if (const auto found = find(controller); found == presentations_.end() || found->isLeaving) {
        return;
    }
    if (!finishTransition()) {
        return;
    }
    const auto found = find(controller);
    if (found == presentations_.end() || found->isLeaving) {
        return;
    }
    const std::shared_ptr<ViewController> leaving = found->controller;
    const bool isTopmost = std::next(found) == presentations_.end();
    const std::optional<Transition> attached = std::exchange(nextTransition_, std::nullopt);
    if (isCovered(found) || !(animated || (attached && isTopmost))) {
        remove(*leaving);
        if (completion) {
            completion();
        }
        return;
    }
    found->isLeaving = true;
    const QPointer<QQuickItem> layer = found->layer;
    settle();
    if (animated) {
        run(transitionOf(*leaving, false), {{}, {layer}},
            [this, leaving, completion = std::move(completion)] {
                remove(*leaving);
                if (completion) {
                    completion();
                }
            });
        return;
    }
    const QPointer<QQuickItem> uncovered =
        found == presentations_.begin() ? hostLayer_ : std::prev(found)->layer;
    run(*attached, {{uncovered}, {layer}}, [this, leaving] { remove(*leaving); });
    if (completion) {
        completion();
    }
}

void Window::remove(const ViewController& controller) {
    const auto found = find(controller);
    if (found == presentations_.end()) {
        return;
    }
    const Presentation ending = std::move(*found);
    const auto above = presentations_.erase(found);
    const bool wasTopmost = above == presentations_.end();
    if (!wasTopmost) {
        above->focusBefore = ending.focusBefore;
    }
    ending.controller->leave();
    settle();
    if (ending.layer) {
        ending.layer->setVisible(false);
        // What cannot be seen any more would still get the keys.
        ending.layer->setEnabled(false);
        ending.layer->deleteLater();
    }
    if (wasTopmost) {
        focus(ending.focusBefore);
    }
}

void Window::run(const Transition& transition, TransitionAnimation::Items items, std::function<void()> done) {
    animation_ =
        std::make_unique<TransitionAnimation>(transition, std::move(items), [this, done = std::move(done)] {
            // It may be on the stack until this returns.
            if (animation_) {
                animation_.release()->deleteLater();
            }
            for (Presentation& presentation : presentations_) {
                presentation.isArriving = false;
            }
            settle();
            if (done) {
                done();
            }
        });
}

bool Window::finishTransition() {
    const QPointer<Window> self(this);
    if (animation_) {
        animation_->finish();
    }
    return !self.isNull();
}

/// Draws what can be seen and lets the user reach the topmost screen alone.
void Window::settle() {
    bool isHidden = false;
    bool isBelow = false;
    // NOLINTNEXTLINE(modernize-loop-convert): clang 14 cannot compile the views of libstdc++ 12
    for (auto presentation = presentations_.rbegin(); presentation != presentations_.rend(); ++presentation) {
        if (presentation->layer) {
            presentation->layer->setVisible(!isHidden);
            // A second tap at the place of the first must not reach a screen that the first has called.
            presentation->layer->setEnabled(!isBelow && !presentation->isArriving &&
                                            !presentation->isLeaving);
        }
        if (!presentation->isLeaving) {
            if (!isBelow && !presentation->isArriving) {
                focus(presentation->layer);
            }
            isBelow = true;
        }
        // While a screen arrives or leaves, what it covers is in sight.
        isHidden =
            isHidden || (presentation->coversFully && !presentation->isArriving && !presentation->isLeaving);
    }
    if (hostLayer_) {
        hostLayer_->setVisible(!isHidden);
        hostLayer_->setEnabled(!isBelow);
    }
}

void Window::focus(QQuickItem* item) {
    if (item != nullptr && !item->hasActiveFocus()) {
        item->forceActiveFocus(Qt::OtherFocusReason);
    }
}

/// Whatever the host puts into its window goes under one item, so that it can be moved and hidden as one.
void Window::adoptHostItems() {
    // A window that is being destroyed gives its items up one by one, and has no content item any more.
    if (quickWindow() == nullptr || quickWindow()->contentItem() == nullptr || !hostLayer_ || !stage_) {
        return;
    }
    for (QQuickItem* const item : quickWindow()->contentItem()->childItems()) {
        // Popups of Qt Quick Controls lie in an overlay that must stay where it is.
        if (item != hostLayer_ && item != stage_ && !item->inherits("QQuickOverlay")) {
            item->setParentItem(hostLayer_);
        }
    }
}

QQuickItem& Window::makeLayer(QQuickItem& parent) {
    auto& layer = makeChild<QQuickItem>(parent);
    layer.setParentItem(&parent);
    fillParent(layer, parent);
    return layer;
}

}  // namespace vorna::ui
