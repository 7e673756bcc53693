// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/eventlist/EventListViewController.h>

#include <vorna/core/VornaCoreSDK.h>
#include <vorna/ui/common/MainQueue.h>
#include <vorna/ui/common/ViewLoader.h>
#include <vorna/ui/common/Window.h>

#include <QtQuick/QQuickWindow>

#include <utility>

namespace vorna::ui {

EventListViewController::EventListViewController(std::shared_ptr<const EventListManager> eventListManager)
    : tableView_(std::move(eventListManager)) {
    setTitle(QStringLiteral("Event List"));
    setLeftBarButtonTitle(QStringLiteral("Close"));
}

void EventListViewController::viewDidLoad() {
    // A hidden window draws no frames; the reload then waits until it is shown.
    connect(window()->quickWindow(), &QQuickWindow::afterAnimating, this, [this] {
        if (std::exchange(isDue_, false)) {
            tableView_.reload();
        }
    });
    // Posted by the worker, which must not own this controller: it belongs to the main thread.
    observation_ = NotificationCenter::defaultCenter().addObserver(
        VornaCoreSDK::EventListUpdated,
        [isRequested = isRequested_, weak = std::weak_ptr(shared_from_this())](
            const Notification& /*notification*/) { requestReload(isRequested, weak); });
}

void EventListViewController::viewDidDisappear() {
    observation_.end();
}

void EventListViewController::refreshEventList() {
    requestReload(isRequested_, weak_from_this());
}

void EventListViewController::requestReload(const std::shared_ptr<std::atomic<bool>>& isRequested,
                                            const std::weak_ptr<ViewController>& controller) {
    if (isRequested->exchange(true)) {
        return;
    }
    mainQueue::async([isRequested, controller] {
        *isRequested = false;
        if (const std::shared_ptr<ViewController> alive = controller.lock()) {
            static_cast<EventListViewController&>(*alive).reloadAtNextFrame();
        }
    });
}

void EventListViewController::reloadAtNextFrame() {
    const HostWindow* const shownIn = window();
    if (shownIn != nullptr && shownIn->quickWindow() != nullptr) {
        isDue_ = true;
        shownIn->quickWindow()->update();
    }
}

void EventListViewController::closeView() {
    dismiss(true);
}

QUrl EventListViewController::viewSource() const {
    return viewFile("eventlist/EventListView.qml");
}

}  // namespace vorna::ui
