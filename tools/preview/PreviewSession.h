// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A host of the library.

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

/// Shows one document at a time in its window, through the facade, and closes it as hosts do: when the user
/// taps the close button or reaches the end of an onboarding. Then shows it again.
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

    /// Replaces the current document; starts an onboarding at its first step and taps through to `step` as
    /// far as possible. Emits `settled` when done.
    void show(const Draft& draft, std::size_t step = 0);

    /// The current step of the onboarding, counted from 0.
    [[nodiscard]] std::size_t currentStep() const;

    /// Whether a screen of the document is shown, rather than the one that lists missing fields.
    [[nodiscard]] bool isDocumentShown() const;

  Q_SIGNALS:
    /// The screens have stopped moving, or none will appear.
    void settled();
    /// The library has posted a notification: its name and user info.
    void posted(const QString& notification);
    /// The host is closing the document, and will show it again soon.
    void closing();

  private:
    enum class State { idle, arriving, leaving };

    void clear();
    void present();
    void poll();
    void tap(const QQuickItem& item);
    void handle(const Notification& notification);
    [[nodiscard]] QQuickItem* actionButton() const;
    [[nodiscard]] std::size_t screens() const;

    ui::Window& window_;
    const std::string mediaService_;
    std::string text_;
    lint::DocumentKind kind_ = lint::DocumentKind::paywall;
    std::size_t step_ = 0;
    State state_ = State::idle;
    int unchangedPolls_ = 0;
    std::size_t lastScreens_ = 0;
    QTimer pollTimer_;
    QTimer reopenTimer_;
    std::vector<NotificationCenter::Observation> observations_;
};

}  // namespace vorna::preview
