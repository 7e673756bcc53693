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
    // The window draws nothing while it is hidden; what is due waits for the first frame then.
    connect(window()->quickWindow(), &QQuickWindow::afterAnimating, this, [this] {
        if (std::exchange(isDue_, false)) {
            tableView_.reload();
        }
    });
    // Posted by the worker, which must never hold this controller: it belongs to the main thread.
    observation_ = NotificationCenter::defaultCenter().addObserver(
        VornaCoreSDK::EventListUpdated, [refresh = refresh_, weak = std::weak_ptr(shared_from_this())](
                                            const Notification& /*notification*/) { ask(refresh, weak); });
}

void EventListViewController::viewDidDisappear() {
    observation_.end();
}

void EventListViewController::refreshEventList() {
    ask(refresh_, weak_from_this());
}

void EventListViewController::ask(const std::shared_ptr<std::atomic<bool>>& refresh,
                                  const std::weak_ptr<ViewController>& controller) {
    if (refresh->exchange(true)) {
        return;
    }
    mainQueue::async([refresh, controller] {
        *refresh = false;
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
