// SPDX-License-Identifier: Apache-2.0
#include <tests/fuzz/Fuzz.h>

#include <vorna/device/KeyChainData.h>
#include <vorna/json/Decoding.h>

#include <string>
#include <variant>

using namespace vorna;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = fuzz::textOf(data, size);
    const json::Decoded<KeyChainData> decoded = json::decode<KeyChainData>(text);
    if (const KeyChainData* const identity = std::get_if<KeyChainData>(&decoded)) {
        const std::string written = std::get<std::string>(json::encode(*identity));
        fuzz::require(std::get<KeyChainData>(json::decode<KeyChainData>(std::string_view(written))) ==
                      *identity);
    }
    return 0;
}
