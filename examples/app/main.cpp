// SPDX-License-Identifier: Apache-2.0
/// A phone-sized application that embeds the library with its screens.
///
///     vorna-app [--service URL] [--ca FILE] [--data DIR] [--documents DIR] [--debug] [--tour DIR]

#include <examples/app/Host.h>
#include <examples/app/Tour.h>

#include <vorna/core/VornaCoreSDK.h>
#include <vorna/ui/attach.h>

#include <QtCore/QCommandLineParser>
#include <QtCore/QTimer>
#include <QtGui/QGuiApplication>
#include <QtQml/QQmlApplicationEngine>
#include <QtQuick/QQuickWindow>

#include <cstdlib>
#include <memory>

namespace {

using vorna::VornaCoreSDK;

struct Options {
    vorna::PlatformOptions platform;
    std::string documents;
    QString tour;
};

Options parse(const QCoreApplication& application) {
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("An example application that embeds VornaCoreSDK."));
    parser.addHelpOption();
    const QCommandLineOption service(QStringLiteral("service"),
                                     QStringLiteral("Scheme and authority of the service."),
                                     QStringLiteral("url"));
    const QCommandLineOption authority(
        QStringLiteral("ca"), QStringLiteral("Certificate authority to trust instead of the system's."),
        QStringLiteral("file"));
    const QCommandLineOption data(QStringLiteral("data"),
                                  QStringLiteral("Folder for preferences and identity."),
                                  QStringLiteral("folder"));
    const QCommandLineOption documents(QStringLiteral("documents"),
                                       QStringLiteral("Folder of the documents of screens."),
                                       QStringLiteral("folder"), QStringLiteral("examples/documents"));
    const QCommandLineOption debug(QStringLiteral("debug"),
                                   QStringLiteral("Print debug output of the library."));
    const QCommandLineOption tour(
        QStringLiteral("tour"),
        QStringLiteral("Walk through automatically, write pictures into the folder, and exit."),
        QStringLiteral("folder"));
    parser.addOptions({service, authority, data, documents, debug, tour});
    parser.process(application);

    Options options;
    options.platform.serviceURL = parser.value(service).toStdString();
    options.platform.certificateAuthorityFile = parser.value(authority).toStdString();
    options.platform.dataDirectory = parser.value(data).toStdString();
    options.platform.bundleIdentifier = "com.example.vorna-app";
    options.documents = parser.value(documents).toStdString();
    options.tour = parser.value(tour);
    VornaCoreSDK::debug = parser.isSet(debug);
    return options;
}

}  // namespace

int main(int count, char** arguments) {
    const QGuiApplication application(count, arguments);
    QGuiApplication::setApplicationVersion(QStringLiteral("1.0"));
    const Options options = parse(application);

    VornaCoreSDK::UsePlatform(vorna::makePlatform(options.platform));
    app::Host host(app::Documents(options.documents, options.platform.serviceURL));
    QQmlApplicationEngine engine;
    engine.setInitialProperties({{QStringLiteral("host"), QVariant::fromValue(&host)},
                                 {QStringLiteral("width"), 390},
                                 {QStringLiteral("height"), 844}});
    engine.load(QUrl(QStringLiteral("qrc:/VornaApp/Main.qml")));
    if (engine.rootObjects().isEmpty()) {
        return EXIT_FAILURE;
    }
    auto& quickWindow = *qobject_cast<QQuickWindow*>(engine.rootObjects().constFirst());
    vorna::ui::Window& window = vorna::ui::attach(quickWindow);
    // A phone-sized window with insets for a notch and a bar, which screens keep clear of.
    window.setSafeAreaInsets({0, 47, 0, 34});
    VornaCoreSDK::Init("vorna-app");

    std::unique_ptr<app::Tour> tour;
    if (!options.tour.isEmpty()) {
        tour = std::make_unique<app::Tour>(window, options.tour);
        QTimer::singleShot(0, tour.get(),
                           [&tour] { QCoreApplication::exit(tour->run() ? EXIT_SUCCESS : EXIT_FAILURE); });
    }
    return QGuiApplication::exec();
}
