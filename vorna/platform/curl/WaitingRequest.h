// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A request from its start until its completion is called. While it waits for its turn, it is only this
/// record.

#include <vorna/platform/HttpClient.h>
#include <vorna/platform/curl/HostCompletion.h>
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
    HostCompletion completion;

    /// Calls the host's completion. Exceptions that leave it are dropped.
    void complete(std::optional<std::string> answer, std::optional<HttpResponse> response,
                  std::optional<HttpError> error) const;

    void fail(std::string_view description, std::optional<HttpResponse> response = std::nullopt) const;
};

}  // namespace vorna
