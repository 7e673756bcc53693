// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The credential store for every machine: one private file for each item, in the folder "credentials" of the
/// application's data directory. The folder has mode 0700, the files 0600.
///
/// Items are added atomically, even if the process, the disk or the power fails meanwhile, and of several
/// processes that add the same item concurrently exactly one succeeds.
///
/// A file that belongs to another user, or that others may read or write, is `notTrusted`: not read, and
/// `remove` only renames it, to the same name with "~untrusted1" after it (up to 9), so that its contents are
/// not lost. What is not a regular file (a link, say, even to one) is `notTrusted` and stays where it is, as
/// does everything in a folder that is a link or that others may write to.
///
/// A file that cannot be read for another reason (permissions, a damaged disk, no free descriptor) is never
/// removed, so that a later run finds the identity again.

#include <vorna/platform/CredentialStore.h>
#include <vorna/platform/Mutex.h>

#include <cstddef>
#include <map>
#include <string>
#include <string_view>

namespace vorna {

/// Any thread. Remembers which items could not be read.
class FileCredentialStore final : public CredentialStore {
  public:
    /// A longer value is not added (`notPermitted`), and a longer file is not read (`notTrusted`).
    static constexpr std::size_t largestValue = std::size_t{4} * 1024 * 1024;

    /// The folders are created when the first item is added. If the data directory is empty text, the store
    /// is `notAvailable`.
    explicit FileCredentialStore(std::string dataDirectory);

    Result<std::string, CredentialStatus> read(std::string_view service, std::string_view account) override;
    /// An item whose last reading failed, other than with `itemNotFound` or `notTrusted`, stays, and the
    /// status is that of the reading.
    Result<void, CredentialStatus> remove(std::string_view service, std::string_view account) override;
    Result<void, CredentialStatus> add(std::string_view service, std::string_view account,
                                       std::string_view value) override;

  private:
    const std::string dataDirectory_;

    Mutex mutex_;
    /// The items whose last reading failed, by the names of their files.
    std::map<std::string, CredentialStatus> hidden_;
};

}  // namespace vorna
