// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/FatalError.h>

#include <cstdio>
#include <cstdlib>

namespace vorna {

void fatalError(std::string_view reason) noexcept {
    std::fflush(stdout);
    std::fprintf(stderr, "[VornaSDK] Fatal error: %.*s\n", static_cast<int>(reason.size()), reason.data());
    std::fflush(stderr);
    std::abort();
}

}  // namespace vorna
