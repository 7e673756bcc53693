// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/HttpClient.h>

namespace vorna {

std::string debugDescription(const std::optional<HttpResponse>& response) {
    if (!response) {
        return "nil";
    }
    std::string text = "Optional(<HTTPResponse: " + response->url +
                       "> { status code: " + std::to_string(response->statusCode) + ", headers {";
    const char* separator = " ";
    for (const HttpHeader& header : response->headers) {
        text += separator + header.name + ": " + header.value;
        separator = "; ";
    }
    text += " } })";
    // A server's bytes must not break the log line.
    for (char& character : text) {
        if (static_cast<unsigned char>(character) < 0x20U || character == '\x7F') {
            character = ' ';
        }
    }
    return text;
}

}  // namespace vorna
