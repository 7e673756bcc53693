// SPDX-License-Identifier: Apache-2.0
#pragma once

/// All ports of the library in one value. A host that does not want the defaults creates one from
/// PlatformOptions, replaces ports in it, and passes it to `VornaCoreSDK::UsePlatform` before anything else.

#include <vorna/base/Export.h>
#include <vorna/platform/Clock.h>
#include <vorna/platform/CredentialStore.h>
#include <vorna/platform/HttpClient.h>
#include <vorna/platform/Preferences.h>
#include <vorna/platform/RandomSource.h>
#include <vorna/platform/System.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace vorna {

/// Where the installation's identity is stored.
enum class CredentialStoreKind : std::uint8_t {
    /// In a private file and in the Secret Service, each restored from the other.
    automatic,
    /// Only in the desktop's Secret Service.
    secretService,
    /// Only in a private file in the data directory.
    file
};

struct PlatformOptions {
    /// Scheme and authority of the service, such as "https://events.example.com". Empty: the address that the
    /// library was built with, by default a reserved name that never resolves.
    std::string serviceURL;
    /// A PEM file to trust instead of the system's trust store. Empty: the system's.
    std::string certificateAuthorityFile;
    /// The application's identifier in reverse-domain form. std::nullopt or empty: folder names use the
    /// program's name, and records say that it is unknown.
    std::optional<std::string> bundleIdentifier;
    std::optional<std::string> bundleShortVersion;
    std::optional<std::string> bundleVersion;
    /// The application's own data folder, created on first use. Empty: a folder named after the bundle
    /// identifier, or else the program, in $XDG_DATA_HOME (~/.local/share).
    std::string dataDirectory;
    CredentialStoreKind credentialStore = CredentialStoreKind::automatic;
    /// How long the end of the process may wait for requests that the HTTP client had been given before: the
    /// event of the session that ends with the application is one. It waits no longer than they take, sends
    /// nothing recorded later, and calls no completion. Zero: what is under way is cut off.
    std::chrono::milliseconds exitGrace{250};
};

/// The ports in use. A null pointer means the default adapter.
struct Platform {
    /// The full addresses for events and configuration requests.
    std::string eventURL;
    std::string configURL;

    std::shared_ptr<HttpClient> httpClient;
    std::shared_ptr<CredentialStore> credentialStore;
    std::shared_ptr<Preferences> preferences;
    std::shared_ptr<System> system;
    std::shared_ptr<const Clock> clock;
    std::shared_ptr<RandomSource> randomSource;

    /// The platform that the host wanted could not be made. The library then refuses every operation with a
    /// log line: the defaults would send to another address and store in another folder than the host chose.
    bool isUnusable = false;
};

/// Creates the default ports with these options. An invalid option is logged when it is used; if memory runs
/// out, the result is marked as unusable. Never throws. Returns within milliseconds; slower work is done in
/// the background.
VORNA_EXPORT Platform makePlatform(const PlatformOptions& options = {}) noexcept;

/// A platform that is marked as unusable, for a host that fails to describe the one it wants.
VORNA_EXPORT Platform unusablePlatform() noexcept;

}  // namespace vorna
