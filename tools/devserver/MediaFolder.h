// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vorna/platform/FileDescriptor.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string_view>

namespace vorna::devserver {

/// A file in the media folder, open for reading.
struct MediaFile {
    FileDescriptor file;
    std::uint64_t size = 0;
    std::string_view type;  ///< its MIME type
};

/// The folder of pictures and videos served under /media/.
class MediaFolder {
  public:
    /// Throws std::runtime_error if `folder` is not an existing folder.
    explicit MediaFolder(const std::filesystem::path& folder);

    /// Opens the file with that name: the part of the URL after "/media/", still percent-encoded. Returns
    /// std::nullopt if there is no such file or it is outside the folder, whether by "..", an encoded slash
    /// or a symbolic link.
    [[nodiscard]] std::optional<MediaFile> open(std::string_view name) const;

  private:
    std::filesystem::path folder_;
};

/// Returns the MIME type for the file name's extension, ignoring case; application/octet-stream if unknown.
[[nodiscard]] std::string_view mimeType(const std::filesystem::path& path);

}  // namespace vorna::devserver
