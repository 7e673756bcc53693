// SPDX-License-Identifier: Apache-2.0
#include <tests/fuzz/Documents.h>

#include <vorna/documents/PaidProduct.h>

#include <variant>

using namespace vorna;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = fuzz::textOf(data, size);
    const auto decoded = PaidProduct::decode(text);
    if (const auto* const product = std::get_if<PaidProduct>(&decoded)) {
        const std::string written = std::get<std::string>(encode(*product));
        fuzz::require(std::get<PaidProduct>(PaidProduct::decode(written)) == *product);
    } else {
        fuzz::requireLocated(std::get<json::DecodingError>(decoded), text);
    }
    return 0;
}
