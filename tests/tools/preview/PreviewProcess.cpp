// SPDX-License-Identifier: Apache-2.0
#include <tests/tools/preview/PreviewProcess.h>

namespace vorna::preview {

namespace {

std::vector<std::string> wordsFor(const std::vector<std::string>& arguments) {
    std::vector<std::string> words{VORNA_PREVIEW_PATH};
    words.insert(words.end(), arguments.begin(), arguments.end());
    return words;
}

// The variables through which a program finds a display.
std::vector<std::string> hiddenVariables(Display display) {
    if (display == Display::ofTheTest) {
        return {};
    }
    return {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "QT_QUICK_BACKEND", "QT_SCALE_FACTOR"};
}

}  // namespace

PreviewProcess::PreviewProcess(const std::vector<std::string>& arguments, Display display)
    : StartedProgram(wordsFor(arguments), hiddenVariables(display)) {}

PreviewProcess::End run(const std::vector<std::string>& arguments) {
    return PreviewProcess(arguments, Display::none).end();
}

}  // namespace vorna::preview
