// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The secure store that keeps the installation's identity, as a port: a keyring of the desktop, a private
/// file, or what a host puts in their place.

#include <vorna/base/Export.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vorna {

/// The outcome of an operation on a CredentialStore. The numbers appear in log lines as they stand.
using CredentialStatus = std::int32_t;

namespace credentialStatus {
inline constexpr CredentialStatus success = 0;
/// Nothing is stored under that service and account.
inline constexpr CredentialStatus itemNotFound = -25300;
/// An item for that service and account is there already; `add` never replaces.
inline constexpr CredentialStatus duplicateItem = -25299;
/// The store is locked and opening it would need the user. The library never prompts.
inline constexpr CredentialStatus interactionNotAllowed = -25308;
/// There is no such store on this machine, or it does not answer in time.
inline constexpr CredentialStatus notAvailable = -25291;
/// The store is there but may not be written or read (permissions, a full or read-only disk).
inline constexpr CredentialStatus notPermitted = -34018;
/// What lies in the item's place cannot be trusted: others may read or write it, or it is a link.
inline constexpr CredentialStatus notTrusted = -67054;
}  // namespace credentialStatus

/// One opaque byte value for each pair of service and account. Calls come from the thread that initialises
/// the library, one at a time. An implementation bounds its own waiting (2 seconds in all) and never
/// prompts the user.
class VORNA_EXPORT CredentialStore {
  public:
    struct ReadResult {
        CredentialStatus status = credentialStatus::itemNotFound;
        /// Present exactly when the status is success.
        std::optional<std::string> value;
    };

    CredentialStore() = default;
    CredentialStore(const CredentialStore&) = delete;
    CredentialStore& operator=(const CredentialStore&) = delete;
    CredentialStore(CredentialStore&&) = delete;
    CredentialStore& operator=(CredentialStore&&) = delete;
    virtual ~CredentialStore() = default;

    /// The value's bytes as they were added, or the status that tells why there are none.
    virtual ReadResult read(std::string_view service, std::string_view account) = 0;

    /// Takes the item away. `itemNotFound` when there was none.
    virtual CredentialStatus remove(std::string_view service, std::string_view account) = 0;

    /// Stores the bytes unchanged, whole or not at all.
    virtual CredentialStatus add(std::string_view service, std::string_view account,
                                 std::string_view value) = 0;
};

}  // namespace vorna
