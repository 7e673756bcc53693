// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

namespace vorna::devserver {

/// Counts what the server has done since it started; requests to /control are not counted.
class Statistics {
  public:
    void countRequest(std::string_view path);

    void countStatus(unsigned status) { ++statuses_[status]; }

    void countUnanswered() { ++unanswered_; }

    void countRecordedEvent() { ++eventsRecorded_; }

    void countRejectedEvent() { ++eventsRejected_; }

    void connectionOpened() {
        ++connectionsAccepted_;
        ++connectionsOpen_;
    }

    void connectionClosed() { --connectionsOpen_; }

    /// {"connections":{"accepted":1,"open":1},"events":{"recorded":1,"rejected":0},"requests":{"total":1,"unanswered":0,"paths":{"/v1/event":1}},
    ///  "statuses":{"200":1}}
    [[nodiscard]] std::string toJson() const;

    /// A one-line summary for people.
    [[nodiscard]] std::string summary() const;

  private:
    std::map<std::string, std::uint64_t, std::less<>> paths_;
    std::map<unsigned, std::uint64_t> statuses_;
    std::uint64_t requests_ = 0;
    std::uint64_t unanswered_ = 0;
    std::uint64_t eventsRecorded_ = 0;
    std::uint64_t eventsRejected_ = 0;
    std::uint64_t connectionsAccepted_ = 0;
    std::uint64_t connectionsOpen_ = 0;
};

}  // namespace vorna::devserver
