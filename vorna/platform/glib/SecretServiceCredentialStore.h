// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The credential store of the desktop: the user's own keyring, through the Secret Service on the session bus
/// (gnome-keyring, KWallet, KeePassXC). Items are stored in the default collection, labelled "VornaSDK
/// identity", with the attributes "service" and "account".
///
/// All applications of the user share the keyring, so an item also has the attribute "application". One
/// without it counts as the item of every application.
///
/// The user is never prompted: an operation that would need to fails with `interactionNotAllowed`. Without a
/// session bus, without the service on it, or without an answer in time it fails with `notAvailable`. No bus
/// is ever started.

#include <vorna/platform/CredentialStore.h>
#include <vorna/platform/Mutex.h>

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace vorna {

/// Any thread, concurrently. Each call makes its own connection, on its own thread. A call that exceeds the
/// bound is cancelled, but the service may still carry it out.
class SecretServiceCredentialStore final : public CredentialStore {
  public:
    static constexpr std::chrono::milliseconds defaultBound{2000};

    /// The application's name is that of its data folder; if empty, items belong to all applications. The
    /// bound limits how long a read and the removals and additions of the same item after it wait,
    /// altogether; each read begins anew. The session bus's address is read from the environment now.
    explicit SecretServiceCredentialStore(std::string application,
                                          std::chrono::milliseconds bound = defaultBound);

    /// While the default collection is locked, no matching item means `interactionNotAllowed`: not every
    /// keyring reveals what a locked collection contains.
    Result<std::string, CredentialStatus> read(std::string_view service, std::string_view account) override;

    /// Removes all matching items that are unlocked.
    Result<void, CredentialStatus> remove(std::string_view service, std::string_view account) override;

    /// Names that are not UTF-8 or contain a zero byte cannot be attributes and are `notPermitted`. If two
    /// processes add the same item at the same time, one value remains.
    Result<void, CredentialStatus> add(std::string_view service, std::string_view account,
                                       std::string_view value) override;

  private:
    /// Service and account.
    using Item = std::pair<std::string, std::string>;
    class Wait;

    const std::string application_;
    const std::chrono::milliseconds bound_;
    const std::optional<std::string> busAddress_;

    Mutex mutex_;
    /// How much longer calls for these items may wait.
    std::map<Item, std::chrono::steady_clock::duration> timeLeft_;
};

}  // namespace vorna
