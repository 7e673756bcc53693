// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A debugging aid: the events handed to the network in the current run, newest first.

#include <vorna/events/EventListManager.h>
#include <vorna/platform/NotificationCenter.h>
#include <vorna/ui/common/ViewController.h>
#include <vorna/ui/eventlist/EventListModel.h>

#include <QtQmlIntegration/qqmlintegration.h>

#include <atomic>
#include <memory>

namespace vorna::ui {

class EventListViewController final : public vorna::ui::ViewController {
    Q_OBJECT
    Q_PROPERTY(vorna::ui::EventListModel* tableView READ tableView CONSTANT)
    QML_ELEMENT
    QML_UNCREATABLE("created by the event list's flow")

  public:
    explicit EventListViewController(std::shared_ptr<const EventListManager> eventListManager);

    EventListModel* tableView() { return &tableView_; }

    /// Shows new events. Requests between two frames are combined into one reload. Any thread.
    void refreshEventList();

    /// Dismisses the screen.
    void closeView();

    void leftBarButtonTapped() override { closeView(); }

  protected:
    QUrl viewSource() const override;
    void viewDidLoad() override;
    void viewDidDisappear() override;

  private:
    static void requestReload(const std::shared_ptr<std::atomic<bool>>& isRequested,
                              const std::weak_ptr<ViewController>& controller);
    void reloadAtNextFrame();

    EventListModel tableView_;
    NotificationCenter::Observation observation_;
    /// Whether a request has been posted to the main thread but not yet handled.
    const std::shared_ptr<std::atomic<bool>> isRequested_ = std::make_shared<std::atomic<bool>>(false);
    /// Whether to reload before the next frame.
    bool isDue_ = false;
};

}  // namespace vorna::ui
