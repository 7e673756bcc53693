// SPDX-License-Identifier: Apache-2.0
#include <tests/fuzz/Fuzz.h>

#include <vorna/platform/URL.h>

#include <optional>

using namespace vorna;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = fuzz::textOf(data, size);
    if (const std::optional<URL> url = URL::parse(text)) {
        fuzz::require(url->text() == text && !url->scheme().empty() && !url->host().empty());
        static_cast<void>(url->isLoopback());
    }
    return 0;
}
