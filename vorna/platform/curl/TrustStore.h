// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Where the system stores the certificate authorities that it trusts.

#include <string>

namespace vorna {

/// If both are empty, libcurl's default applies.
struct TrustStore {
    std::string bundleFile;
    std::string hashedFolder;
};

/// Finds the store where Debian, Fedora, Alpine and openSUSE have it, under the given root folder.
TrustStore systemTrustStore(const std::string& root = "");

}  // namespace vorna
