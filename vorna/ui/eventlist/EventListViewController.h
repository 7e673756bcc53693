// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The list of the events that were handed to the network in this run, newest first: a help for developers.

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
    QML_UNCREATABLE("made by the event list's flow")

  public:
    explicit EventListViewController(std::shared_ptr<const EventListManager> eventListManager);

    EventListModel* tableView() { return &tableView_; }

    /// Shows what was added since. Reloads that are asked for between two frames are one. Any thread.
    void refreshEventList();

    /// Dismisses the screen.
    void closeView();

    void leftBarButtonTapped() override { closeView(); }

  protected:
    QUrl viewSource() const override;
    void viewDidLoad() override;
    void viewDidDisappear() override;

  private:
    static void ask(const std::shared_ptr<std::atomic<bool>>& refresh,
                    const std::weak_ptr<ViewController>& controller);
    void reloadAtNextFrame();

    EventListModel tableView_;
    NotificationCenter::Observation observation_;
    /// True while a reload was asked for and has not reached the main thread yet.
    const std::shared_ptr<std::atomic<bool>> refresh_ = std::make_shared<std::atomic<bool>>(false);
    bool isDue_ = false;
};

}  // namespace vorna::ui
