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

/// Takes pictures of a document on devices, one at a time.
class PngRenderer {
  public:
    PngRenderer(DeviceWindow& window, PreviewSession& session, std::chrono::milliseconds after)
        : window_(window),
          session_(session),
          after_(after) {}

    struct Picture {
        QImage image;
        bool isOfDocument = false;  ///< rather than of the missing-fields screen or of no screen
        std::size_t step = 0;       ///< of an onboarding, as shown
    };

    /// Shows the document and takes its picture; runs the event loop meanwhile.
    [[nodiscard]] Picture render(const Draft& draft, const Device& device, std::size_t step);

  private:
    DeviceWindow& window_;
    PreviewSession& session_;
    const std::chrono::milliseconds after_;
};

}  // namespace vorna::preview
