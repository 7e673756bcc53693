// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/curl/CurlTransfer.h>

#include <exception>
#include <utility>

namespace vorna {

namespace {

/// All header lines of an answer together, in bytes.
constexpr std::size_t maxHeadSize = std::size_t{256} * 1024;

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(blanks);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

}  // namespace

void CurlTransfer::reset() {
    sendCount = 0;
    status = 0;
    headSize = 0;
    hasHead = false;
    headers.clear();
    body.clear();
    completeSince.reset();
    abortReason = nullptr;
    error.front() = '\0';
}

int CurlTransfer::onSending(void* context, char*, char*, int, int) noexcept {
    CurlTransfer& transfer = *static_cast<CurlTransfer*>(context);
    const Time now = std::chrono::steady_clock::now();
    transfer.lane->requestSent(now);
    if (transfer.sendCount == 0) {
        transfer.deadline = now + transfer.request.plan->timeout;
    }
    ++transfer.sendCount;
    return CURL_PREREQFUNC_OK;
}

std::size_t CurlTransfer::abort(const char* reason) noexcept {
    abortReason = reason;
    return CURL_WRITEFUNC_ERROR;
}

std::size_t CurlTransfer::receiveHeader(const char* bytes, std::size_t, std::size_t count,
                                        void* context) noexcept {
    CurlTransfer& transfer = *static_cast<CurlTransfer*>(context);
    transfer.headSize += count;
    if (transfer.headSize > maxHeadSize) {
        return transfer.abort("The response headers exceed the size limit");
    }
    try {
        transfer.receiveHeaderLine({bytes, count});
    } catch (const std::exception&) {
        return transfer.abort(WaitingRequest::outOfMemory);
    }
    return count;
}

/// libcurl delivers the header lines of every answer, redirects included.
void CurlTransfer::receiveHeaderLine(std::string_view line) {
    if (line.starts_with("HTTP/")) {
        constexpr std::size_t typicalHeaderCount = 8;
        headers.clear();
        headers.reserve(typicalHeaderCount);
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
        return transfer.abort("The response body exceeds the size limit");
    }
    try {
        transfer.body.append(bytes, count);
    } catch (const std::exception&) {
        return transfer.abort(WaitingRequest::outOfMemory);
    }
    return count;
}

bool CurlTransfer::isComplete() const {
    const bool isRedirect = status >= 300 && status < 400;
    if (!hasHead || isRedirect || abortReason != nullptr) {
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

/// A server may answer and close the stream or connection before it has received the whole request. libcurl
/// sometimes reports that as an error; a complete answer counts nevertheless.
bool CurlTransfer::isAnsweredDespite(CURLcode code) const {
    switch (code) {
    case CURLE_HTTP2_STREAM:
        // Every other error of a stream has a description.
        return isComplete() || error.front() == '\0';
    case CURLE_HTTP2:
    case CURLE_PARTIAL_FILE:
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR:
        return isComplete();
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
    if (abortReason != nullptr) {
        description = abortReason;
    } else if (code == CURLE_OK) {
        // If the connection closes within the headers, libcurl takes those that arrived for all of them.
        description = "The response headers were cut off";
    } else if (description.empty()) {
        description = curl_easy_strerror(code);
    }
    request.fail(description, std::move(response));
}

}  // namespace vorna
