// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The command line.

#include <tools/common/CommandLine.h>
#include <tools/lint/Document.h>
#include <tools/preview/Device.h>
#include <vorna/base/Result.h>

#include <chrono>
#include <optional>
#include <string>

namespace vorna::preview {

/// The options, complete and consistent.
struct Options {
    std::string file;
    std::optional<lint::DocumentKind> kind;  ///< std::nullopt: inferred from the document
    Device device;                           ///< a standard one or another
    double scale = 1;                        ///< device pixels per logical pixel
    int step = 0;                            ///< of an onboarding, counted from 0

    /// A picture, or a folder for pictures of all sizes; shows windows if both are empty.
    std::string picture;
    std::string pictureFolder;
    std::chrono::milliseconds after{1000};  ///< from the end of a screen's animation to its picture

    std::string certificateAuthorityFile;
    std::string mediaService;  ///< replaces the one in the examples unless empty
    bool isDark = false;
    bool debug = false;

    [[nodiscard]] bool takesPictures() const { return !picture.empty() || !pictureFolder.empty(); }
};

/// Parses the command line.
[[nodiscard]] Result<Options, tools::EarlyExit> readOptions(int argumentCount, const char* const* arguments);

}  // namespace vorna::preview
