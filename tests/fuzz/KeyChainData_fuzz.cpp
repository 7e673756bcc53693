// SPDX-License-Identifier: Apache-2.0
#include <tests/fuzz/Fuzz.h>

#include <vorna/device/KeyChainData.h>
#include <vorna/json/Decoding.h>

#include <string>

using namespace vorna;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = fuzz::textOf(data, size);
    const json::Decoded<KeyChainData> identity = json::decode<KeyChainData>(text);
    if (identity) {
        const std::string encoded = json::encode(*identity).value();
        fuzz::require(json::decode<KeyChainData>(std::string_view(encoded)) == identity);
    }
    return 0;
}
