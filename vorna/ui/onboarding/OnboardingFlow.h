// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The sequence of onboarding steps: each step's button presents the next one over it, and the end is told to
/// the host. All steps stay on show, one over the other, until they are closed together.

#include <vorna/documents/OnboardingStepsParameters.h>
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

    /// Decodes the document and presents its first step. Failures are logged.
    void showOnboarding(std::string_view jsonString);

    /// Dismisses every step on show, newest first.
    void closeOnboarding();

  private:
    using Steps = std::vector<std::shared_ptr<const OnboardingStepsParameters>>;

    /// Presents the step of that index; past the last one, tells the host that the sequence has ended, with
    /// the identifier.
    void presentOnboardingStep(const std::weak_ptr<ViewController>& host,
                               const std::shared_ptr<const Steps>& steps, std::size_t index,
                               const std::string& identifier);
    std::shared_ptr<ViewController> makeScreen(const std::weak_ptr<ViewController>& host,
                                               const std::shared_ptr<const Steps>& steps, std::size_t index);
    void dismissNewest();

    ScreensOnShow& onShow_;
};

}  // namespace vorna::ui
