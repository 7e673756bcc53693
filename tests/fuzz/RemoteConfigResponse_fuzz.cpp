// SPDX-License-Identifier: Apache-2.0
#include <tests/fuzz/Fuzz.h>

#include <vorna/config/RemoteConfigResponse.h>
#include <vorna/config/RemoteConfigTable.h>

#include <string>

using namespace vorna;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = fuzz::textOf(data, size);
    const json::Decoded<RemoteConfigResponse> response = decodeRemoteConfigResponse(text);
    if (response) {
        const RemoteConfigTable table(response->configs);
        for (const auto& [key, value] : response->configs) {
            fuzz::require(table.find(key) == value);
        }
    } else {
        const std::string description = json::describe(response.error(), text);
        fuzz::require(!description.empty() && description.find('\n') == std::string::npos);
    }
    return 0;
}
