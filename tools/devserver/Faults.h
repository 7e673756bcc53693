// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Misbehaviour on demand.

#include <tools/devserver/DocumentError.h>
#include <vorna/base/Result.h>

#include <chrono>
#include <cstdint>
#include <list>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace vorna::devserver {

/// The effect of a fault on a request: the service does its work, perhaps later.
struct HandleAsUsual {};

struct AnswerWith {
    unsigned status = 200;
    std::string location;  ///< empty: no Location header
    std::string body;      ///< sent unchanged
};

/// Closes the connection without an answer.
struct DropConnection {};

/// As above, with a TCP reset.
struct ResetConnection {};

/// Neither answers nor closes the connection.
struct HoldConnection {};

using FaultAction = std::variant<HandleAsUsual, AnswerWith, DropConnection, ResetConnection, HoldConnection>;

/// Something that goes wrong on purpose.
struct Fault {
    std::string path;                    ///< prefix of the requests' paths; empty: all requests
    std::optional<std::uint64_t> count;  ///< how many requests are left; std::nullopt: no limit
    std::chrono::milliseconds delay{0};  ///< before the answer, or before the connection is dropped
    FaultAction action;
    bool cutBody = false;  ///< announces the whole body, sends half of it and closes
};

/// Requirements on a whole fault.
enum class FaultRule {
    pathBeginsWithSlash,
    pathIsNotControl,
    countIsPositive,
    delayIsAtMostADay,
    statusIsInRange,
    locationIsHeaderValue,
    locationNeedsStatus,
    oneActionOnly,
    cutBodyNeedsBody,
    statusAllowsBody,
    someActionIsNeeded,
};

struct UnknownFaultKey {
    std::string key;
};

using FaultError = std::variant<DocumentError, UnknownFaultKey, FaultRule>;

/// Describes the error in one line without a final full stop.
[[nodiscard]] std::string describe(const FaultError& error);

/// Parses a fault in the JSON form of the control path:
/// {"path":"/v1/event","count":3,"status":500,"location":"...","body":"...","delayMilliseconds":100} or, in
/// place of status, "drop", "reset", "hang" or "cutBody" with true.
[[nodiscard]] Result<Fault, FaultError> readFaultJson(std::string_view text);

/// Parses a fault in the form of the command line: path=/v1/event,count=3,status=500,location=...,delay=100,
/// body=... where drop, reset, hang and cutBody have no value. The body is last and extends to the end,
/// commas included.
[[nodiscard]] Result<Fault, FaultError> readFaultOption(std::string_view text);

/// Summarises the fault for a log line.
[[nodiscard]] std::string describe(const Fault& fault);

/// The active faults in the order in which they were added. At most one applies to a request: the first whose
/// path matches. A fault is removed once its count is used up. The control path is never affected.
class Faults {
  public:
    void add(Fault fault) { faults_.push_back(std::move(fault)); }

    void clear() { faults_.clear(); }

    /// Returns the fault that applies to a request for `path`, and counts it down.
    [[nodiscard]] std::optional<Fault> take(std::string_view path);

    /// {"faults":[...]}, each in the form that readFaultJson accepts, with its remaining count.
    [[nodiscard]] std::string toJson() const;

  private:
    std::list<Fault> faults_;
};

/// Whether `path` controls the server itself.
[[nodiscard]] bool isControlPath(std::string_view path);

}  // namespace vorna::devserver
