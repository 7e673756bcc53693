// SPDX-License-Identifier: Apache-2.0
#include <tools/preview/Options.h>

#include <tools/common/Number.h>

#include <CLI/CLI.hpp>

#include <array>
#include <cmath>
#include <string_view>
#include <utility>
#include <vector>

namespace vorna::preview {
namespace {

constexpr int largestSide = 8192;
constexpr double largestScale = 4;
constexpr double longestWait = 3600;
constexpr std::string_view defaultDevice = "390x844";

constexpr const char* description =
    "Shows a document that describes a paywall or an onboarding as an application would, and updates it\n"
    "whenever the file changes. Or takes pictures of it, which needs no display.";

constexpr const char* footer =
    "Keys: N, P next, previous device; S safe area on/off; D dark/light desktop; R reload; O restart the\n"
    "onboarding; Q quit.\n"
    "Exit status: 0 if shown; 1 if errors keep a screen from being shown; 2 if a file cannot be read or\n"
    "written or the command line is wrong.";

std::optional<double> readScale(std::string_view text) {
    const auto scale = tools::parseNumber<double>(text);
    const bool isUsable = scale && *scale >= 1 && *scale <= largestScale;
    return isUsable ? scale : std::nullopt;
}

struct ScaledSize {
    QSize size;
    std::optional<double> scale;
};

// "390x844" or "390x844@2".
std::optional<ScaledSize> readSize(std::string_view text) {
    ScaledSize result;
    const std::size_t at = text.find('@');
    if (at != std::string_view::npos) {
        result.scale = readScale(text.substr(at + 1));
        if (!result.scale) {
            return std::nullopt;
        }
        text = text.substr(0, at);
    }
    const std::size_t cross = text.find('x');
    if (cross == std::string_view::npos) {
        return std::nullopt;
    }
    const auto width = tools::parseNumber<int>(text.substr(0, cross));
    const auto height = tools::parseNumber<int>(text.substr(cross + 1));
    if (!width || !height || *width < 1 || *height < 1 || *width > largestSide || *height > largestSide) {
        return std::nullopt;
    }
    result.size = QSize(*width, *height);
    return result;
}

// "47,0,34,0": top, left, bottom, right.
std::optional<QMargins> readSafeArea(std::string_view text) {
    std::vector<int> sides;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find(',', begin), text.size());
        const auto side = tools::parseNumber<int>(text.substr(begin, end - begin));
        if (!side || *side < 0 || *side > largestSide) {
            return std::nullopt;
        }
        sides.push_back(*side);
        begin = end + 1;
    }
    if (sides.size() != 4) {
        return std::nullopt;
    }
    return QMargins(sides[1], sides[0], sides[3], sides[2]);
}

}  // namespace

