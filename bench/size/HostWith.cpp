// SPDX-License-Identifier: Apache-2.0
/// The same host with the library: it records an event and looks up a configured value.

#include <vorna/core/VornaCoreSDK.h>

#include <cstdio>

int main() {
    vorna::VornaCoreSDK::Init("size");
    vorna::VornaCoreSDK::Event("level_up", "7");
    std::puts(vorna::VornaCoreSDK::GetRemoteConfig("name", "level_up").c_str());
}
