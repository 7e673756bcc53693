// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <tools/preview/ContactSheet.h>
#include <tools/preview/Device.h>
#include <tools/preview/DeviceWindow.h>
#include <tools/preview/PreviewSession.h>

#include <QtCore/QString>
#include <QtGui/QImage>

#include <chrono>

namespace vorna::preview {

/// Takes pictures of a document on devices, one after the other.
class PngRenderer {
  public:
    PngRenderer(DeviceWindow& window, PreviewSession& session, std::chrono::milliseconds after)
        : window_(window),
          session_(session),
          after_(after) {}

    struct Picture {
        QImage image;
        bool isOfDocument = false;  ///< and not of a screen that says what is missing, or of none
        std::size_t step = 0;       ///< of an onboarding
    };

    /// Returns when it is there; the event loop runs meanwhile.
    [[nodiscard]] Picture render(const Draft& draft, const Device& device, std::size_t step);

  private:
    DeviceWindow& window_;
    PreviewSession& session_;
    const std::chrono::milliseconds after_;
};

}  // namespace vorna::preview
