// SPDX-License-Identifier: Apache-2.0
#include <vorna/core/EventCatalogue.h>
#include <vorna/core/VornaCoreSDK.h>
#include <vorna/events/ULID.h>

#include <cstdio>
#include <memory>
#include <string>

namespace {

/// A host's own port: they can be derived from outside the library.
class FixedClock final : public vorna::Clock {
  public:
    vorna::Date now() const override { return {1'704'067'200.9}; }
};

}  // namespace

int main(int, char** arguments) {
    vorna::PlatformOptions options;
    options.serviceURL = "https://127.0.0.1:1";
    options.dataDirectory = arguments[1];
    options.credentialStore = vorna::CredentialStoreKind::file;
    vorna::Platform platform = vorna::makePlatform(options);
    platform.clock = std::make_shared<FixedClock>();
    vorna::VornaCoreSDK::UsePlatform(std::move(platform));
    vorna::VornaCoreSDK::Init("consumer");
    vorna::VornaCoreSDK::PaywallShown("main");
    vorna::VornaCoreSDK::Event("level_up", "7");

    const std::string user = vorna::VornaCoreSDK::GetUserID().value_or("");
    const bool isFine = vorna::VornaCoreSDK::CurrentTimestamp() == 1'704'067'200 &&
                        vorna::ULID::fromString(user).has_value() &&
                        vorna::VornaCoreSDK::GetRemoteConfig("key", "default") == "default" &&
                        vorna::eventCatalogue.size() == 27;
    std::printf("user %s, %s\n", user.c_str(), isFine ? "fine" : "not fine");
    return isFine ? 0 : 1;
}
