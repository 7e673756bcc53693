// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The default credential store: each item in a private file and in the user's keyring both. The file makes
/// start-up quick and independent of the keyring's moods; the keyring brings the item back when the
/// application's folder is gone.
///
/// Reading asks the file first, and the keyring only if the file has no item. Adding and removing go to both.
/// A keyring that is absent, locked or slow is passed over, and so is a file that cannot be written. What one
/// of them missed is made good off the caller's thread after each successful read and each add: an item that
/// only one has is copied to the other, and where both differ the file's is copied to the keyring.
///
/// So the file decides, always: once it holds an identity, no other ever takes its place because a keyring
/// has answered. That includes a keyring that was locked when the file was made and turns up later with an
/// older identity; that one is replaced.

#include <vorna/platform/CredentialStore.h>

#include <chrono>
#include <memory>
#include <string_view>

namespace vorna {

/// A call is passed on to the file on the caller's thread and to the keyring on a thread of this store, so
/// the file must be quick and the keyring need not be. That thread lives while there is something to do, at
/// most until the process exits; the stores stay alive as long as it does.
class AutomaticCredentialStore final : public CredentialStore {
  public:
    static constexpr std::chrono::milliseconds defaultPatience{2000};

    /// Patience is how long a read and the removals and additions after it wait for the keyring, all
    /// together.
    AutomaticCredentialStore(std::shared_ptr<CredentialStore> file, std::shared_ptr<CredentialStore> keyring,
                             std::chrono::milliseconds patience = defaultPatience);
    AutomaticCredentialStore(const AutomaticCredentialStore&) = delete;
    AutomaticCredentialStore& operator=(const AutomaticCredentialStore&) = delete;
    AutomaticCredentialStore(AutomaticCredentialStore&&) = delete;
    AutomaticCredentialStore& operator=(AutomaticCredentialStore&&) = delete;

    /// Waits for nothing; what is being copied is finished, what has not begun is left to another time.
    ~AutomaticCredentialStore() override;

    /// The file's item, or else the keyring's. When neither has given one: what keeps the file from telling,
    /// such as `notTrusted`, if the file may have the item; `interactionNotAllowed` if the keyring is locked
    /// and `notAvailable` if it did not answer in time, since it may have the item; `itemNotFound` otherwise,
    /// also where there is no keyring.
    Result<std::string, CredentialStatus> read(std::string_view service, std::string_view account) override;

    /// Succeeds when one of them had the item and let it go.
    Result<void, CredentialStatus> remove(std::string_view service, std::string_view account) override;

    /// Succeeds when at least one has taken the item. `duplicateItem` when the file had one already; the
    /// keyring is then left alone.
    Result<void, CredentialStatus> add(std::string_view service, std::string_view account,
                                       std::string_view value) override;

  private:
    class Keeper;

    std::shared_ptr<Keeper> keeper_;
};

}  // namespace vorna
