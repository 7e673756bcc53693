// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QString>
#include <QtCore/QVariantMap>
#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>

#include <memory>
#include <stdexcept>

namespace vorna::preview {

/// Creates the object in a file of the program's QML module. Throws std::runtime_error if that fails.
template <typename Type>
std::unique_ptr<Type> makeFromQml(QQmlEngine& engine, const QString& file, const QVariantMap& properties) {
    QQmlComponent component(&engine, QUrl(QStringLiteral("qrc:/VornaPreview/") + file));
    std::unique_ptr<QObject> made(component.createWithInitialProperties(properties));
    auto* const wanted = qobject_cast<Type*>(made.get());
    if (wanted == nullptr) {
        throw std::runtime_error(component.errorString().toStdString());
    }
    static_cast<void>(made.release());
    return std::unique_ptr<Type>(wanted);
}

}  // namespace vorna::preview
