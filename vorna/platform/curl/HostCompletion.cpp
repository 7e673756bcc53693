// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/curl/HostCompletion.h>

#include <vorna/base/CatchAll.h>
#include <vorna/platform/NeverDestroyed.h>
#include <vorna/platform/ProcessExit.h>

#include <list>
#include <mutex>
#include <utility>

namespace vorna {

HostCompletion::HostCompletion(HttpClient::Completion completion) noexcept
    : completion_(std::move(completion)) {}

HostCompletion::HostCompletion(HostCompletion&& other) noexcept
    : completion_(std::exchange(other.completion_, nullptr)) {}

HostCompletion& HostCompletion::operator=(HostCompletion&& other) noexcept {
    if (this != &other) {
        keepIfExiting();
        completion_ = std::exchange(other.completion_, nullptr);
    }
    return *this;
}

HostCompletion::~HostCompletion() {
    keepIfExiting();
}

void HostCompletion::call(std::optional<std::string> answer, std::optional<HttpResponse> response,
                          std::optional<HttpError> error) const {
    if (!processIsExiting()) {
        catchAll([&] { completion_(std::move(answer), std::move(response), std::move(error)); }, [] {});
    }
}

void HostCompletion::keepIfExiting() noexcept {
    if (!completion_ || !processIsExiting()) {
        return;
    }
    // Moved to where leak checkers find it.
    static NeverDestroyed<std::mutex> mutex;
    static NeverDestroyed<std::list<NeverDestroyed<HttpClient::Completion>>> kept;
    catchAll(
        [this] {
            const std::scoped_lock lock(*mutex);
            kept->emplace_back(std::move(completion_));
        },
        // Without memory for that it leaks.
        [this] { const NeverDestroyed<HttpClient::Completion> leaked(std::move(completion_)); });
}

}  // namespace vorna
