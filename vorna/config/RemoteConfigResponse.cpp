// SPDX-License-Identifier: Apache-2.0
#include <vorna/config/RemoteConfigResponse.h>

namespace vorna {

json::Decoded<RemoteConfigResponse> decodeRemoteConfigResponse(std::string_view body) {
    return json::decode<RemoteConfigResponse>(body);
}

}  // namespace vorna
