// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Shows the steps of an onboarding: each step's button presents the next step over it, and the last one's
/// notifies the host. All steps stay presented until they are closed together.

#include <vorna/documents/OnboardingStepsParameters.h>
#include <vorna/documents/StepKind.h>
#include <vorna/ui/common/ScreensOnShow.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vorna::ui {

/// Main thread.
class OnboardingFlow {
  public:
    /// `onShow` must outlive the flow, which lives as long as the process.
    explicit OnboardingFlow(ScreensOnShow& onShow) : onShow_(onShow) {}

    /// Decodes the document and presents its first step. Logs failures.
    void showOnboarding(std::string_view jsonString);

    /// Dismisses all presented steps, newest first.
    void closeOnboarding();

  private:
    using Steps = std::vector<std::shared_ptr<const OnboardingStepsParameters>>;

    /// Presents the step at the index. Past the last step, notifies the host of the end instead, with the
    /// product identifier.
    void presentOnboardingStep(const std::weak_ptr<ViewController>& host,
                               const std::shared_ptr<const Steps>& steps, std::size_t index,
                               const std::string& identifier);
    std::shared_ptr<ViewController> makeScreen(StepKind kind, const std::weak_ptr<ViewController>& host,
                                               const std::shared_ptr<const Steps>& steps, std::size_t index);
    void dismissNewest();

    ScreensOnShow& onShow_;
};

}  // namespace vorna::ui
