// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A service on loopback, over plain HTTP/1.1 with persistent connections, that counts events.
///
/// Knobs: whether it answers. Records: how often each event arrived, by name, or by name and custom value.

#include <tests/support/RawServer.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace vorna::support {

class CountingServer {
  public:
    enum class Answers : std::uint8_t { always, never };

    explicit CountingServer(Answers answers = Answers::always)
        : server_([this, answers](RawServer::Connection& connection) {
              for (std::string request; !(request = connection.readRequest()).empty();) {
                  take(request);
                  if (answers == Answers::always) {
                      connection.send("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\n{}");
                  }
              }
          }) {}

    /// For PlatformOptions::serviceURL.
    std::string url() const { return server_.url(""); }

    /// How often an event of that name arrived.
    std::size_t count(const std::string& name) const {
        const std::scoped_lock lock(mutex_);
        const auto found = byName_.find(name);
        return found == byName_.end() ? 0 : found->second;
    }

    /// How often each custom value of an event of that name arrived.
    std::map<std::string, std::size_t> valuesOf(const std::string& name) const {
        const std::scoped_lock lock(mutex_);
        const auto found = values_.find(name);
        return found == values_.end() ? std::map<std::string, std::size_t>() : found->second;
    }

    /// False if not all have arrived within a generous time.
    bool waitFor(const std::vector<std::string>& names) const {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
        for (const std::string& name : names) {
            while (count(name) == 0) {
                if (std::chrono::steady_clock::now() > deadline) {
                    return false;
                }
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
            }
        }
        return true;
    }

  private:
    /// The text of a member of the event, which is not escaped in these tests.
    static std::string member(std::string_view body, std::string_view key) {
        const std::string begin = '"' + std::string(key) + "\":\"";
        const std::size_t at = body.find(begin);
        if (at == std::string_view::npos) {
            return {};
        }
        const std::size_t from = at + begin.size();
        return std::string(body.substr(from, body.find('"', from) - from));
    }

    void take(std::string_view request) {
        const std::size_t body = request.find("\r\n\r\n");
        if (!request.starts_with("POST /v1/event ") || body == std::string_view::npos ||
            !request.ends_with('}')) {
            return;
        }
        const std::string name = member(request.substr(body), "name");
        const std::string value = member(request.substr(body), "customValue");
        const std::scoped_lock lock(mutex_);
        ++byName_[name];
        ++values_[name][value];
    }

    mutable std::mutex mutex_;
    std::map<std::string, std::size_t> byName_;
    std::map<std::string, std::map<std::string, std::size_t>> values_;
    /// Last: it runs until it is destroyed.
    RawServer server_;
};

}  // namespace vorna::support
