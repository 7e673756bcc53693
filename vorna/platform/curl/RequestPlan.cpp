// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/curl/RequestPlan.h>

#include <algorithm>
#include <new>
#include <string>

namespace vorna {

namespace {

/// A header in libcurl's form. With an empty value it ends in a semicolon; a colon would remove the header.
std::string headerLine(const HttpHeader& header) {
    return header.value.empty() ? header.name + ";" : header.name + ": " + header.value;
}

void append(HeaderList& list, const std::string& line) {
    curl_slist* const longer = curl_slist_append(list.get(), line.c_str());
    if (longer == nullptr) {
        throw std::bad_alloc();
    }
    static_cast<void>(list.release());
    list.reset(longer);
}

}  // namespace

std::shared_ptr<const RequestPlan> RequestPlan::of(const HttpRequest& request) {
    auto plan = std::make_shared<RequestPlan>(
        RequestPlan{request.url, request.method, request.headers, request.timeout, request.responseLimit,
                    request.stop, request.stop.stop_possible(), nullptr});
    // libcurl adds these by default; a name without a value removes them.
    for (const char* const unwanted : {"Accept:", "Expect:", "Content-Type:"}) {
        append(plan->list, unwanted);
    }
    for (const HttpHeader& header : request.headers) {
        append(plan->list, headerLine(header));
    }
    return plan;
}

bool RequestPlan::serves(const HttpRequest& request) const {
    return url == request.url && method == request.method && headers == request.headers &&
           timeout == request.timeout && responseLimit == request.responseLimit && stop == request.stop;
}

bool RequestPlan::isAllowed() const {
    return url.scheme() == "https" || (url.scheme() == "http" && url.isLoopback());
}

RequestPlan::Time RequestPlan::nextCheck(Time deadline) const {
    return stop.stop_possible() ? std::min(deadline, std::chrono::steady_clock::now() + cancellationInterval)
                                : deadline;
}

}  // namespace vorna
