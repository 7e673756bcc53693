// SPDX-License-Identifier: Apache-2.0
/// A host with screens. Its QML finds the module in the program, or on an import path if given.

#include <vorna/core/VornaCoreSDK.h>
#ifndef VORNA_IMPORT_PATH
#include <vorna/qml/registerModule.h>
#endif
#include <vorna/ui/attach.h>
#include <vorna/ui/common/topViewController.h>

#include <QtCore/QElapsedTimer>
#include <QtGui/QGuiApplication>
#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>

#include <cstdio>
#include <memory>

namespace {

constexpr const char* onboarding =
    R"([{"type":"basic","media":"https://media.test/a.png","title":"One","heading":"Heading",)"
    R"("buttonTitle":"Next","backgroundColor":"#1b1b3a","actionButtonColor1":"#ff5e62",)"
    R"("actionButtonColor2":"#ff9966","titleColor":"#ffffff","headingColor":"#ffffff",)"
    R"("buttonTitleColor":"#ffffff"}])";

/// The value that QML reads from the same library.
QString appIDInQml() {
    QQmlEngine engine;
#ifdef VORNA_IMPORT_PATH
    engine.addImportPath(QStringLiteral(VORNA_IMPORT_PATH));
#else
    vorna::qml::registerModule();
#endif
    QQmlComponent component(&engine);
    component.setData("import QtQml\nimport Vorna\nQtObject { property string id: VornaCoreSDK.GetAppID() }",
                      {});
    const std::unique_ptr<QObject> object(component.isReady() ? component.create() : nullptr);
    return object ? object->property("id").toString() : component.errorString();
}

bool hasItemNamed(const QQuickItem& item, const QString& name) {
    if (item.objectName() == name) {
        return true;
    }
    for (const QQuickItem* const child : item.childItems()) {
        if (hasItemNamed(*child, name)) {
            return true;
        }
    }
    return false;
}

}  // namespace

int main(int count, char** arguments) {
    const QGuiApplication application(count, arguments);
    vorna::PlatformOptions options;
    options.serviceURL = "https://127.0.0.1:1";
    options.dataDirectory = arguments[1];
    options.credentialStore = vorna::CredentialStoreKind::file;
    vorna::VornaCoreSDK::UsePlatform(vorna::makePlatform(options));

    QQuickWindow quickWindow;
    quickWindow.resize(375, 667);
    const vorna::ui::Window& window = vorna::ui::attach(quickWindow);
    quickWindow.show();
    vorna::VornaCoreSDK::Init("ui-consumer");
    vorna::VornaCoreSDK::ShowOnboarding(onboarding);
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < 1000) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    const auto top = vorna::ui::topViewController();
    const bool isShown = window.presentedViewControllers().size() == 1 && top && top->view() != nullptr &&
                         hasItemNamed(*top->view(), QStringLiteral("actionButton"));
    const QString appID = appIDInQml();
    std::printf("onboarding %s, application in QML: %s\n", isShown ? "shown" : "not shown",
                qUtf8Printable(appID));
    return isShown && appID == QStringLiteral("ui-consumer") ? 0 : 1;
}
