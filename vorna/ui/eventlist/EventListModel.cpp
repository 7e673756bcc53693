// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/eventlist/EventListModel.h>

#include <vorna/ui/common/Conversions.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace vorna::ui {

namespace {

constexpr int lineRole = Qt::UserRole;

QString lineOf(const EventShortData& event) {
    const bool hasValue = event.customValue && !event.customValue->empty();
    return hasValue ? toQString(event.name) + QStringLiteral(" | ") + toQString(*event.customValue)
                    : toQString(event.name);
}

}  // namespace

EventListModel::EventListModel(std::shared_ptr<const EventListManager> manager)
    : manager_(std::move(manager)) {
    reload();
}

void EventListModel::reload() {
    constexpr std::size_t maxRows = std::numeric_limits<int>::max();
    const std::size_t count = std::min(manager_ ? manager_->size() : 0, maxRows);
    if (count <= count_) {
        return;
    }
    // Rows are appended, although new entries appear at the top: each existing row changes its content
    // instead.
    beginInsertRows({}, static_cast<int>(count_), static_cast<int>(count) - 1);
    const std::size_t before = std::exchange(count_, count);
    endInsertRows();
    if (before > 0) {
        Q_EMIT dataChanged(index(0), index(static_cast<int>(before) - 1), {lineRole});
    }
}

int EventListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(count_);
}

QVariant EventListModel::data(const QModelIndex& index, int role) const {
    if (role != lineRole || !index.isValid() || static_cast<std::size_t>(index.row()) >= count_) {
        return {};
    }
    const auto event = manager_->entry(count_ - 1 - static_cast<std::size_t>(index.row()));
    return event ? QVariant(lineOf(*event)) : QVariant();
}

QHash<int, QByteArray> EventListModel::roleNames() const {
    return {{lineRole, QByteArrayLiteral("line")}};
}

}  // namespace vorna::ui
