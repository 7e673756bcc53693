// SPDX-License-Identifier: Apache-2.0
#pragma once

/// libcurl's multi handle without its one effect on programs that the host starts.

#include <vorna/platform/curl/CurlHandles.h>

namespace vorna {

/// As curl_multi_init, and sets close-on-exec for the pair of sockets by which the handle is woken:
/// libcurl 7.88 leaves it open in every program that the host starts. If other threads make such pairs at the
/// same moment, it stays as it is. Null if there is no memory.
MultiHandle makeMultiHandle();

}  // namespace vorna
