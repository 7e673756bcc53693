// SPDX-License-Identifier: Apache-2.0
#include <tools/devserver/MediaFolder.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

namespace vorna::devserver {
namespace {

constexpr std::array<std::pair<std::string_view, std::string_view>, 25> mimeTypes{{
    {".avif", "image/avif"},     {".css", "text/css"},          {".gif", "image/gif"},
    {".heic", "image/heic"},     {".htm", "text/html"},         {".html", "text/html"},
    {".ico", "image/x-icon"},    {".jpeg", "image/jpeg"},       {".jpg", "image/jpeg"},
    {".js", "text/javascript"},  {".json", "application/json"}, {".m4a", "audio/mp4"},
    {".m4v", "video/x-m4v"},     {".mkv", "video/x-matroska"},  {".mov", "video/quicktime"},
    {".mp3", "audio/mpeg"},      {".mp4", "video/mp4"},         {".ogg", "audio/ogg"},
    {".pdf", "application/pdf"}, {".png", "image/png"},         {".svg", "image/svg+xml"},
    {".txt", "text/plain"},      {".wav", "audio/wav"},         {".webm", "video/webm"},
    {".webp", "image/webp"},
}};

// Returns std::nullopt for a malformed escape, and for an escaped slash or NUL, which no file name contains.
std::optional<std::string> decodeSegment(std::string_view encoded) {
    std::string decoded;
    for (std::size_t i = 0; i < encoded.size(); ++i) {
        char character = encoded[i];
        if (character == '%') {
            if (encoded.size() - i < 3) {
                return std::nullopt;
            }
            unsigned value = 0;
            const char* const digits = encoded.data() + i + 1;
            if (const auto [stop, error] = std::from_chars(digits, digits + 2, value, 16);
                error != std::errc() || stop != digits + 2) {
                return std::nullopt;
            }
            character = static_cast<char>(value);
            i += 2;
        }
        if (character == '\0' || character == '/') {
            return std::nullopt;
        }
        decoded += character;
    }
    return decoded;
}

std::optional<std::filesystem::path> decodePath(std::string_view name) {
    std::filesystem::path path;
    while (true) {
        const std::size_t slash = name.find('/');
        const std::optional<std::string> segment = decodeSegment(name.substr(0, slash));
        if (!segment || segment->empty() || *segment == "." || *segment == "..") {
            return std::nullopt;
        }
        path /= *segment;
        if (slash == std::string_view::npos) {
            return path;
        }
        name.remove_prefix(slash + 1);
    }
}

bool isInside(const std::filesystem::path& path, const std::filesystem::path& folder) {
    return std::mismatch(folder.begin(), folder.end(), path.begin(), path.end()).first == folder.end();
}

}  // namespace

MediaFolder::MediaFolder(const std::filesystem::path& folder) {
    std::error_code error;
    folder_ = std::filesystem::canonical(folder, error);
    if (!error && !std::filesystem::is_directory(folder_, error)) {
        error = std::make_error_code(std::errc::not_a_directory);
    }
    if (error) {
        throw std::runtime_error("cannot serve the folder " + folder.string() + ": " + error.message());
    }
}

std::optional<MediaFile> MediaFolder::open(std::string_view name) const {
    const std::optional<std::filesystem::path> relative = decodePath(name);
    if (!relative) {
        return std::nullopt;
    }
    std::error_code error;
    const std::filesystem::path path = std::filesystem::canonical(folder_ / *relative, error);
    if (error || !isInside(path, folder_)) {
        return std::nullopt;
    }
    // Non-blocking, as opening a pipe would otherwise wait for its writer.
    FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW));

    struct stat facts {};

    if (!file.isOpen() || ::fstat(file.number(), &facts) != 0 || !S_ISREG(facts.st_mode)) {
        return std::nullopt;
    }
    return MediaFile{std::move(file), static_cast<std::uint64_t>(facts.st_size), mimeType(*relative)};
}

std::string_view mimeType(const std::filesystem::path& path) {
    std::string ending = path.extension().string();
    std::transform(ending.begin(), ending.end(), ending.begin(),
                   [](unsigned char character) { return static_cast<char>(std::tolower(character)); });
    const auto* const found = std::find_if(mimeTypes.begin(), mimeTypes.end(),
                                           [&](const auto& entry) { return entry.first == ending; });
    return found == mimeTypes.end() ? std::string_view("application/octet-stream") : found->second;
}

}  // namespace vorna::devserver
