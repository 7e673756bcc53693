// SPDX-License-Identifier: Apache-2.0
#include <tests/fuzz/Fuzz.h>

#include <vorna/config/RemoteConfigResponse.h>
#include <vorna/config/RemoteConfigTable.h>

#include <string>

using namespace vorna;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = fuzz::textOf(data, size);
    const auto response = decodeRemoteConfigResponse(text);
    if (response) {
        const RemoteConfigTable& table = *response->configs;
        std::size_t entries = 0;
        table.forEach([&](std::string_view key, std::string_view value) {
            fuzz::require(table.find(key) == value);
            ++entries;
        });
        fuzz::require(entries == table.size());
    } else {
        const std::string description = json::describe(response.error(), text);
        fuzz::require(!description.empty() && description.find('\n') == std::string::npos);
    }
    return 0;
}
