// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Everything the library asks of the system, as one value. A host that wants other than the defaults makes
/// one from PlatformOptions, replaces ports in it as it likes, and hands it to `VornaCoreSDK::UsePlatform`
/// before anything else.

#include <vorna/base/Export.h>
#include <vorna/platform/Clock.h>
#include <vorna/platform/CredentialStore.h>
#include <vorna/platform/HttpClient.h>
#include <vorna/platform/Preferences.h>
#include <vorna/platform/RandomSource.h>
#include <vorna/platform/System.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace vorna {

/// Where the installation's identity is kept.
enum class CredentialStoreKind : std::uint8_t {
    /// In a private file and in the Secret Service both, each repaired from the other.
    automatic,
    /// In the desktop's Secret Service alone.
    secretService,
    /// In a private file under the data directory alone.
    file
};

struct PlatformOptions {
    /// Scheme and authority of the service, such as "https://events.example.com". Empty means the address
    /// given when the library was configured; that one's default is a reserved name that resolves nowhere.
    std::string serviceURL;
    /// A PEM file that is trusted in place of the system's trust store. Empty means the system's.
    std::string certificateAuthorityFile;
    /// The application's identifier in reverse-domain form; absent: the name of the program stands for it in
    /// folder names, and records say that it is unknown.
    std::optional<std::string> bundleIdentifier;
    std::optional<std::string> bundleShortVersion;
    std::optional<std::string> bundleVersion;
    /// The application's own data folder, made on first use. Empty means a folder named after the bundle
    /// identifier, or else the program, under $XDG_DATA_HOME (~/.local/share).
    std::string dataDirectory;
    CredentialStoreKind credentialStore = CredentialStoreKind::automatic;
};

/// The ports in use. A null pointer stands for the default port of that role.
struct Platform {
    /// The full addresses that events and configuration requests go to.
    std::string eventURL;
    std::string configURL;

    std::shared_ptr<HttpClient> httpClient;
    std::shared_ptr<CredentialStore> credentialStore;
    std::shared_ptr<Preferences> preferences;
    std::shared_ptr<System> system;
    std::shared_ptr<const Clock> clock;
    std::shared_ptr<RandomSource> randomSource;
};

/// The ports of this system, set up as the options say. Never fails: what the options get wrong shows when it
/// is used, as a log line. Returns within milliseconds; what takes longer is learned in the background.
VORNA_EXPORT Platform makePlatform(const PlatformOptions& options = {});

}  // namespace vorna
