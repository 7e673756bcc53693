// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <tools/lint/Document.h>
#include <tools/preview/Device.h>

#include <chrono>
#include <optional>
#include <string>
#include <variant>

namespace vorna::preview {

/// What the command line asks for.
struct Options {
    std::string file;
    std::optional<lint::DocumentKind> kind;  ///< otherwise the document's shape tells
    Device device;                           ///< one of the standard ones, or another
    double scale = 1;                        ///< device pixels a logical pixel
    int step = 0;                            ///< of an onboarding, from 0

    /// A picture, or a folder for pictures of all sizes; a window when both are empty.
    std::string picture;
    std::string pictureFolder;
    std::chrono::milliseconds after{1000};  ///< how long a screen stands still before its picture is taken

    std::string certificateAuthorityFile;
    std::string mediaService;  ///< stands in for the one that the examples name, unless empty
    bool isDark = false;
    bool debug = false;

    [[nodiscard]] bool takesPictures() const { return !picture.empty() || !pictureFolder.empty(); }
};

/// The program ends here: after --help and the like, or because of a mistake on the command line.
struct EarlyExit {
    int status = 0;
    std::string output;  ///< for standard output when the status is 0, for standard error otherwise
};

[[nodiscard]] std::variant<Options, EarlyExit> readOptions(int argumentCount, const char* const* arguments);

}  // namespace vorna::preview
