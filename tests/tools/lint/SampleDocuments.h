// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

namespace vorna::lint {

/// Documents without findings, with members added, replaced or, where the change is "<absent>", removed.
/// Changes are JSON objects.
std::string paywall(std::string_view change = "{}", std::string_view changeOfFirstProduct = "{}");

/// A basic step followed by a paywall step.
std::string onboarding(std::string_view changeOfBasic = "{}", std::string_view changeOfPaywallStep = "{}",
                       std::string_view changeOfFirstProduct = "{}");

}  // namespace vorna::lint
