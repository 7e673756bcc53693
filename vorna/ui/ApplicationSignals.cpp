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
        follow(QGuiApplication::applicationState());
    }

    void follow(Qt::ApplicationState state) {
        const bool isActive = state == Qt::ApplicationActive;
        const bool isInBackground = state == Qt::ApplicationHidden || state == Qt::ApplicationSuspended;
        if (!isActive && std::exchange(wasActive_, false)) {
            post(UIApplicationWillResignActiveNotification);
        }
        if (isInBackground != std::exchange(wasInBackground_, isInBackground)) {
            post(isInBackground ? UIApplicationDidEnterBackgroundNotification
                                : UIApplicationWillEnterForegroundNotification);
        }
        if (isActive && !std::exchange(wasActive_, true)) {
            post(UIApplicationDidBecomeActiveNotification);
        }
    }

    static void post(std::string_view name) { NotificationCenter::defaultCenter().post(name); }

    bool wasActive_ = false;
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
