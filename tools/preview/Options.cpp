// SPDX-License-Identifier: Apache-2.0
#include <tools/preview/Options.h>

#include <CLI/CLI.hpp>

#include <array>
#include <charconv>
#include <cmath>
#include <string_view>
#include <utility>
#include <vector>

namespace vorna::preview {
namespace {

constexpr int usageStatus = 2;
constexpr int largestSide = 8192;
constexpr double largestScale = 4;
constexpr double longestWait = 3600;
constexpr std::string_view defaultDevice = "390x844";

constexpr const char* description =
    "Shows a document that describes a paywall or an onboarding as an application would, and again whenever\n"
    "the file changes. Or takes pictures of it; these need no display.";

constexpr const char* footer =
    "Keys in the window: N, P next and previous device; S safe area on and off; D dark and light desktop;\n"
    "R reload; O onboarding from its first step; Q quit.\n"
    "Exit status: 0 shown, 1 the document has an error, so that a screen of it is not shown, 2 when a file\n"
    "cannot be read or written or the command line is wrong.";

EarlyExit mistake(const std::string& text) {
    return {usageStatus, "vorna-preview: " + text + "\nRun with --help for more information.\n"};
}

template <typename Number>
std::optional<Number> number(std::string_view text) {
    Number value{};
    const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (problem != std::errc() || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return value;
}

std::optional<double> readScale(std::string_view text) {
    const auto scale = number<double>(text);
    const bool isUsable = scale && *scale >= 1 && *scale <= largestScale;
    return isUsable ? scale : std::nullopt;
}

// "390x844" or "390x844@2".
bool readSize(std::string_view text, Options& options) {
    const std::size_t at = text.find('@');
    if (at != std::string_view::npos) {
        const auto scale = readScale(text.substr(at + 1));
        if (!scale) {
            return false;
        }
        options.scale = *scale;
        text = text.substr(0, at);
    }
    const std::size_t cross = text.find('x');
    if (cross == std::string_view::npos) {
        return false;
    }
    const auto width = number<int>(text.substr(0, cross));
    const auto height = number<int>(text.substr(cross + 1));
    if (!width || !height || *width < 1 || *height < 1 || *width > largestSide || *height > largestSide) {
        return false;
    }
    const QSize size(*width, *height);
    options.device = {preview::text(size), size, {}};
    return true;
}

// "47,0,34,0": top, left, bottom, right.
std::optional<QMargins> readSafeArea(std::string_view text) {
    std::vector<int> sides;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find(',', begin), text.size());
        const auto side = number<int>(text.substr(begin, end - begin));
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

std::variant<Options, EarlyExit> readOptions(int argumentCount, const char* const* arguments) {
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
    app.add_option("DOCUMENT", options.file, "The document to show")->type_name("");
    app.add_option("--kind", kind, "What the document is (default: what its shape says)")
        ->type_name("paywall|onboarding")
        ->check(CLI::IsMember(std::vector<std::string>{"paywall", "onboarding"}).description(""));
    auto* const deviceOption =
        app.add_option("--device", device,
                       "A standard size with its safe area: " + CLI::detail::join(devices, ", ") +
                           " (default: " + std::string(defaultDevice) + ")")
            ->type_name("NAME")
            ->check(CLI::IsMember(devices).description(""));
    auto* const sizeOption =
        app.add_option("--size", size, "Any other size, and device pixels a logical pixel (default: 1)")
            ->type_name("WxH[@SCALE]");
    auto* const safeAreaOption =
        app.add_option("--safe-area", safeArea, "How far notches and bars reach in")->type_name("T,L,B,R");
    auto* const scaleOption =
        app.add_option("--scale", scale, "Device pixels a logical pixel, 1 to 4")->type_name("SCALE");
    app.add_option("--step", options.step, "The step of an onboarding, from 0, reached by tapping through")
        ->type_name("N")
        ->check(CLI::NonNegativeNumber.description(""));
    auto* const pictureOption =
        app.add_option("--png", options.picture, "Write a picture and end")->type_name("FILE");
    auto* const folderOption =
        app.add_option("--all-sizes", options.pictureFolder,
                       "Write a picture of each standard size, and a sheet of them all, and end")
            ->type_name("DIR");
    auto* const afterOption =
        app.add_option("--after", after,
                       "How long a screen stands still before its picture is taken (default: 1)")
            ->type_name("SECONDS")
            ->check(CLI::Range(0.0, longestWait).description(""));
    app.add_option("--ca", options.certificateAuthorityFile,
                   "The certificate authority to trust in place of the system's")
        ->type_name("FILE")
        ->check(CLI::ExistingFile.description(""));
    app.add_option("--media-service", options.mediaService,
                   "Stands in for https://127.0.0.1:8443 wherever the document says so")
        ->type_name("URL");
    app.add_flag("--dark", options.isDark, "Begin with a dark desktop");
    app.add_flag("--debug", options.debug, "Print what the library does");
    app.set_version_flag("--version", std::string("vorna-preview ") + VORNA_VERSION,
                         "Say the version and end");

    try {
        app.parse(argumentCount, arguments);
    } catch (const CLI::CallForVersion& version) {
        return EarlyExit{0, std::string(version.what()) + "\n"};
    } catch (const CLI::Success&) {
        return EarlyExit{0, app.help()};
    } catch (const CLI::ParseError& error) {
        return mistake(error.what());
    }

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
            return mistake(one->get_name() + " does not go with " + other->get_name());
        }
    }
    if ((pictureOption->count() > 0 && options.picture.empty()) ||
        (folderOption->count() > 0 && options.pictureFolder.empty())) {
        return mistake("--png and --all-sizes need a name");
    }
    if (afterOption->count() > 0 && !options.takesPictures()) {
        return mistake("--after is for pictures: give --png or --all-sizes too");
    }
    options.device = *standardDevice(device.empty() ? defaultDevice : device);
    if (!scale.empty()) {
        const auto read = readScale(scale);
        if (!read) {
            return mistake("--scale: " + scale + " is not between 1 and 4");
        }
        options.scale = *read;
    }
    if (sizeOption->count() > 0 && !readSize(size, options)) {
        return mistake("--size: " + size + " is not like 390x844 or 390x844@2");
    }
    if (safeAreaOption->count() > 0) {
        const auto read = readSafeArea(safeArea);
        if (!read) {
            return mistake("--safe-area: " + safeArea + " is not like 47,0,34,0 (top, left, bottom, right)");
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
