// SPDX-License-Identifier: Apache-2.0
#include <tools/preview/Board.h>
#include <tools/preview/Console.h>
#include <tools/preview/ContactSheet.h>
#include <tools/preview/DeviceWindow.h>
#include <tools/preview/LivePreview.h>
#include <tools/preview/Options.h>
#include <tools/preview/PngRenderer.h>
#include <tools/preview/PreviewSession.h>
#include <vorna/core/VornaCoreSDK.h>
#include <vorna/platform/Platform.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtGui/QGuiApplication>
#include <QtQml/QQmlEngine>

#include <exception>
#include <iostream>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace {

using namespace vorna::preview;

constexpr int errorsStatus = 1;
constexpr int failureStatus = 2;

QString pathOf(const std::string& file) {
    return QFile::decodeName(QByteArray::fromStdString(file));
}

// What Qt reads once, when the application object is made. False when there is no display for windows.
bool prepareQt(const Options& options) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        if (options.takesPictures()) {
            qputenv("QT_QPA_PLATFORM", "offscreen");
        } else if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")) {
            return false;
        }
    }
    if (options.takesPictures()) {
        // The same drawing on every machine: without a graphics driver and the desktop's own scale.
        if (qEnvironmentVariableIsEmpty("QT_QUICK_BACKEND")) {
            qputenv("QT_QUICK_BACKEND", "software");
        }
        qputenv("QT_SCALE_FACTOR", QByteArray::number(options.scale));
    } else if (options.scale > 1) {
        qputenv("QT_SCALE_FACTOR", QByteArray::number(options.scale));
    }
    return true;
}

// The library for showing alone: nothing is recorded, sent or kept.
void prepareLibrary(const Options& options) {
    vorna::PlatformOptions platform;
    platform.bundleIdentifier = "vorna-preview";
    platform.certificateAuthorityFile = options.certificateAuthorityFile;
    vorna::VornaCoreSDK::debug = options.debug;
    vorna::VornaCoreSDK::UsePlatform(vorna::makePlatform(platform));
}

bool write(const QImage& picture, const QString& file) {
    if (!picture.save(file, "PNG")) {
        console::complain(file.toStdString() + ": the picture cannot be written");
        return false;
    }
    console::say("wrote " + file.toStdString() + " " + text(picture.size()));
    return true;
}

int takePictures(const Options& options, const Draft& draft) {
    const auto step = static_cast<std::size_t>(options.step);
    console::report(options.file, draft.verdict);
    if (step > 0 && step >= draft.steps) {
        console::complain(options.file + ": there is no step " + std::to_string(step));
        return failureStatus;
    }
    QQmlEngine engine;
    Board board(QFileInfo(pathOf(options.file)).fileName(), options.isDark);
    board.setFindings(draft.verdict.findings);
    DeviceWindow window(engine, board);
    PreviewSession session(window.window(), options.mediaService);
    PngRenderer renderer(window, session, options.after);

    bool isShown = true;
    const auto render = [&](const Device& device) {
        PngRenderer::Picture picture = renderer.render(draft, device, step);
        isShown = isShown && picture.isOfDocument && picture.step == step;
        return std::move(picture.image);
    };
    if (!options.picture.empty()) {
        if (!write(render(options.device), pathOf(options.picture))) {
            return failureStatus;
        }
    } else {
        const QDir folder(pathOf(options.pictureFolder));
        if (!folder.mkpath(QStringLiteral("."))) {
            console::complain(options.pictureFolder + ": the folder cannot be made");
            return failureStatus;
        }
        const QString stem = QFileInfo(pathOf(options.file)).completeBaseName();
        const auto file = [&](const QString& name) {
            return folder.filePath(QStringLiteral("%1-%2.png").arg(stem, name));
        };
        std::vector<LabelledPicture> pictures;
        for (const Device& device : standardDevices()) {
            pictures.push_back({QString::fromStdString(device.name), render(device)});
            if (!write(pictures.back().image, file(pictures.back().label))) {
                return failureStatus;
            }
        }
        if (!write(contactSheet(pictures), file(QStringLiteral("sheet")))) {
            return failureStatus;
        }
    }
    if (!isShown) {
        console::say("the document is not shown");
    }
    return isShown && !draft.hasErrors() ? 0 : errorsStatus;
}

int run(int argumentCount, char** arguments) {
    auto reading = readOptions(argumentCount, arguments);
    if (const auto* exit = std::get_if<EarlyExit>(&reading)) {
        (exit->status == 0 ? std::cout : std::cerr) << exit->output;
        return exit->status;
    }
    auto& options = std::get<Options>(reading);
    auto text = contents(options.file);
    if (const auto* const problem = std::get_if<Unreadable>(&text)) {
        console::complain(options.file + ": " + problem->reason);
        return failureStatus;
    }
    Draft draft = check(std::move(std::get<std::string>(text)), options.kind);
    if (!prepareQt(options)) {
        console::complain("there is no display; --png and --all-sizes need none");
        return failureStatus;
    }
    const QGuiApplication application(argumentCount, arguments);
    prepareLibrary(options);
    if (options.takesPictures()) {
        return takePictures(options, draft);
    }
    QQmlEngine engine;
    const LivePreview preview(engine, std::move(options), std::move(draft));
    return QGuiApplication::exec();
}

}  // namespace

int main(int argumentCount, char** arguments) {
    try {
        return run(argumentCount, arguments);
    } catch (const std::exception& error) {
        console::complain(error.what());
        return failureStatus;
    }
}
