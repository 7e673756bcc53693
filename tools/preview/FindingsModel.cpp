// SPDX-License-Identifier: Apache-2.0
#include <tools/preview/FindingsModel.h>

#include <utility>

namespace vorna::preview {

namespace {

enum Role : int { severity = Qt::UserRole, path, place, message, code };

QString toQString(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace

void FindingsModel::set(std::vector<lint::Finding> findings) {
    beginResetModel();
    findings_ = std::move(findings);
    endResetModel();
}

int FindingsModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(findings_.size());
}

QVariant FindingsModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) {
        return {};
    }
    const lint::Finding& finding = findings_[static_cast<std::size_t>(index.row())];
    switch (role) {
    case severity:
        return toQString(name(finding.severity));
    case path:
        return toQString(finding.path.text());
    case place:
        return QStringLiteral("%1:%2").arg(finding.position.line).arg(finding.position.column);
    case message:
        return toQString(finding.message);
    case code:
        return toQString(finding.code);
    default:
        return {};
    }
}

QHash<int, QByteArray> FindingsModel::roleNames() const {
    return {{severity, "severity"}, {path, "path"}, {place, "place"}, {message, "message"}, {code, "code"}};
}

}  // namespace vorna::preview
