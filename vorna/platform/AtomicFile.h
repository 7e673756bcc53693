// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Writes a file atomically, even if the process, the disk or the power fails meanwhile: a temporary file in
/// the same folder is written, flushed to disk and renamed, and the folder is flushed.

#include <vorna/base/Export.h>
#include <vorna/base/Result.h>
#include <vorna/platform/FileDescriptor.h>

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace vorna {

/// The path of a file. Its folder must exist.
///
/// Only a regular file is ever replaced. Where something else has the name, it stays as it is and the write
/// fails: with ELOOP at a link, wherever it leads, EISDIR at a folder, ENXIO at a device, a pipe or a socket.
///
/// Any thread, and any number of processes for one file. Each write removes temporary files that killed
/// processes have left in the folder; their names begin with "~vorna-".
class VORNA_EXPORT AtomicFile {
  public:
    static constexpr mode_t ownerOnly = 0600;

    explicit AtomicFile(const std::filesystem::path& file);

    /// The file of that name in an open folder, which must outlive this object. Writing to a name that is not
    /// a file's, such as "", ".." or "a/b", fails with EINVAL.
    AtomicFile(const FileDescriptor& folder, std::string name);

    /// Writes the file in place of an existing one. On an error the former file is unchanged. The mode is set
    /// regardless of the process's umask.
    Result<void, std::error_code> replace(std::string_view contents, mode_t mode = ownerOnly) const;

    /// Writes the file if the name is free, else fails with EEXIST; exactly one of several concurrent callers
    /// succeeds. After any other error there is no file.
    Result<void, std::error_code> create(std::string_view contents, mode_t mode = ownerOnly) const;

  private:
    /// `folderPath_` is relative to this.
    int base_;
    std::filesystem::path folderPath_;
    std::string name_;
};

}  // namespace vorna
