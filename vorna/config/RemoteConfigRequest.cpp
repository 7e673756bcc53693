#include <vorna/config/RemoteConfigRequest.h>

namespace vorna {

json::Encoded encodeRemoteConfigRequest(const RemoteConfigRequest& request) {
    return json::encode(request);
}

}  // namespace vorna
