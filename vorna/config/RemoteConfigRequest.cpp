// SPDX-License-Identifier: Apache-2.0
#include <vorna/config/RemoteConfigRequest.h>

namespace vorna {

json::Encoded encodeRemoteConfigRequest(const RemoteConfigRequest& request) {
    return json::encode(request);
}

}  // namespace vorna
