// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The server's output.

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace vorna::devserver {

/// Reports what happens, one line per call.
struct Console {
    /// What one request did. Prints nothing with --quiet.
    std::function<void(std::string_view)> request = [](std::string_view) {};
    /// A problem of the server itself, such as a file that cannot be written or a broken configuration file.
    /// Always printed.
    std::function<void(std::string_view)> trouble = [](std::string_view) {};
};

/// Requests go to standard output, trouble to standard error.
[[nodiscard]] Console standardConsole(bool quiet);

/// Makes text from the network safe for a terminal: escapes control characters and backslashes, and truncates
/// text longer than `limit` bytes between two characters, noting its full length.
[[nodiscard]] std::string printable(std::string_view text, std::size_t limit = 200);

}  // namespace vorna::devserver
