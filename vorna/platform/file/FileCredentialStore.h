// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The credential store for every machine: one private file for each item, in the folder "credentials" of the
/// application's data directory. The folder has mode 0700, the files 0600.
///
/// Items are added atomically, even if the process, the disk or the power fails meanwhile, and of several
/// processes that add the same item concurrently exactly one succeeds. A file that belongs to another user,
/// that others may read or write, or that is not a regular file (a link, say), is `notTrusted`: not read, but
/// removed by `remove`. So is everything in a folder that is a link or that others may write to.

#include <vorna/platform/CredentialStore.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace vorna {

/// Any thread, concurrently; no state is kept between calls.
class FileCredentialStore final : public CredentialStore {
  public:
    /// A longer value is not added (`notPermitted`), and a longer file is not read (`notTrusted`).
    static constexpr std::size_t largestValue = std::size_t{4} * 1024 * 1024;

    /// The folders are created when the first item is added. If the data directory is empty text, the store
    /// is `notAvailable`.
    explicit FileCredentialStore(std::string dataDirectory);

    Result<std::string, CredentialStatus> read(std::string_view service, std::string_view account) override;
    Result<void, CredentialStatus> remove(std::string_view service, std::string_view account) override;
    Result<void, CredentialStatus> add(std::string_view service, std::string_view account,
                                       std::string_view value) override;

  private:
    std::string dataDirectory_;
};

}  // namespace vorna
