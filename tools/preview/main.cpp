// SPDX-License-Identifier: Apache-2.0
#include <tools/common/CommandLine.h>
#include <tools/common/Console.h>
#include <tools/common/Files.h>
#include <tools/preview/Board.h>
#include <tools/preview/Console.h>
#include <tools/preview/ContactSheet.h>
#include <tools/preview/DeviceWindow.h>
#include <tools/preview/LivePreview.h>
#include <tools/preview/Options.h>
#include <tools/preview/PngRenderer.h>
#include <tools/preview/PreviewSession.h>
#include <vorna/base/Result.h>
#include <vorna/core/VornaCoreSDK.h>
#include <vorna/platform/Platform.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtGui/QGuiApplication>
#include <QtQml/QQmlEngine>

#include <string>
#include <utility>
#include <vector>

namespace {

using namespace vorna;
using namespace vorna::preview;

constexpr int errorsStatus = 1;
constexpr int failureStatus = 2;

QString pathOf(const std::string& file) {
    return QFile::decodeName(QByteArray::fromStdString(file));
}

bool hasDisplay() {
    return !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") || !qEnvironmentVariableIsEmpty("DISPLAY") ||
           !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

void setVariableUnlessSet(const char* name, const QByteArray& value) {
    if (qEnvironmentVariableIsEmpty(name)) {
        qputenv(name, value);
    }
}

// Qt reads these variables when the application object is created.
void prepareQt(const Options& options) {
    if (options.takesPictures()) {
        // Makes pictures the same on every machine, regardless of graphics driver and desktop scale.
        setVariableUnlessSet("QT_QPA_PLATFORM", "offscreen");
        setVariableUnlessSet("QT_QUICK_BACKEND", "software");
    }
    if (options.takesPictures() || options.scale > 1) {
        qputenv("QT_SCALE_FACTOR", QByteArray::number(options.scale));
    }
}

// For display only: nothing is recorded, sent or kept.
void prepareLibrary(const Options& options) {
    PlatformOptions platform;
    platform.bundleIdentifier = "vorna-preview";
    platform.certificateAuthorityFile = options.certificateAuthorityFile;
    VornaCoreSDK::debug = options.debug;
    VornaCoreSDK::UsePlatform(makePlatform(platform));
}

enum class PictureProblem { noSuchStep, cannotCreate, cannotWrite };

struct PictureError {
    PictureProblem problem = PictureProblem::cannotWrite;
    std::string path;
    std::size_t step = 0;  // that does not exist
};

std::string describe(const PictureError& error) {
    switch (error.problem) {
    case PictureProblem::noSuchStep:
        return error.path + ": there is no step " + std::to_string(error.step);
    case PictureProblem::cannotCreate:
        return error.path + ": cannot create the folder";
    case PictureProblem::cannotWrite:
        return error.path + ": cannot write the picture";
    }
    return error.path;
}

Result<void, PictureError> write(const QImage& picture, const QString& file) {
    if (!picture.save(file, "PNG")) {
        return Unexpected(PictureError{PictureProblem::cannotWrite, file.toStdString(), {}});
    }
    tools::printLine("wrote " + file.toStdString() + " " + text(picture.size()));
    return {};
}

// Writes the pictures of all standard sizes and the sheet.
template <class Render>
Result<void, PictureError> writeAllSizes(const Options& options, const Render& render) {
    const QDir folder(pathOf(options.pictureFolder));
    if (!folder.mkpath(QStringLiteral("."))) {
        return Unexpected(PictureError{PictureProblem::cannotCreate, options.pictureFolder, {}});
    }
    const QString stem = QFileInfo(pathOf(options.file)).completeBaseName();
    const auto file = [&](const QString& name) {
        return folder.filePath(QStringLiteral("%1-%2.png").arg(stem, name));
    };
    std::vector<LabelledPicture> pictures;
    for (const Device& device : standardDevices()) {
        pictures.push_back({QString::fromStdString(device.name), render(device)});
        if (auto written = write(pictures.back().image, file(pictures.back().label)); !written) {
            return written;
        }
    }
    return write(contactSheet(pictures), file(QStringLiteral("sheet")));
}

enum class Shown { completely, notAsAsked };

Result<Shown, PictureError> takePictures(const Options& options, const Draft& draft) {
    const auto step = static_cast<std::size_t>(options.step);
    if (step > 0 && step >= draft.steps) {
        return Unexpected(PictureError{PictureProblem::noSuchStep, options.file, step});
    }
    QQmlEngine engine;
    Board board(QFileInfo(pathOf(options.file)).fileName(), options.isDark);
    board.setFindings(draft.verdict.findings);
    DeviceWindow window(engine, board);
    PreviewSession session(window.window(), options.mediaService);
    PngRenderer renderer(window, session, options.after);

    auto shown = Shown::completely;
    const auto render = [&](const Device& device) {
        PngRenderer::Picture picture = renderer.render(draft, device, step);
        if (!picture.isOfDocument || picture.step != step) {
            shown = Shown::notAsAsked;
        }
        return std::move(picture.image);
    };
    auto written = options.picture.empty() ? writeAllSizes(options, render)
                                           : write(render(options.device), pathOf(options.picture));
    if (!written) {
        return Unexpected(std::move(written).error());
    }
    return shown;
}

int printPictures(const Options& options, const Draft& draft) {
    printFindings(options.file, draft.verdict);
    const auto shown = takePictures(options, draft);
    if (!shown) {
        printError(describe(shown.error()));
        return failureStatus;
    }
    if (*shown == Shown::notAsAsked) {
        tools::printLine("the document is not shown");
    }
    return *shown == Shown::completely && !draft.hasErrors() ? 0 : errorsStatus;
}

int showDocument(Options options, int argumentCount, char** arguments) {
    auto text = tools::readFile(options.file);
    if (!text) {
        printError(options.file + ": " + text.error().message());
        return failureStatus;
    }
    Draft draft = check(*std::move(text), options.kind);
    if (!options.takesPictures() && !hasDisplay()) {
        printError("no display; --png and --all-sizes need none");
        return failureStatus;
    }
    prepareQt(options);
    const QGuiApplication application(argumentCount, arguments);
    prepareLibrary(options);
    if (options.takesPictures()) {
        return printPictures(options, draft);
    }
    QQmlEngine engine;
    const LivePreview preview(engine, std::move(options), std::move(draft));
    return QGuiApplication::exec();
}

}  // namespace

int main(int argumentCount, char** arguments) {
    return tools::runProgram(programName, failureStatus, [&] {
        auto options = readOptions(argumentCount, arguments);
        return options ? showDocument(*std::move(options), argumentCount, arguments)
                       : tools::print(options.error());
    });
}