Result<Options, tools::EarlyExit> readOptions(int argumentCount, const char* const* arguments) {
    Options options;
    std::string kind;
    std::string device;
    std::string size;
    std::string safeArea;
    std::string scale;
    double after = std::chrono::duration<double>(options.after).count();

    std::vector<std::string> devices;
    for (const Device& standard : standardDevices()) {
        devices.push_back(standard.name);
    }

    CLI::App app(description, "vorna-preview");
    app.footer(footer);
    app.get_formatter()->column_width(28);
    app.add_option("DOCUMENT", options.file, "Document to show")->type_name("");
    app.add_option("--kind", kind, "Kind of the document (default: inferred from its shape)")
        ->type_name("paywall|onboarding")
        ->check(CLI::IsMember(std::vector<std::string>{"paywall", "onboarding"}).description(""));
    auto* const deviceOption =
        app.add_option("--device", device,
                       "Standard size with its safe area: " + CLI::detail::join(devices, ", ") +
                           " (default: " + std::string(defaultDevice) + ")")
            ->type_name("NAME")
            ->check(CLI::IsMember(devices).description(""));
    auto* const sizeOption =
        app.add_option("--size", size, "Any other size, and device pixels per logical pixel (default: 1)")
            ->type_name("WxH[@SCALE]");
    auto* const safeAreaOption =
        app.add_option("--safe-area", safeArea, "Insets for notches and bars")->type_name("T,L,B,R");
    auto* const scaleOption =
        app.add_option("--scale", scale, "Device pixels per logical pixel, 1 to 4")->type_name("SCALE");
    app.add_option("--step", options.step, "Step of an onboarding, from 0, reached by tapping through")
        ->type_name("N")
        ->check(CLI::NonNegativeNumber.description(""));
    auto* const pictureOption =
        app.add_option("--png", options.picture, "Write a picture and exit")->type_name("FILE");
    auto* const folderOption =
        app.add_option("--all-sizes", options.pictureFolder,
                       "Write a picture of each standard size and a sheet of them all, and exit")
            ->type_name("DIR");
    auto* const afterOption =
        app.add_option("--after", after,
                       "Time from the end of a screen's animation to its picture (default: 1)")
            ->type_name("SECONDS")
            ->check(CLI::Range(0.0, longestWait).description(""));
    app.add_option("--ca", options.certificateAuthorityFile,
                   "Certificate authority to trust instead of the system's")
        ->type_name("FILE")
        ->check(CLI::ExistingFile.description(""));
    app.add_option("--media-service", options.mediaService, "Replaces https://127.0.0.1:8443 in the document")
        ->type_name("URL");
    app.add_flag("--dark", options.isDark, "Start with a dark desktop");
    app.add_flag("--debug", options.debug, "Print debug output of the library");
    if (auto parsed = tools::parse(app, argumentCount, arguments); !parsed) {
        return Unexpected(std::move(parsed).error());
    }
    const auto mistake = [&app](const std::string& text) { return tools::mistake(app, text); };

    if (options.file.empty()) {
        return mistake("no DOCUMENT given");
    }
    const std::array<std::pair<const CLI::Option*, const CLI::Option*>, 6> oneOnly{
        {{deviceOption, sizeOption},
         {scaleOption, sizeOption},
         {pictureOption, folderOption},
         {folderOption, deviceOption},
         {folderOption, sizeOption},
         {folderOption, safeAreaOption}}};
    for (const auto& [one, other] : oneOnly) {
        if (one->count() > 0 && other->count() > 0) {
            return mistake(one->get_name() + " cannot be combined with " + other->get_name());
        }
    }
    if ((pictureOption->count() > 0 && options.picture.empty()) ||
        (folderOption->count() > 0 && options.pictureFolder.empty())) {
        return mistake("--png and --all-sizes need a path");
    }
    if (afterOption->count() > 0 && !options.takesPictures()) {
        return mistake("--after needs --png or --all-sizes");
    }
    options.device = *standardDevice(device.empty() ? defaultDevice : device);
    if (!scale.empty()) {
        const auto read = readScale(scale);
        if (!read) {
            return mistake("--scale: " + scale + " is not between 1 and 4");
        }
        options.scale = *read;
    }
    if (sizeOption->count() > 0) {
        const auto read = readSize(size);
        if (!read) {
            return mistake("--size: " + size + " is not of the form 390x844 or 390x844@2");
        }
        options.device = {preview::text(read->size), read->size, {}};
        options.scale = read->scale.value_or(options.scale);
    }
    if (safeAreaOption->count() > 0) {
        const auto read = readSafeArea(safeArea);
        if (!read) {
            return mistake("--safe-area: " + safeArea +
                           " is not of the form 47,0,34,0 (top, left, bottom, right)");
        }
        options.device.safeArea = *read;
    }
    if (!kind.empty()) {
        options.kind = kind == name(lint::DocumentKind::paywall) ? lint::DocumentKind::paywall
                                                                 : lint::DocumentKind::onboarding;
    }
    options.after = std::chrono::milliseconds(std::llround(after * 1000));
    return options;
}

}  // namespace vorna::preview
