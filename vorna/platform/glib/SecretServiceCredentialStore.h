// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The credential store of the desktop: the user's own keyring, through the Secret Service on the session bus
/// (gnome-keyring, KWallet, KeePassXC). Items go to the default collection, labelled "VornaSDK identity",
/// with the attributes "service" and "account".
///
/// A keyring is shared by all applications of the user, so an item also carries which application it belongs
/// to, in the attribute "application"; one that names no application is taken as anybody's.
///
/// It never prompts: what would need the user is `interactionNotAllowed`. No session bus, no service on it,
/// or no answer in time is `notAvailable`. No bus is ever started for it.

#include <vorna/platform/CredentialStore.h>

#include <chrono>
#include <string>
#include <string_view>

namespace vorna {

/// Any thread, concurrently. Each call makes a connection of its own. What a service does after the bound has
/// passed is no longer waited for, but it may still happen.
class SecretServiceCredentialStore final : public CredentialStore {
  public:
    static constexpr std::chrono::milliseconds defaultBound{2000};

    /// The application is named as its data folder is; empty text means that items belong to all
    /// applications. The bound holds for each call as a whole.
    explicit SecretServiceCredentialStore(std::string application,
                                          std::chrono::milliseconds bound = defaultBound);

    /// While the default collection is locked, no matching item means `interactionNotAllowed`: not every
    /// keyring tells what a locked collection holds.
    Result<std::string, CredentialStatus> read(std::string_view service, std::string_view account) override;

    /// Removes all matching items that are unlocked.
    Result<void, CredentialStatus> remove(std::string_view service, std::string_view account) override;

    /// Names that are not UTF-8 or contain a zero byte cannot be attributes and are `notPermitted`. Of two
    /// processes that add the same item at the same time, one value remains.
    Result<void, CredentialStatus> add(std::string_view service, std::string_view account,
                                       std::string_view value) override;

  private:
    std::string application_;
    std::chrono::milliseconds bound_;
};

}  // namespace vorna
