// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Sets up libcurl's handle for the request to be sent.

#include <vorna/base/Result.h>
#include <vorna/platform/curl/CurlTransfer.h>
#include <vorna/platform/curl/TrustStore.h>

#include <curl/curl.h>

namespace vorna {

/// Prepares the transfer for its request. An error if libcurl refuses a mandatory option.
Result<void, CURLcode> prepare(CurlTransfer& transfer, const TrustStore& trust);

}  // namespace vorna
