// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <tools/devserver/Answer.h>
#include <tools/devserver/ConfigFile.h>
#include <tools/devserver/Console.h>
#include <tools/devserver/EventJournal.h>
#include <tools/devserver/Faults.h>
#include <tools/devserver/MediaFolder.h>
#include <tools/devserver/Statistics.h>

#include <chrono>
#include <optional>
#include <string_view>
#include <variant>

namespace vorna::devserver {

/// A request as it came in. The views hold for the length of the call.
struct Request {
    std::string_view method;
    std::string_view target;
    std::string_view body;
    std::string_view range;         ///< of the header of that name
    bool conditionalRange = false;  ///< an If-Range header stands beside it
    bool fromLoopback = true;
};

/// What becomes of a request: an answer, or one of the ways to leave a client without one.
struct Outcome {
    std::chrono::milliseconds delay{0};
    std::variant<Answer, DropConnection, ResetConnection, HoldConnection> deed;
    bool cutBody = false;
    bool stopServer = false;  ///< once the answer is out
};

/// Knows every path of the service and what it does; knows nothing of the network.
///
/// A fault that answers, drops, resets or holds stands in for the service: nothing is checked or recorded.
/// One that only delays or cuts the body leaves the service at work: an event is recorded at once, whatever
/// happens to its answer.
///
/// Used from one thread. Everything handed to the constructor outlives the router.
class Router {
  public:
    Router(EventJournal& journal, const ConfigFile& config, std::optional<MediaFolder> media, Faults& faults,
           Statistics& statistics, Console console);

    [[nodiscard]] Outcome handle(const Request& request);

  private:
    [[nodiscard]] Answer serve(const Request& request, std::string_view path);
    [[nodiscard]] Answer recordEvent(const Request& request);
    [[nodiscard]] Answer configuration(const Request& request);
    [[nodiscard]] Answer media(const Request& request, std::string_view name) const;
    [[nodiscard]] Outcome control(const Request& request, std::string_view path);

    EventJournal& journal_;
    const ConfigFile& config_;
    std::optional<MediaFolder> media_;
    Faults& faults_;
    Statistics& statistics_;
    Console console_;
};

}  // namespace vorna::devserver
