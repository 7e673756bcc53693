// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <tools/devserver/FileDescriptor.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string_view>

namespace vorna::devserver {

/// A file of the media folder, open for reading.
struct MediaFile {
    FileDescriptor file;
    std::uint64_t size = 0;
    std::string_view type;  ///< its MIME type
};

/// The folder of pictures and videos behind /media/.
class MediaFolder {
  public:
    /// Throws std::runtime_error when `folder` is not a folder that exists.
    explicit MediaFolder(const std::filesystem::path& folder);

    /// The file that `name` (what follows "/media/" in a URL, still percent-encoded) stands for. Absent when
    /// there is none, or when it would lie outside the folder: "..", an encoded slash and a symbolic link
    /// leading out find nothing.
    [[nodiscard]] std::optional<MediaFile> open(std::string_view name) const;

  private:
    std::filesystem::path folder_;
};

/// By the ending of the file's name, whatever its case; application/octet-stream when the ending is unknown.
[[nodiscard]] std::string_view mimeType(const std::filesystem::path& path);

}  // namespace vorna::devserver
