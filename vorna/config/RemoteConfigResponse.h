// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The body of the service's answer: {"configs": {...}}, a table from text to text.

#include <vorna/base/Result.h>
#include <vorna/config/RemoteConfigTable.h>
#include <vorna/json/DecodingError.h>

#include <memory>
#include <string_view>

namespace vorna {

struct RemoteConfigResponse {
    /// Never null.
    std::shared_ptr<const RemoteConfigTable> configs;
};

/// Reads a body. One value that is not a string fails the whole response, and the error names its key, as in
/// "configs.theme: expected a string, found a number", on one line for any key. The last of duplicate keys
/// wins; keys other than "configs" are ignored. Any thread; any bytes.
Result<RemoteConfigResponse, json::DecodingError> decodeRemoteConfigResponse(std::string_view body);

}  // namespace vorna
