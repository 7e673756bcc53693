// SPDX-License-Identifier: Apache-2.0
#include <tests/fuzz/Fuzz.h>

#include <vorna/config/RemoteConfigResponse.h>
#include <vorna/config/RemoteConfigTable.h>

#include <variant>

using namespace vorna;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = fuzz::textOf(data, size);
    const json::Decoded<RemoteConfigResponse> decoded = decodeRemoteConfigResponse(text);
    if (const RemoteConfigResponse* const response = std::get_if<RemoteConfigResponse>(&decoded)) {
        const RemoteConfigTable table(response->configs);
        for (const auto& [key, value] : response->configs) {
            fuzz::require(table.find(key) == value);
        }
    } else {
        const std::string& description = std::get<json::DecodingError>(decoded).description;
        fuzz::require(!description.empty() && description.find('\n') == std::string::npos);
    }
    return 0;
}
