// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A completion, which is host code: neither called nor destroyed once the process exits, since it may use
/// what has been torn down.

#include <vorna/platform/HttpClient.h>

#include <optional>
#include <string>

namespace vorna {

class HostCompletion {
  public:
    HostCompletion() = default;

    // As a function converts to a std::function.
    HostCompletion(HttpClient::Completion completion) noexcept;  // NOLINT(google-explicit-constructor)

    HostCompletion(const HostCompletion&) = delete;
    HostCompletion& operator=(const HostCompletion&) = delete;
    HostCompletion(HostCompletion&& other) noexcept;
    HostCompletion& operator=(HostCompletion&& other) noexcept;
    ~HostCompletion();

    /// Exceptions that leave the host's function are dropped.
    void call(std::optional<std::string> answer, std::optional<HttpResponse> response,
              std::optional<HttpError> error) const;

  private:
    void keepIfExiting() noexcept;

    HttpClient::Completion completion_;
};

}  // namespace vorna
