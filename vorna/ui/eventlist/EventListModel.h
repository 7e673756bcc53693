// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The rows of the event list, newest first, over a list that grows at its end.

#include <vorna/events/EventListManager.h>

#include <QtCore/QAbstractListModel>
#include <QtQmlIntegration/qqmlintegration.h>

#include <cstddef>
#include <memory>

namespace vorna::ui {

/// The model has a single role, `line`: the event's name, followed by " | " and its custom value if it has
/// one. Shows the list as of the last reload. Main thread.
class EventListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("created by the event list")

  public:
    explicit EventListModel(std::shared_ptr<const EventListManager> manager);

    /// Adds the entries that are new. Every row then shows another entry; views keep their scroll position.
    void reload();

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

  private:
    const std::shared_ptr<const EventListManager> manager_;
    std::size_t count_ = 0;
};

}  // namespace vorna::ui
