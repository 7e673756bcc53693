// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A request from its start to its end: what waits for its turn is no more than this.

#include <vorna/platform/HttpClient.h>
#include <vorna/platform/curl/RequestPlan.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace vorna {

struct WaitingRequest {
    static constexpr const char* outOfMemory = "Out of memory";

    std::shared_ptr<const RequestPlan> plan;
    std::string body;
    HttpClient::Completion completion;

    /// Tells the host. What its completion throws is dropped.
    void complete(std::optional<std::string> answer, std::optional<HttpResponse> response,
                  std::optional<HttpError> error) const noexcept;

    void fail(std::string_view description,
              std::optional<HttpResponse> response = std::nullopt) const noexcept;
};

}  // namespace vorna
