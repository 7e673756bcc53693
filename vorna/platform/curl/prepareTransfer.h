// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Sets up libcurl's handle for the request that it is to send.

#include <vorna/base/Result.h>
#include <vorna/platform/curl/CurlTransfer.h>
#include <vorna/platform/curl/TrustStore.h>

#include <curl/curl.h>

namespace vorna {

/// Makes the transfer ready for its request. An error if libcurl refuses an option that must not be missing.
Result<void, CURLcode> prepare(CurlTransfer& transfer, const TrustStore& trust);

}  // namespace vorna
