// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The body of the service's answer: {"configs": {...}}, a table from text to text.

#include <vorna/json/Decoding.h>

#include <map>
#include <string>
#include <string_view>

namespace vorna {

struct RemoteConfigResponse {
    std::map<std::string, std::string> configs;

    friend bool operator==(const RemoteConfigResponse&, const RemoteConfigResponse&) = default;

    template <class Self, class Visit>
    static void visitFields(Self& self, Visit&& visit) {
        visit("configs", self.configs);
    }
};

/// Reads a body. One value that is not a string fails the whole response, and the error names its key, as in
/// "configs.theme: expected a string, found a number", on one line for any key. The last of duplicate keys
/// wins; keys other than "configs" are ignored. Any thread; any bytes.
json::Decoded<RemoteConfigResponse> decodeRemoteConfigResponse(std::string_view body);

}  // namespace vorna
