// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <tools/preview/Board.h>
#include <tools/preview/Device.h>
#include <tools/preview/DeviceWindow.h>
#include <tools/preview/DocumentWatcher.h>
#include <tools/preview/Options.h>
#include <tools/preview/PreviewSession.h>

#include <QtCore/QObject>
#include <QtQml/QQmlEngine>
#include <QtQuick/QQuickWindow>

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

namespace vorna::preview {

/// The program with windows: one of the device's size, and the board beside it. Follows the file and the
/// keys.
class LivePreview : public QObject {
    Q_OBJECT

  public:
    LivePreview(QQmlEngine& engine, Options options, Draft draft);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    enum class Step { same, first };

    bool press(int key);
    void fileMayHaveChanged();
    void take(Draft draft);
    void show(Step step);
    void hasSettled();
    void choose(std::size_t device);
    void tellDevice();

    const Options options_;
    Draft draft_;
    bool isKept_ = false;  ///< what is on show is older than the draft, which has errors
    std::vector<Device> devices_;
    std::size_t device_ = 0;
    bool hasSafeArea_ = true;
    Board board_;
    DeviceWindow window_;
    PreviewSession session_;
    DocumentWatcher watcher_;
    std::unique_ptr<QQuickWindow> panel_;
};

}  // namespace vorna::preview
