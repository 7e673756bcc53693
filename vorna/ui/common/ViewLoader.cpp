// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/common/ViewLoader.h>

#include <vorna/platform/Log.h>
#include <vorna/ui/common/ObjectTree.h>
#include <vorna/ui/common/ScreensRuntime.h>

#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>

#include <memory>
#include <tuple>

// Keeps the types and files of our QML module in programs that link the library statically.
extern void qml_register_types_Vorna_Ui();  // NOLINT(readability-identifier-naming)

static void initialiseResources() {
    Q_INIT_RESOURCE(qmake_Vorna_Ui);
    Q_INIT_RESOURCE(vorna_ui_raw_qml_0);
    Q_INIT_RESOURCE(qmlcache_vorna_ui);
}

namespace vorna::ui {

namespace {

struct ViewEngine {
    ViewEngine() {
        initialiseResources();
        qml_register_types_Vorna_Ui();
    }

    std::weak_ptr<QQmlEngine> engine;
};

}  // namespace

std::shared_ptr<QQmlEngine> sharedEngine() {
    auto& shared = ScreensRuntime::part<ViewEngine>();
    std::shared_ptr<QQmlEngine> engine = shared.engine.lock();
    if (!engine) {
        engine = std::make_shared<QQmlEngine>();
        engine->addImportPath(QStringLiteral("qrc:/vorna/qml"));
        engine->setOutputWarningsToStandardError(true);
        shared.engine = engine;
    }
    return engine;
}

QUrl viewFile(const char* path) {
    return QUrl(QStringLiteral("qrc:/vorna/qml/Vorna/Ui/") + QString::fromLatin1(path));
}

QQuickItem* loadViewFrom(const QUrl& file, QObject& controller, QQuickItem& parent) {
    const std::shared_ptr<QQmlEngine> engine = sharedEngine();
    QQmlComponent component(engine.get(), file);
    QVariantMap properties;
    properties[QStringLiteral("controller")] = QVariant::fromValue(&controller);
    // Qt 6.4 crashes when asked to create an object from a component with errors.
    std::unique_ptr<QObject> object(component.isReady() ? component.createWithInitialProperties(properties)
                                                        : nullptr);
    auto* const item = qobject_cast<QQuickItem*>(object.get());
    if (item == nullptr) {
        log::debug({"❌ A view could not be created: ", component.errorString().toStdString()});
        return nullptr;
    }
    std::ignore = object.release();
    item->setParent(&parent);
    item->setParentItem(&parent);
    fillParent(*item, parent);
    return item;
}

}  // namespace vorna::ui
