// SPDX-License-Identifier: Apache-2.0
#include <tools/preview/Board.h>

#include <utility>

namespace vorna::preview {

namespace {

constexpr int mostPosted = 50;

}  // namespace

Board::Board(QString document, bool isDark) : document_(std::move(document)), isDark_(isDark) {}

void Board::setDevice(const QString& device) {
    device_ = device;
    Q_EMIT deviceChanged();
}

void Board::setStatus(const QString& status) {
    status_ = status;
    Q_EMIT statusChanged();
}

void Board::setFindings(std::vector<lint::Finding> findings) {
    findings_.set(std::move(findings));
    Q_EMIT findingsChanged();
}

void Board::setDark(bool isDark) {
    if (std::exchange(isDark_, isDark) != isDark) {
        Q_EMIT isDarkChanged();
    }
}

void Board::addPosted(const QString& notification) {
    posted_.prepend(notification);
    if (posted_.size() > mostPosted) {
        posted_.removeLast();
    }
    Q_EMIT postedChanged();
}

}  // namespace vorna::preview
