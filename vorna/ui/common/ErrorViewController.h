// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The screen that shows a developer what is missing from a document. It cannot be closed by the user.

#include <vorna/ui/common/ViewController.h>

#include <QtCore/QString>

#include <string_view>

namespace vorna::ui {

class ErrorViewController final : public vorna::ui::ViewController {
    Q_OBJECT
    Q_PROPERTY(QString text READ text CONSTANT)
    QML_ELEMENT
    QML_UNCREATABLE("created by showJSONErrorScreen")

  public:
    ErrorViewController(std::string_view title, std::string_view message);

    QString text() const { return text_; }

  protected:
    QUrl viewSource() const override;

  private:
    const QString text_;
};

}  // namespace vorna::ui
