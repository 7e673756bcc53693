// SPDX-License-Identifier: Apache-2.0
#include <tests/tools/devserver/DevServerProcess.h>

#include <algorithm>
#include <string_view>

namespace vorna::devserver {

namespace {

std::vector<std::string> wordsFor(const std::vector<std::string>& arguments) {
    std::vector<std::string> words{VORNA_DEVSERVER_PATH};
    words.insert(words.end(), arguments.begin(), arguments.end());
    if (std::find(arguments.begin(), arguments.end(), "--port") == arguments.end()) {
        words.insert(words.end(), {"--port", "0"});
    }
    return words;
}

}  // namespace

DevServerProcess::DevServerProcess(const std::vector<std::string>& arguments)
    : StartedProgram(wordsFor(arguments)) {
    constexpr std::string_view announcement = "vorna-devserver listening on ";
    const std::string line = waitForLine("").value_or("");
    if (line.starts_with(announcement)) {
        url_ = line.substr(announcement.size());
    }
}

int DevServerProcess::port() const {
    return std::stoi(url_.substr(url_.rfind(':') + 1));
}

}  // namespace vorna::devserver
