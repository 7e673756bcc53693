// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The documents that the application shows: from the remote configuration if present there, otherwise from a
/// folder of examples.

#include <string>
#include <string_view>

namespace app {

class Documents {
  public:
    /// `folder` contains "paywall" and "onboarding"; media URLs in its files are changed to point to the
    /// service.
    Documents(std::string folder, std::string serviceURL);

    /// Returns the document with a path such as "paywall/three-products"; empty if there is none. The
    /// configuration's key is the path with "_" instead of "/" and "-".
    std::string document(std::string_view path) const;

  private:
    const std::string folder_;
    const std::string serviceURL_;
};

}  // namespace app
