// SPDX-License-Identifier: Apache-2.0
#include <examples/app/Documents.h>

#include <vorna/core/VornaCoreSDK.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <utility>

namespace app {

namespace {

/// The media service in the example documents.
constexpr std::string_view exampleService = "https://127.0.0.1:8443";

}  // namespace

Documents::Documents(std::string folder, std::string serviceURL)
    : folder_(std::move(folder)),
      serviceURL_(std::move(serviceURL)) {}

std::string Documents::document(std::string_view path) const {
    std::string key(path);
    std::replace_if(
        key.begin(), key.end(), [](char letter) { return letter == '/' || letter == '-'; }, '_');
    std::string text = vorna::VornaCoreSDK::GetRemoteConfig(key, "");
    if (text.empty()) {
        const std::ifstream file(folder_ + "/" + std::string(path) + ".json");
        std::ostringstream read;
        read << file.rdbuf();
        text = read.str();
    }
    for (std::size_t at = 0;
         !serviceURL_.empty() && (at = text.find(exampleService, at)) != std::string::npos;
         at += serviceURL_.size()) {
        text.replace(at, exampleService.size(), serviceURL_);
    }
    return text;
}

}  // namespace app
