// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <tools/lint/Finding.h>

#include <QtCore/QAbstractListModel>
#include <QtQmlIntegration/qqmlintegration.h>

#include <vector>

namespace vorna::preview {

/// The linter's findings for QML: roles `severity` ("error", "warning"), `path`, `place` ("line:column"),
/// `message` and `code`.
class FindingsModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("created by the board")

  public:
    void set(std::vector<lint::Finding> findings);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

  private:
    std::vector<lint::Finding> findings_;
};

}  // namespace vorna::preview
