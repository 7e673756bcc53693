// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The installation's identity: the same user identifier and install time on every run, kept in the
/// credential store as one JSON record.

#include <vorna/base/Export.h>
#include <vorna/device/KeyChainData.h>
#include <vorna/platform/Clock.h>
#include <vorna/platform/CredentialStore.h>
#include <vorna/platform/Date.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace vorna {

/// Calls block for as long as the store does. Not thread-safe.
class VORNA_EXPORT KeychainHelper {
  public:
    /// The record's key in the store.
    static constexpr std::string_view service = "io.vorna.vornasdk";
    static constexpr std::string_view account = "userDetails";

    /// Generates a new user identifier with the given time in it.
    using MakeUserIdentifier = std::function<std::string(Date)>;

    /// Tells the store what a record is.
    KeychainHelper(std::shared_ptr<CredentialStore> store, std::shared_ptr<const Clock> clock,
                   MakeUserIdentifier makeUserIdentifier);

    /// Loads the stored identity. If it cannot be read for any reason, creates one and stores it instead. The
    /// new one is used for this run even if it cannot be saved, as when the store keeps what it cannot read
    /// at the moment. A stored record that cannot be decoded is fatal: replacing it would lose the user's
    /// identity.
    KeyChainData loadOrCreateIdentity() const;

    /// Returns the stored text; std::nullopt if it cannot be read or is not UTF-8, which is always printed.
    std::optional<std::string> read() const;

    /// Replaces the stored text. A failure is always printed. Text that is not UTF-8 is ignored.
    void save(std::string_view value) const;

    /// True for JSON text of a record. Logs nothing.
    static bool isRecord(std::string_view text);

    /// Returns the record as JSON text; std::nullopt after an error, which is logged.
    static std::optional<std::string> encode(std::string_view userId, std::uint64_t installTime);

    /// Returns the record from JSON text; std::nullopt after an error, which is logged.
    static std::optional<KeyChainData> decode(std::string_view text);

  private:
    const std::shared_ptr<CredentialStore> store_;
    const std::shared_ptr<const Clock> clock_;
    const MakeUserIdentifier makeUserIdentifier_;
};

}  // namespace vorna
