// SPDX-License-Identifier: Apache-2.0
#include <tests/fuzz/Fuzz.h>

#include <vorna/platform/file/PreferencesDocument.h>

#include <optional>
#include <string>

using namespace vorna;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = fuzz::textOf(data, size);
    if (const std::optional<PreferencesDocument> document = readPreferencesDocument(text)) {
        const std::optional<std::string> written = writePreferencesDocument(*document);
        fuzz::require(written.has_value());
        const std::optional<PreferencesDocument> again = readPreferencesDocument(*written);
        fuzz::require(again.has_value() && writePreferencesDocument(*again) == written);
    }
    return 0;
}
