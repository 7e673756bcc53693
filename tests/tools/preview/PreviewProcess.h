// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <tests/support/StartedProgram.h>

#include <string>
#include <vector>

namespace vorna::preview {

enum class Display { none, ofTheTest };

/// The real program.
class PreviewProcess : public support::StartedProgram {
  public:
    PreviewProcess(const std::vector<std::string>& arguments, Display display);
};

/// Runs it to its end without a display.
[[nodiscard]] PreviewProcess::End run(const std::vector<std::string>& arguments);

}  // namespace vorna::preview
