// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace vorna::devserver {

/// Where the program tells the person in front of it what happens, one line a call.
struct Console {
    /// What one request did. Silent under --quiet.
    std::function<void(std::string_view)> request = [](std::string_view) {};
    /// What is wrong with the server's own surroundings: a file that cannot be written, a broken
    /// configuration file. Never silent.
    std::function<void(std::string_view)> trouble = [](std::string_view) {};
};

/// Requests go to standard output, trouble to standard error. Every line is flushed, so that a program
/// reading our output sees it at once.
[[nodiscard]] Console standardConsole(bool quiet);

/// Text from the network, made fit for a terminal: control characters and backslashes are escaped, and what
/// is longer than `limit` bytes is cut between two characters, with its full length noted.
[[nodiscard]] std::string printable(std::string_view text, std::size_t limit = 200);

}  // namespace vorna::devserver
