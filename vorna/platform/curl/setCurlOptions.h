// SPDX-License-Identifier: Apache-2.0
#pragma once

/// What a request becomes in libcurl's options.

#include <vorna/platform/curl/CurlTransfer.h>
#include <vorna/platform/curl/TrustStore.h>

#include <curl/curl.h>

namespace vorna {

/// Sets the handle, which has none set, to the plan of the transfer's request; the body is not part of it. An
/// error when one of the options was refused that must not be missing.
CURLcode setCurlOptions(CurlTransfer& transfer, const TrustStore& trust);

}  // namespace vorna
