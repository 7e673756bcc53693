// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Gives the installation its identity: the same user identifier and install time on every run, kept in the
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

/// Waits as long as the store does. The operations are called one at a time.
class VORNA_EXPORT KeychainHelper {
  public:
    /// What the store knows the record by.
    static constexpr std::string_view service = "io.vorna.vornasdk";
    static constexpr std::string_view account = "userDetails";

    /// Makes a new user identifier that carries the given time.
    using MakeUserIdentifier = std::function<std::string(Date)>;

    KeychainHelper(std::shared_ptr<CredentialStore> store, std::shared_ptr<const Clock> clock,
                   MakeUserIdentifier makeUserIdentifier);

    /// The stored identity. Where none can be read, for whatever reason, a new one that takes its place; it
    /// holds for this run even if it cannot be saved. A record that can be read but not understood is fatal:
    /// it is somebody's identity, and making another would lose it.
    KeyChainData loadOrCreateIdentity() const;

    /// The stored text. Absent when there is none or it is not UTF-8, which is said on standard output.
    std::optional<std::string> read() const;

    /// Stores the text in place of what is there. A failure is said on standard output. Text that is not
    /// UTF-8 changes nothing.
    void save(std::string_view value) const;

    /// The record as JSON text; absent after an error, which is logged.
    static std::optional<std::string> encode(std::string_view userId, std::uint64_t installTime);

    /// The record from JSON text; absent after an error, which is logged.
    static std::optional<KeyChainData> decode(std::string_view text);

  private:
    const std::shared_ptr<CredentialStore> store_;
    const std::shared_ptr<const Clock> clock_;
    const MakeUserIdentifier makeUserIdentifier_;
};

}  // namespace vorna
