#pragma once

/// What the library prints while this exists, with `debug` on.

#include <vorna/core/VornaCoreSDK.h>

#include <gtest/gtest.h>

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

    ~PrintedLines() { testing::internal::GetCapturedStdout(); }

    /// The lines since the beginning or the last call.
    std::vector<std::string> take() {
        std::istringstream stream(testing::internal::GetCapturedStdout());
        testing::internal::CaptureStdout();
        std::vector<std::string> lines;
        for (std::string line; std::getline(stream, line);) {
            lines.push_back(line);
        }
        return lines;
    }
};

}  // namespace vorna::support
