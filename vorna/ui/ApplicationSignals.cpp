// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/ApplicationSignals.h>

#include <vorna/platform/NotificationCenter.h>
#include <vorna/ui/MemoryPressure.h>
#include <vorna/ui/common/MainQueue.h>
#include <vorna/ui/common/ObjectTree.h>

#include <QtGui/QGuiApplication>

#include <memory>
#include <string_view>
#include <utility>

namespace vorna::ui {

namespace {

/// Owned by the application object.
class Deliverer final : public QObject {
  public:
    Deliverer() {
        mainQueue::async([self = QPointer<Deliverer>(this)] {
            if (self) {
                self->begin();
            }
        });
    }

  private:
    void begin() {
        post(UIApplicationDidFinishLaunchingNotification);
        connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, &Deliverer::follow);
        // Qt does not report that an application which quits becomes inactive.
        connect(qGuiApp, &QCoreApplication::aboutToQuit, this, &Deliverer::resign);
        follow(QGuiApplication::applicationState());
    }

    void resign() {
        if (std::exchange(isActive_, false)) {
            post(UIApplicationWillResignActiveNotification);
        }
    }

    void follow(Qt::ApplicationState state) {
        const bool isActive = state == Qt::ApplicationActive;
        const bool isInBackground = state == Qt::ApplicationHidden || state == Qt::ApplicationSuspended;
        if (!isActive) {
            resign();
        }
        if (isInBackground != std::exchange(wasInBackground_, isInBackground)) {
            post(isInBackground ? UIApplicationDidEnterBackgroundNotification
                                : UIApplicationWillEnterForegroundNotification);
        }
        if (isActive && !std::exchange(isActive_, true)) {
            post(UIApplicationDidBecomeActiveNotification);
        }
    }

    static void post(std::string_view name) { NotificationCenter::defaultCenter().post(name); }

    bool isActive_ = false;
    bool wasInBackground_ = false;
    MemoryPressure memoryPressure_{[] { post(UIApplicationDidReceiveMemoryWarningNotification); }};
};

}  // namespace

void ApplicationSignals::deliver() {
    if (!deliverer_ && qGuiApp != nullptr) {
        deliverer_ = &makeChild<Deliverer>(*qGuiApp);
    }
}

}  // namespace vorna::ui
