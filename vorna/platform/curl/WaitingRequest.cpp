// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/curl/WaitingRequest.h>

#include <exception>
#include <utility>

namespace vorna {

void WaitingRequest::complete(std::optional<std::string> answer, std::optional<HttpResponse> response,
                              std::optional<HttpError> error) const {
    completion.call(std::move(answer), std::move(response), std::move(error));
}

void WaitingRequest::fail(std::string_view description, std::optional<HttpResponse> response) const {
    HttpError error;
    try {
        error.description = description;
    } catch (const std::exception&) {
        // Short enough to need no allocation.
        error.description = outOfMemory;
    }
    complete(std::nullopt, std::move(response), std::move(error));
}

}  // namespace vorna
