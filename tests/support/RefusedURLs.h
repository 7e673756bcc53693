// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Makes libcurl refuse to parse URLs, as it does when memory runs out. Replaces one of libcurl's functions
/// for the whole program, so include it in one source file of the program only.

#include <curl/curl.h>

#include <dlfcn.h>

namespace vorna::support {

/// Every URL parsed during its life is refused.
class RefusedURLs {
  public:
    RefusedURLs() noexcept { isActive = true; }

    RefusedURLs(const RefusedURLs&) = delete;
    RefusedURLs& operator=(const RefusedURLs&) = delete;
    RefusedURLs(RefusedURLs&&) = delete;
    RefusedURLs& operator=(RefusedURLs&&) = delete;

    ~RefusedURLs() { isActive = false; }

    static inline thread_local bool isActive = false;
};

}  // namespace vorna::support

// NOLINTNEXTLINE(misc-definitions-in-headers, readability-identifier-naming): stands for libcurl's function
extern "C" __attribute__((visibility("default"))) CURLU* curl_url() {
    static const auto real = reinterpret_cast<CURLU* (*)()>(dlsym(RTLD_NEXT, "curl_url"));
    return vorna::support::RefusedURLs::isActive ? nullptr : real();
}
