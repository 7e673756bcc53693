// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/curl/TrustStore.h>

#include <array>
#include <filesystem>
#include <system_error>

namespace vorna {

TrustStore systemTrustStore(const std::string& root) {
    constexpr std::array bundles = {
        "/etc/ssl/certs/ca-certificates.crt",                 // Debian and its family, Alpine, Arch
        "/etc/pki/ca-trust/extracted/pem/tls-ca-bundle.pem",  // Fedora and its family
        "/etc/pki/tls/certs/ca-bundle.crt",                   // the same, older
        "/var/lib/ca-certificates/ca-bundle.pem",             // openSUSE
        "/etc/ssl/ca-bundle.pem",                             // the same, older
        "/etc/ssl/cert.pem",                                  // Alpine without its ca-certificates package
    };
    TrustStore store;
    std::error_code ignored;
    for (const char* const bundle : bundles) {
        if (std::filesystem::is_regular_file(root + bundle, ignored)) {
            store.bundleFile = root + bundle;
            break;
        }
    }
    if (std::filesystem::is_directory(root + "/etc/ssl/certs", ignored)) {
        store.hashedFolder = root + "/etc/ssl/certs";
    }
    return store;
}

}  // namespace vorna
