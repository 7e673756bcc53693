// SPDX-License-Identifier: Apache-2.0
#include <tests/fuzz/Documents.h>

#include <vorna/documents/PaidProduct.h>

using namespace vorna;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = fuzz::textOf(data, size);
    const auto product = PaidProduct::decode(text);
    if (product) {
        fuzz::require(PaidProduct::decode(encode(*product).value()) == product);
    } else {
        fuzz::requireLocated(product.error(), text);
    }
    return 0;
}
