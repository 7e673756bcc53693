// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/Platform.h>

#include <vorna/platform/AutomaticCredentialStore.h>
#include <vorna/platform/Mutex.h>
#include <vorna/platform/NeverDestroyed.h>
#include <vorna/platform/NoCancellation.h>
#include <vorna/platform/curl/CurlHttpClient.h>
#include <vorna/platform/file/FileCredentialStore.h>
#include <vorna/platform/file/FilePreferences.h>
#include <vorna/platform/glib/Fingerprints.h>
#include <vorna/platform/glib/GlibSockets.h>
#include <vorna/platform/glib/SecretServiceCredentialStore.h>
#include <vorna/platform/linux/DataDirectory.h>
#include <vorna/platform/linux/GetrandomSource.h>
#include <vorna/platform/linux/LinuxSystem.h>
#include <vorna/platform/linux/SystemClock.h>
#include <vorna/text/Utf8.h>

#include <exception>
#include <mutex>

namespace vorna {

namespace {

std::shared_ptr<CredentialStore> makeCredentialStore(CredentialStoreKind kind,
                                                     const std::string& dataDirectory,
                                                     const std::string& application) {
    switch (kind) {
    case CredentialStoreKind::secretService:
        return std::make_shared<SecretServiceCredentialStore>(application);
    case CredentialStoreKind::file:
        return std::make_shared<FileCredentialStore>(dataDirectory);
    case CredentialStoreKind::automatic:
        break;
    }
    return std::make_shared<AutomaticCredentialStore>(
        std::make_shared<FileCredentialStore>(dataDirectory),
        std::make_shared<SecretServiceCredentialStore>(application));
}

std::string withoutTrailingSlash(std::string text) {
    while (text.ends_with('/')) {
        text.pop_back();
    }
    return text;
}

Platform assembled(const PlatformOptions& options) {
    const NoCancellation inOtherLibraries;
    // Other libraries are initialised here, and a fork waits until they are.
    static NeverDestroyed<Mutex> mutex;
    const std::scoped_lock lock(*mutex);
    const std::string service =
        withoutTrailingSlash(options.serviceURL.empty() ? VORNA_SERVICE_URL : options.serviceURL);
    std::optional<std::string> bundleIdentifier = options.bundleIdentifier;
    if (bundleIdentifier && bundleIdentifier->empty()) {
        bundleIdentifier.reset();
    }
    const std::string dataDirectory = options.dataDirectory.empty()
                                          ? defaultDataDirectory(bundleIdentifier).value_or("")
                                          : options.dataDirectory;

    glib::initialiseSockets();

    LinuxSystemOptions system;
    system.bundle = {bundleIdentifier, options.bundleShortVersion, options.bundleVersion};
    system.dataDirectory = dataDirectory;
    system.isFingerEnrolled = isFingerEnrolled;

    Platform platform;
    platform.eventURL = service + "/v1/event";
    platform.configURL = service + "/v1/config";
    platform.httpClient =
        std::make_shared<CurlHttpClient>(options.certificateAuthorityFile, options.exitGrace);
    platform.credentialStore = makeCredentialStore(options.credentialStore, dataDirectory,
                                                   utf8::repaired(applicationName(bundleIdentifier)));
    platform.preferences = std::make_shared<FilePreferences>(dataDirectory);
    platform.system = std::make_shared<LinuxSystem>(system);
    platform.clock = std::make_shared<SystemClock>();
    platform.randomSource = std::make_shared<GetrandomSource>();
    return platform;
}

}  // namespace

RandomSource& systemRandomSource() {
    static NeverDestroyed<GetrandomSource> source;
    return *source;
}

Platform makePlatform(const PlatformOptions& options) noexcept {
    try {
        return assembled(options);
    } catch (const std::exception&) {
        return unusablePlatform();
    }
}

Platform unusablePlatform() noexcept {
    Platform platform;
    platform.isUnusable = true;
    return platform;
}

}  // namespace vorna
