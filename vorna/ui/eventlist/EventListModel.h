// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The rows of the event list: the entries of a list that grows at its end, newest first.

#include <vorna/events/EventListManager.h>

#include <QtCore/QAbstractListModel>
#include <QtQmlIntegration/qqmlintegration.h>

#include <cstddef>
#include <memory>

namespace vorna::ui {

/// Each row has one role, `line`: the name, and after " | " the custom value where there is one. What it
/// shows is the list as it was at the last reload. Main thread.
class EventListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the event list")

  public:
    explicit EventListModel(std::shared_ptr<const EventListManager> manager);

    /// Takes up what was added since. Every row stands for another entry then; a view keeps its place.
    void reload();

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

  private:
    const std::shared_ptr<const EventListManager> manager_;
    std::size_t count_ = 0;
};

}  // namespace vorna::ui
