// SPDX-License-Identifier: Apache-2.0
#pragma once

/// What the screens with media at the top have in common: the media, and a close button that comes after a
/// while.

#include <vorna/ui/common/MainQueue.h>
#include <vorna/ui/common/MediaLoader.h>
#include <vorna/ui/common/ViewController.h>

#include <QtQmlIntegration/qqmlintegration.h>

#include <cstdint>
#include <memory>
#include <string>

namespace vorna::ui {

/// Here and in every class below, the base's name is whole: moc writes it down as it stands, and the tools of
/// QML look for that.
class MediaScreenViewController : public vorna::ui::ViewController {
    Q_OBJECT
    Q_PROPERTY(vorna::ui::MediaLoader* media READ media CONSTANT)
    Q_PROPERTY(bool isExitButtonShown READ isExitButtonShown NOTIFY exitButtonShown)
    Q_PROPERTY(double firstWindowSafeAreaTop READ firstWindowSafeAreaTop NOTIFY firstWindowSafeAreaTopChanged)
    QML_ELEMENT
    QML_UNCREATABLE("made by the flows")

  public:
    MediaLoader* media() { return &media_; }

    /// From the end of the delay on.
    bool isExitButtonShown() const { return isExitButtonShown_; }

    /// The top inset of the application's first window, which need not be the one that shows this screen; 0
    /// when there is none.
    double firstWindowSafeAreaTop() const;

  Q_SIGNALS:
    void exitButtonShown();
    void firstWindowSafeAreaTopChanged();

  protected:
    /// Called as the view is loaded.
    void startMedia(const std::string& mediaURL);

    /// Shows the close button after so many seconds.
    void showExitButtonAfter(std::int64_t seconds);

    void viewDidDisappear() override;

  private:
    MediaLoader media_;
    DelayedTask exitButton_;
    bool isExitButtonShown_ = false;
};

}  // namespace vorna::ui
