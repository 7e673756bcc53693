// SPDX-License-Identifier: Apache-2.0
#include <tools/devserver/Statistics.h>

#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>

namespace vorna::devserver {
namespace {

namespace json = boost::json;

std::string counted(std::uint64_t number, std::string_view singular) {
    return std::to_string(number) + " " + std::string(singular) + (number == 1 ? "" : "s");
}

}  // namespace

void Statistics::countRequest(std::string_view path) {
    ++requests_;
    // A client that tries every possible path must not exhaust memory.
    constexpr std::size_t mostPaths = 1000;
    constexpr std::size_t longestPath = 512;
    auto found = paths_.find(path);
    if (found == paths_.end()) {
        const bool keep = paths_.size() < mostPaths && path.size() <= longestPath;
        found = paths_.try_emplace(keep ? std::string(path) : std::string("(other)"), 0).first;
    }
    ++found->second;
}

std::string Statistics::toJson() const {
    json::object paths;
    for (const auto& [path, count] : paths_) {
        paths[path] = count;
    }
    json::object statuses;
    for (const auto& [status, count] : statuses_) {
        statuses[std::to_string(status)] = count;
    }
    json::object statistics;
    statistics["connections"] = {{"accepted", connectionsAccepted_}, {"open", connectionsOpen_}};
    statistics["events"] = {{"recorded", eventsRecorded_}, {"rejected", eventsRejected_}};
    statistics["requests"] = {{"total", requests_}, {"unanswered", unanswered_}, {"paths", std::move(paths)}};
    statistics["statuses"] = std::move(statuses);
    return json::serialize(statistics);
}

std::string Statistics::summary() const {
    return counted(eventsRecorded_, "event") + " recorded, " + std::to_string(eventsRejected_) +
           " rejected; " + counted(requests_, "request") + " on " +
           counted(connectionsAccepted_, "connection");
}

}  // namespace vorna::devserver
