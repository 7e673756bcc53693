// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The program with windows.

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

/// A window of the device's size and one for the board beside it. Follows the file and handles keys.
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
    void update(Draft draft);
    void show(Step step);
    void reportSettled();
    void choose(std::size_t device);
    void reportDevice();

    const Options options_;
    Draft draft_;
    bool isOutdated_ = false;  ///< the document shown is older than the draft, which has errors
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
