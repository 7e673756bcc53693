// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <tools/preview/Draft.h>
#include <vorna/platform/NotificationCenter.h>

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QTimer>

#include <cstddef>
#include <string>
#include <vector>

class QQuickItem;

namespace vorna::ui {
class Window;
}

namespace vorna::preview {

/// A host of the library that shows one document at a time in its window, through the facade, and closes it
/// as hosts do: when the user taps the close button or has come to the end of an onboarding. Afterwards it
/// shows the document again.
class PreviewSession : public QObject {
    Q_OBJECT

  public:
    /// The window must outlive the session.
    PreviewSession(ui::Window& window, std::string mediaService);
    PreviewSession(const PreviewSession&) = delete;
    PreviewSession(PreviewSession&&) = delete;
    PreviewSession& operator=(const PreviewSession&) = delete;
    PreviewSession& operator=(PreviewSession&&) = delete;
    ~PreviewSession() override;

    /// Shows the document in place of what was shown before; an onboarding from its first step, tapping
    /// through to the one that is asked for as far as that goes. `settled` follows.
    void show(const Draft& draft, std::size_t step = 0);

    /// Of an onboarding, counted from 0.
    [[nodiscard]] std::size_t stepOnShow() const;

    /// A screen of the document is on show, not one that says what the document lacks.
    [[nodiscard]] bool isDocumentShown() const;

  Q_SIGNALS:
    /// What was asked for stands still, or nothing will come.
    void settled();
    /// The library has told the host something: its name and what it carries.
    void posted(const QString& notification);
    /// The host closes what is on show, and shows it again soon.
    void closing();

  private:
    enum class State { idle, arriving, leaving };

    void clear();
    void hand();
    void look();
    void tap(const QQuickItem& item);
    void hear(const Notification& notification);
    [[nodiscard]] QQuickItem* actionButton() const;
    [[nodiscard]] std::size_t screens() const;

    ui::Window& window_;
    const std::string mediaService_;
    std::string text_;
    lint::DocumentKind kind_ = lint::DocumentKind::paywall;
    std::size_t step_ = 0;
    State state_ = State::idle;
    int looks_ = 0;
    std::size_t seen_ = 0;
    QTimer clock_;
    QTimer pause_;
    std::vector<NotificationCenter::Observation> observations_;
};

}  // namespace vorna::preview
