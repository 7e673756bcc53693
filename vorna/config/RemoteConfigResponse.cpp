// SPDX-License-Identifier: Apache-2.0
#include <vorna/config/RemoteConfigResponse.h>

#include <algorithm>

namespace vorna {

json::Decoded<RemoteConfigResponse> decodeRemoteConfigResponse(std::string_view body) {
    json::Decoded<RemoteConfigResponse> decoded = json::decode<RemoteConfigResponse>(body);
    if (auto* const error = std::get_if<json::DecodingError>(&decoded)) {
        // The key in the error is the server's: it must not break the line it is printed on.
        const auto isControl = [](char character) {
            return static_cast<unsigned char>(character) < 0x20U || character == '\x7F';
        };
        std::replace_if(error->description.begin(), error->description.end(), isControl, ' ');
        std::replace_if(error->path.begin(), error->path.end(), isControl, ' ');
    }
    return decoded;
}

}  // namespace vorna
