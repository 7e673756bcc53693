// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Owning pointers to libcurl's objects.

#include <curl/curl.h>

#include <memory>

namespace vorna {

struct ListDeleter {
    void operator()(curl_slist* list) const noexcept { curl_slist_free_all(list); }
};

using HeaderList = std::unique_ptr<curl_slist, ListDeleter>;

struct EasyDeleter {
    void operator()(CURL* handle) const noexcept { curl_easy_cleanup(handle); }
};

using EasyHandle = std::unique_ptr<CURL, EasyDeleter>;

struct MultiDeleter {
    void operator()(CURLM* handle) const noexcept { curl_multi_cleanup(handle); }
};

using MultiHandle = std::unique_ptr<CURLM, MultiDeleter>;

}  // namespace vorna
