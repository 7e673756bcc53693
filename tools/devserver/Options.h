// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <tools/devserver/Faults.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace vorna::devserver {

/// What the command line asks for, complete and consistent.
struct Options {
    std::filesystem::path state = "vorna-devserver-state";
    std::string address = "127.0.0.1";
    std::uint16_t port = 8443;  ///< 0: any that is free
    bool plainHttp = false;
    std::vector<std::string> names;  ///< further names and addresses for our own certificate
    std::optional<std::filesystem::path> certificate;  ///< in place of our own; comes with `key`
    std::optional<std::filesystem::path> key;
    std::filesystem::path events;  ///< never empty: below `state` unless given
    std::filesystem::path config;  ///< the same
    std::optional<std::filesystem::path> media;
    std::vector<Fault> faults;
    bool quiet = false;
};

/// The program ends here: after --help, or because of a mistake on the command line.
struct EarlyExit {
    int status = 0;
    std::string output;  ///< for standard output when the status is 0, for standard error otherwise
};

[[nodiscard]] std::variant<Options, EarlyExit> readOptions(int argumentCount, const char* const* arguments);

}  // namespace vorna::devserver
