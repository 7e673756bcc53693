// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The service's handling of each request.

#include <tools/devserver/Answer.h>
#include <tools/devserver/ConfigFile.h>
#include <tools/devserver/Console.h>
#include <tools/devserver/EventJournal.h>
#include <tools/devserver/Faults.h>
#include <tools/devserver/MediaFolder.h>
#include <tools/devserver/OwnAddress.h>
#include <tools/devserver/Statistics.h>

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace vorna::devserver {

/// A request as received. The views are valid during the call.
struct Request {
    std::string_view method;
    std::string_view target;
    std::string_view body;
    std::string_view range;                  ///< value of the Range header
    bool conditionalRange = false;           ///< there is an If-Range header too
    std::string_view host;                   ///< value of the Host header; empty unless there is exactly one
    std::optional<std::string_view> origin;  ///< value of the Origin header
    bool fromLoopback = true;
};

/// The result of a request: an answer, or one of the ways to leave a client without one.
struct Outcome {
    std::chrono::milliseconds delay{0};
    std::variant<Answer, DropConnection, ResetConnection, HoldConnection> action;
    bool cutBody = false;
    bool stopServer = false;  ///< once the answer is sent
};

/// Handles every path of the service, independently of the network.
///
/// A fault that answers, drops, resets or hangs replaces the service: nothing is checked or recorded. With
/// one that only delays or cuts the body the service does its work: an event is recorded immediately, even if
/// its answer is lost.
///
/// For one thread. Everything passed to the constructor must outlive the router.
class Router {
  public:
    Router(EventJournal& journal, const ConfigFile& config, std::optional<MediaFolder> media, Faults& faults,
           Statistics& statistics, Console console, OwnAddress ownAddress = OwnAddress());

    [[nodiscard]] Outcome handle(const Request& request);

  private:
    [[nodiscard]] Answer serve(const Request& request, std::string_view path);
    [[nodiscard]] Answer recordEvent(const Request& request);
    [[nodiscard]] Answer configuration(const Request& request);
    [[nodiscard]] Answer media(const Request& request, std::string_view name) const;
    [[nodiscard]] Answer rejected(std::string_view path, const DocumentError& error) const;
    [[nodiscard]] Answer troubled(const std::string& problem) const;
    [[nodiscard]] std::optional<std::string> whyNotControlled(const Request& request) const;
    [[nodiscard]] Outcome control(const Request& request, std::string_view path);

    EventJournal& journal_;
    const ConfigFile& config_;
    std::optional<MediaFolder> media_;
    Faults& faults_;
    Statistics& statistics_;
    Console console_;
    OwnAddress ownAddress_;
};

}  // namespace vorna::devserver
