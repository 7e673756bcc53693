// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The default credential store: each item both in a private file and in the user's keyring. The file makes
/// start-up fast and independent of the keyring; the keyring restores the item if the application's folder is
/// deleted.
///
/// Reading tries the file first, and the keyring only if the file has no whole item. Adding and removing
/// apply to both. A keyring that is absent, locked or slow is skipped, and so is a file that cannot be
/// written. After each successful read and each add, the two are reconciled in the background: a whole item
/// that only one has is copied to the other, in place of a damaged one too, and if both have different ones
/// the file's is copied to the keyring. A damaged item is never copied.
///
/// So the file always takes precedence: once it holds an identity, no answer from a keyring replaces it. A
/// keyring that was locked when the file was made, and is unlocked later with an older identity, is
/// overwritten.

#include <vorna/platform/CredentialStore.h>

#include <chrono>
#include <memory>
#include <string_view>

namespace vorna {

/// Calls go to the file on the caller's thread and to the keyring on a thread of this store, so the file must
/// be fast and the keyring need not be. That thread runs while there is work, at most until the process
/// exits, and shares ownership of both stores.
class AutomaticCredentialStore final : public CredentialStore {
  public:
    static constexpr std::chrono::milliseconds defaultKeyringTimeout{2000};

    /// The timeout limits how long a read and the removals and additions after it wait for the keyring,
    /// altogether.
    AutomaticCredentialStore(std::shared_ptr<CredentialStore> file, std::shared_ptr<CredentialStore> keyring,
                             std::chrono::milliseconds keyringTimeout = defaultKeyringTimeout);
    AutomaticCredentialStore(const AutomaticCredentialStore&) = delete;
    AutomaticCredentialStore& operator=(const AutomaticCredentialStore&) = delete;
    AutomaticCredentialStore(AutomaticCredentialStore&&) = delete;
    AutomaticCredentialStore& operator=(AutomaticCredentialStore&&) = delete;

    void recogniseWholeValues(const IsWhole& isWhole) override;

    /// Does not wait: work in progress is completed, pending work is dropped.
    ~AutomaticCredentialStore() override;

    /// The file's whole item, or else the keyring's, or else a damaged one. If neither provides any: the
    /// file's own status, such as `notTrusted`, if the file may have the item; `interactionNotAllowed` if the
    /// keyring is locked and `notAvailable` if it did not answer in time, since it may have the item;
    /// `itemNotFound` otherwise, also if there is no keyring.
    Result<std::string, CredentialStatus> read(std::string_view service, std::string_view account) override;

    /// Succeeds if at least one of them had the item and removed it. While what is in the file cannot be
    /// read, nothing is removed.
    Result<void, CredentialStatus> remove(std::string_view service, std::string_view account) override;

    /// Succeeds if at least one stored the item. `duplicateItem` if the file already had a whole one; the
    /// keyring is then not changed.
    Result<void, CredentialStatus> add(std::string_view service, std::string_view account,
                                       std::string_view value) override;

  private:
    class State;

    std::shared_ptr<State> state_;
};

}  // namespace vorna
