// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Captures what the library prints, with `debug` on.

#include <vorna/core/VornaCoreSDK.h>

#include <gtest/gtest.h>

#include <iostream>
#include <sstream>
#include <string>
#include <vector>

namespace vorna::support {

class PrintedLines {
  public:
    PrintedLines() {
        VornaCoreSDK::debug = true;
        testing::internal::CaptureStdout();
    }

    PrintedLines(const PrintedLines&) = delete;
    PrintedLines& operator=(const PrintedLines&) = delete;
    PrintedLines(PrintedLines&&) = delete;
    PrintedLines& operator=(PrintedLines&&) = delete;

    ~PrintedLines() { captured(); }

    /// The lines since construction or the last call.
    std::vector<std::string> take() {
        std::istringstream stream(captured());
        testing::internal::CaptureStdout();
        std::vector<std::string> lines;
        for (std::string line; std::getline(stream, line);) {
            lines.push_back(line);
        }
        return lines;
    }

  private:
    /// Repeated on standard error: failing tests also explain themselves on standard output.
    static std::string captured() {
        std::string text = testing::internal::GetCapturedStdout();
        std::cerr << text;
        return text;
    }
};

}  // namespace vorna::support
