// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The documents that the application shows: from the remote configuration where it has them, else from a
/// folder of examples.

#include <string>
#include <string_view>

namespace app {

class Documents {
  public:
    /// `folder` holds "paywall" and "onboarding"; media addresses in its files are made to point to the
    /// service.
    Documents(std::string folder, std::string serviceURL);

    /// As "paywall/three-products". The configuration's key is the path with "_" in place of "/" and "-".
    /// Empty when it is in neither place.
    std::string document(std::string_view path) const;

  private:
    const std::string folder_;
    const std::string serviceURL_;
};

}  // namespace app
