// SPDX-License-Identifier: Apache-2.0
#include <vorna/config/RemoteConfigResponse.h>

#include <vorna/json/TextTableReader.h>

#include <utility>

namespace vorna {

namespace {

class Sink final : public json::TextTableSink {
  public:
    explicit Sink(RemoteConfigTableEntries& entries) noexcept : entries_(entries) {}

    void clear() override { entries_.clear(); }

    void add(std::string_view key, std::string_view value) override { entries_.add(key, value); }

  private:
    RemoteConfigTableEntries& entries_;
};

}  // namespace

Result<RemoteConfigResponse, json::DecodingError> decodeRemoteConfigResponse(std::string_view body) {
    // Entries are shorter than their JSON.
    RemoteConfigTableEntries entries(body.size());
    Sink sink(entries);
    if (auto read = json::readTextTable(body, "configs", sink); !read) {
        return Unexpected(std::move(read).error());
    }
    return RemoteConfigResponse{std::make_shared<const RemoteConfigTable>(std::move(entries))};
}

}  // namespace vorna
