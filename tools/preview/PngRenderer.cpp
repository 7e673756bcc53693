// SPDX-License-Identifier: Apache-2.0
#include <tools/preview/PngRenderer.h>

#include <QtCore/QEventLoop>
#include <QtCore/QTimer>

namespace vorna::preview {

PngRenderer::Picture PngRenderer::render(const Draft& draft, const Device& device, std::size_t step) {
    window_.resizeTo(device);
    window_.quickWindow().show();
    QEventLoop loop;
    QObject::connect(&session_, &PreviewSession::settled, &loop,
                     [&] { QTimer::singleShot(after_, &loop, &QEventLoop::quit); });
    session_.show(draft, step);
    loop.exec();
    return {window_.quickWindow().grabWindow(), session_.isDocumentShown(), session_.currentStep()};
}

}  // namespace vorna::preview
