// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Base of the screens with media at the top and a close button that appears after a delay.

#include <vorna/ui/common/MainQueue.h>
#include <vorna/ui/common/MediaLoader.h>
#include <vorna/ui/common/ViewController.h>

#include <QtQmlIntegration/qqmlintegration.h>

#include <cstdint>
#include <string>

namespace vorna::ui {

/// The base class's name is fully qualified, here and in derived classes: moc copies it verbatim, and QML
/// tooling looks it up by that name.
class MediaScreenViewController : public vorna::ui::ViewController {
    Q_OBJECT
    Q_PROPERTY(vorna::ui::MediaLoader* media READ media CONSTANT)
    Q_PROPERTY(bool isExitButtonShown READ isExitButtonShown NOTIFY exitButtonShown)
    Q_PROPERTY(double firstWindowSafeAreaTop READ firstWindowSafeAreaTop NOTIFY firstWindowSafeAreaTopChanged)
    QML_ELEMENT
    QML_UNCREATABLE("created by the flows")

  public:
    MediaLoader* media() { return &media_; }

    /// True once the delay has elapsed.
    bool isExitButtonShown() const { return isExitButtonShown_; }

    /// Top inset of the application's first window, which may be another than this screen's; 0 if there is no
    /// window.
    double firstWindowSafeAreaTop() const;

  Q_SIGNALS:
    void exitButtonShown();
    void firstWindowSafeAreaTopChanged();

  protected:
    /// To be called from viewDidLoad().
    void startMedia(const std::string& mediaURL);

    /// Shows the close button once the delay has elapsed; in the next event loop turn if it is zero or
    /// negative.
    void showExitButtonAfter(std::int64_t seconds);

    void viewDidDisappear() override;

  private:
    MediaLoader media_;
    DelayedTask exitButton_;
    bool isExitButtonShown_ = false;
};

}  // namespace vorna::ui
