// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <tools/devserver/Complaint.h>

#include <chrono>
#include <cstdint>
#include <list>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace vorna::devserver {

/// What a fault does to a request in place of what the service would do.
struct HandleAsUsual {};

struct AnswerWith {
    unsigned status = 200;
    std::string location;  ///< empty: no such header
    std::string body;      ///< sent as it is
};

struct DropConnection {};  ///< closes without an answer

struct ResetConnection {};  ///< the same, but the peer sees a reset

struct HoldConnection {};  ///< never answers, and never closes

using FaultDeed = std::variant<HandleAsUsual, AnswerWith, DropConnection, ResetConnection, HoldConnection>;

/// Something that goes wrong on purpose.
struct Fault {
    std::string path;                    ///< requests whose path begins so; empty: all of them
    std::optional<std::uint64_t> count;  ///< how many requests are still to meet it; absent: every one
    std::chrono::milliseconds delay{0};  ///< how much later the answer (or its absence) comes
    FaultDeed deed;
    bool cutBody = false;  ///< announces the whole body, sends half of it and closes
};

/// Reads a fault from JSON, as the control path takes it:
/// {"path":"/v1/event","count":3,"status":500,"location":"...","body":"...","delayMilliseconds":100} or, in
/// place of status, "drop", "reset", "hang" or "cutBody" with true.
[[nodiscard]] Reading<Fault> readFaultJson(std::string_view text);

/// Reads a fault from the command line: path=/v1/event,count=3,status=500,location=...,delay=100,body=...
/// where drop, reset, hang and cutBody stand alone. The body comes last and takes all the rest, commas too.
[[nodiscard]] Reading<Fault> readFaultOption(std::string_view text);

/// In a few words, for a log line.
[[nodiscard]] std::string describe(const Fault& fault);

/// The faults in force, in the order in which they were added. At most one befalls a request: the first whose
/// path fits. A fault that has met all its requests is gone. The control path is never touched.
class Faults {
  public:
    void add(Fault fault) { faults_.push_back(std::move(fault)); }

    void clear() { faults_.clear(); }

    /// The fault that a request for `path` meets now, counted down.
    [[nodiscard]] std::optional<Fault> take(std::string_view path);

    /// {"faults":[...]}, each as readFaultJson would take it, with the count that remains.
    [[nodiscard]] std::string toJson() const;

  private:
    std::list<Fault> faults_;
};

/// Whether `path` is one of those that steer the server itself.
[[nodiscard]] bool isControlPath(std::string_view path);

}  // namespace vorna::devserver
