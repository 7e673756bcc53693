// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <tools/devserver/ByteRange.h>
#include <vorna/platform/FileDescriptor.h>

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace vorna::devserver {

/// A range of an open file, sent without reading all of it into memory.
struct FileSlice {
    std::shared_ptr<const FileDescriptor> file;
    ByteRange range;
};

/// The answer to a request. The network adds the length, connection and server headers.
struct Answer {
    unsigned status = 200;
    std::vector<std::pair<std::string, std::string>> headers;
    std::variant<std::string, FileSlice> body;
};

[[nodiscard]] Answer jsonAnswer(unsigned status, std::string body);

/// {"error":"EXPLANATION"}.
[[nodiscard]] Answer errorAnswer(unsigned status, std::string_view explanation);

}  // namespace vorna::devserver
