// SPDX-License-Identifier: Apache-2.0
/// The plugin that engines load from their import path.

#include <vorna/qml/registerModule.h>

#include <QtQml/QQmlEngineExtensionPlugin>

class VornaPlugin : public QQmlEngineExtensionPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QQmlEngineExtensionInterface_iid)

  public:
    explicit VornaPlugin(QObject* parent = nullptr) : QQmlEngineExtensionPlugin(parent) {
        vorna::qml::registerModule();
    }
};

#include "VornaPlugin.moc"
