// SPDX-License-Identifier: Apache-2.0
#include <vorna/core/VornaCoreSDK.h>

#include <string>

extern "C" [[gnu::visibility("default")]] void work(const char* dataDirectory) {
    vorna::PlatformOptions options;
    options.serviceURL = "https://127.0.0.1:1";
    options.dataDirectory = dataDirectory;
    options.credentialStore = vorna::CredentialStoreKind::file;
    vorna::VornaCoreSDK::UsePlatform(vorna::makePlatform(options));
    vorna::VornaCoreSDK::Init("plugin");
    for (int number = 0; number < 3000; ++number) {
        vorna::VornaCoreSDK::Event("from_a_plugin", std::to_string(number));
    }
}
