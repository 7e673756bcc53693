// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Where this system keeps the certificate authorities that it trusts.

#include <string>

namespace vorna {

/// Both may be empty; then libcurl's own default holds.
struct TrustStore {
    std::string bundleFile;
    std::string hashedFolder;
};

/// The store as Debian, Fedora, Alpine and openSUSE lay it out, looked up below the given root folder.
TrustStore systemTrustStore(const std::string& root = "");

}  // namespace vorna
