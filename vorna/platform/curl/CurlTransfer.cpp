// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/curl/CurlTransfer.h>

#include <vorna/platform/curl/setCurlOptions.h>

#include <exception>
#include <utility>

namespace vorna {

namespace {

/// All lines of an answer's head together, in bytes.
constexpr std::size_t largestHead = std::size_t{256} * 1024;

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(blanks);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

}  // namespace

CURLcode CurlTransfer::prepare(const TrustStore& trust) {
    const RequestPlan& plan = *request.plan;
    if (preparedFor != request.plan) {
        preparedFor.reset();
        curl_easy_reset(easy.get());
        if (const CURLcode code = setCurlOptions(*this, trust); code != CURLE_OK) {
            return code;
        }
        preparedFor = request.plan;
    }
    if (plan.method == HttpMethod::post) {
        curl_easy_setopt(easy.get(), CURLOPT_POSTFIELDSIZE_LARGE,
                         static_cast<curl_off_t>(request.body.size()));
        curl_easy_setopt(easy.get(), CURLOPT_POSTFIELDS, request.body.data());
    }
    sendings = 0;
    status = 0;
    headSize = 0;
    hasHead = false;
    headers.clear();
    body.clear();
    wholeSince.reset();
    refusal = nullptr;
    error.front() = '\0';
    return CURLE_OK;
}

int CurlTransfer::countSending(void* context, char*, char*, int, int) noexcept {
    CurlTransfer& transfer = *static_cast<CurlTransfer*>(context);
    ServerLane& lane = *transfer.lane;
    const Time now = std::chrono::steady_clock::now();
    lane.progressed = now;
    lane.isReachable = true;
    if (transfer.sendings == 0) {
        transfer.deadline = now + transfer.request.plan->timeout;
    }
    ++transfer.sendings;
    return CURL_PREREQFUNC_OK;
}

std::size_t CurlTransfer::refuse(const char* reason) noexcept {
    refusal = reason;
    return CURL_WRITEFUNC_ERROR;
}

std::size_t CurlTransfer::receiveHeader(const char* bytes, std::size_t, std::size_t count,
                                        void* context) noexcept {
    CurlTransfer& transfer = *static_cast<CurlTransfer*>(context);
    transfer.headSize += count;
    if (transfer.headSize > largestHead) {
        return transfer.refuse("The response's head is larger than allowed");
    }
    try {
        transfer.receiveHeaderLine({bytes, count});
    } catch (const std::exception&) {
        return transfer.refuse(WaitingRequest::outOfMemory);
    }
    return count;
}

/// Lines of a head as libcurl hands them over: those of every answer that comes, redirects included.
void CurlTransfer::receiveHeaderLine(std::string_view line) {
    if (line.starts_with("HTTP/")) {
        constexpr std::size_t usually = 8;
        headers.clear();
        headers.reserve(usually);
        hasHead = false;
        headSize = line.size();
        return;
    }
    if (const std::size_t colon = line.find(':'); colon != std::string_view::npos) {
        headers.push_back(
            {std::string(trimmed(line.substr(0, colon))), std::string(trimmed(line.substr(colon + 1)))});
    } else if (trimmed(line).empty() && !hasHead) {
        long code = 0;
        char* effectiveUrl = nullptr;
        curl_easy_getinfo(easy.get(), CURLINFO_RESPONSE_CODE, &code);
        curl_easy_getinfo(easy.get(), CURLINFO_EFFECTIVE_URL, &effectiveUrl);
        url = effectiveUrl == nullptr ? request.plan->url.text() : effectiveUrl;
        status = static_cast<int>(code);
        constexpr long lastInterimStatus = 199;
        hasHead = code > lastInterimStatus;
    }
}

std::size_t CurlTransfer::receiveBody(const char* bytes, std::size_t, std::size_t count,
                                      void* context) noexcept {
    CurlTransfer& transfer = *static_cast<CurlTransfer*>(context);
    if (count > transfer.request.plan->responseLimit - transfer.body.size()) {
        return transfer.refuse("The response's body is larger than allowed");
    }
    try {
        transfer.body.append(bytes, count);
    } catch (const std::exception&) {
        return transfer.refuse(WaitingRequest::outOfMemory);
    }
    return count;
}

bool CurlTransfer::isWhole() const {
    const bool isRedirect = status >= 300 && status < 400;
    if (!hasHead || isRedirect || refusal != nullptr) {
        return false;
    }
    constexpr int noContent = 204;
    if (status == noContent || request.plan->method == HttpMethod::head) {
        return true;
    }
    curl_off_t declared = -1;
    curl_off_t received = 0;
    curl_easy_getinfo(easy.get(), CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &declared);
    curl_easy_getinfo(easy.get(), CURLINFO_SIZE_DOWNLOAD_T, &received);
    return declared >= 0 && received == declared;
}

bool CurlTransfer::isSent() const {
    curl_off_t sent = 0;
    curl_easy_getinfo(easy.get(), CURLINFO_SIZE_UPLOAD_T, &sent);
    return sent >= static_cast<curl_off_t>(request.body.size());
}

/// A server may answer, and end the stream or the connection, before the request's body is all sent. To
/// libcurl that is an error at times; a whole answer counts all the same.
bool CurlTransfer::isAnsweredDespite(CURLcode code) const {
    switch (code) {
    case CURLE_HTTP2_STREAM:
        // Every error of a stream is described but this one.
        return isWhole() || error.front() == '\0';
    case CURLE_HTTP2:
    case CURLE_PARTIAL_FILE:
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR:
        return isWhole();
    default:
        return false;
    }
}

void CurlTransfer::finish(CURLcode code) {
    std::optional<HttpResponse> response;
    if (hasHead) {
        response.emplace();
        response->url = std::move(url);
        response->statusCode = status;
        response->headers = std::move(headers);
    }
    if (response && (code == CURLE_OK || isAnsweredDespite(code))) {
        request.complete(std::move(body), std::move(response), std::nullopt);
        return;
    }
    std::string_view description = trimmed(error.data());
    if (refusal != nullptr) {
        description = refusal;
    } else if (code == CURLE_OK) {
        // libcurl takes what has come for the whole head when the connection ends within it.
        description = "The response's head was cut off";
    } else if (description.empty()) {
        description = curl_easy_strerror(code);
    }
    request.fail(description, std::move(response));
}

}  // namespace vorna
