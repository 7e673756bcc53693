// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The secure store of the installation's identity, as a port: the desktop's keyring, a private file, or a
/// host's own.

#include <vorna/base/Export.h>
#include <vorna/base/Result.h>

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace vorna {

/// Why an operation on a CredentialStore failed. The numbers appear in log lines. A host's store may use
/// other numbers.
enum class CredentialStatus : std::int32_t {
    /// Nothing is stored under that service and account.
    itemNotFound = -25300,
    /// An item for that service and account exists already; `add` never replaces.
    duplicateItem = -25299,
    /// The store is locked, and only the user can unlock it. The library never prompts.
    interactionNotAllowed = -25308,
    /// The machine has no such store, or it does not answer in time.
    notAvailable = -25291,
    /// The store may not be written or read (permissions, a full or read-only disk).
    notPermitted = -34018,
    /// The stored item cannot be trusted: others may read or write it, or it is a link.
    notTrusted = -67054,
};

/// One opaque byte value for each pair of service and account. Calls come from the thread that initialises
/// the library, one at a time. An implementation limits its own waiting (to 2 seconds in all) and never
/// prompts the user.
class VORNA_EXPORT CredentialStore {
  public:
    CredentialStore() = default;
    CredentialStore(const CredentialStore&) = delete;
    CredentialStore& operator=(const CredentialStore&) = delete;
    CredentialStore(CredentialStore&&) = delete;
    CredentialStore& operator=(CredentialStore&&) = delete;
    virtual ~CredentialStore() = default;

    /// Tells whether a value is a whole one: neither cut off nor damaged.
    using IsWhole = std::function<bool(std::string_view value)>;

    /// Sets how whole values are recognised. Called once, before anything else. Only a store that keeps the
    /// same item in several places needs it, to know which copy to return and to spread. The function may be
    /// called on any thread.
    virtual void recogniseWholeValues(const IsWhole& /*isWhole*/) {}

    /// Returns the value's bytes as they were added.
    virtual Result<std::string, CredentialStatus> read(std::string_view service,
                                                       std::string_view account) = 0;

    /// Removes the item; `itemNotFound` if there is none. A store may refuse to remove what it could not read
    /// just before: the identity that is there serves again once it can be read.
    virtual Result<void, CredentialStatus> remove(std::string_view service, std::string_view account) = 0;

    /// Stores the bytes unchanged and atomically.
    virtual Result<void, CredentialStatus> add(std::string_view service, std::string_view account,
                                               std::string_view value) = 0;
};

}  // namespace vorna
