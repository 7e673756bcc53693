// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The command line.

#include <tools/common/CommandLine.h>
#include <tools/devserver/Faults.h>
#include <vorna/base/Result.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace vorna::devserver {

/// The options, complete and consistent.
struct Options {
    std::filesystem::path state = "vorna-devserver-state";
    std::string address = "127.0.0.1";
    std::uint16_t port = 8443;  ///< 0: any free port
    bool plainHttp = false;
    std::vector<std::string> names;  ///< additional names and addresses in our own certificate
    std::optional<std::filesystem::path> certificate;  ///< instead of our own; given together with `key`
    std::optional<std::filesystem::path> key;
    std::filesystem::path events;  ///< in `state` unless given
    std::filesystem::path config;  ///< in `state` unless given
    std::optional<std::filesystem::path> media;
    std::vector<Fault> faults;
    bool quiet = false;
};

/// Parses the command line.
[[nodiscard]] Result<Options, tools::EarlyExit> readOptions(int argumentCount, const char* const* arguments);

}  // namespace vorna::devserver
