// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Writes a file whole or not at all, whatever happens to the process, the disk or the power meanwhile: a
/// temporary file in the same folder is written, flushed to disk and renamed, and the folder is flushed.

#include <vorna/base/Export.h>
#include <vorna/base/Result.h>
#include <vorna/platform/FileDescriptor.h>

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace vorna {

/// A file's place. Its folder must exist. A link in the file's own place is never followed.
///
/// Any thread, and any number of processes for one file. Each write removes temporary files that killed
/// processes have left in the folder; their names begin with "~vorna-".
class VORNA_EXPORT AtomicFile {
  public:
    static constexpr mode_t ownerOnly = 0600;

    explicit AtomicFile(const std::filesystem::path& file);

    /// The file of that name in an open folder, which must outlive this object. Writing to what is no name of
    /// a file, such as "", ".." or "a/b", is EINVAL.
    AtomicFile(const FileDescriptor& folder, std::string name);

    /// Writes the file in place of an existing one. On an error the former file is unchanged. The mode holds
    /// whatever the process's umask.
    Result<void, std::error_code> replace(std::string_view contents, mode_t mode = ownerOnly) const;

    /// Writes the file if there is nothing of that name, EEXIST otherwise; of several callers at once exactly
    /// one succeeds. On an error there is no file.
    Result<void, std::error_code> create(std::string_view contents, mode_t mode = ownerOnly) const;

  private:
    /// What `folderPath_` is relative to.
    int base_;
    std::filesystem::path folderPath_;
    std::string name_;
};

}  // namespace vorna
