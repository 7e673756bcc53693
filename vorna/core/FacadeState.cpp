// SPDX-License-Identifier: Apache-2.0
#include <vorna/core/FacadeState.h>

namespace vorna {

void FacadeState::setAppID(std::string appID) {
    const std::scoped_lock lock(mutex_);
    description_.edit().appId = appID;
    appID_ = std::move(appID);
}

void FacadeState::setAdid(std::string adid) {
    const std::scoped_lock lock(mutex_);
    description_.edit().adid = adid;
    adid_ = std::move(adid);
}

void FacadeState::setIdentity(std::string userID, std::uint64_t installTime) {
    const std::scoped_lock lock(mutex_);
    IdentityDescription& description = description_.edit();
    description.userId = userID;
    description.installTime = installTime;
    userID_ = std::move(userID);
    installTime_ = installTime;
}

}  // namespace vorna
