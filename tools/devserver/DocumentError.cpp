// SPDX-License-Identifier: Apache-2.0
#include <tools/devserver/DocumentError.h>

#include <tools/devserver/Console.h>

#include <algorithm>
#include <string_view>

namespace vorna::devserver {
namespace {

struct Description {
    std::string operator()(const NotJson& error) const {
        return "not JSON: " + error.reason.message() + " at byte " + std::to_string(error.offset);
    }

    std::string operator()(const WrongValue& error) const {
        return (error.key.empty() ? "" : error.key + ": ") + "expected " + error.expected + ", found " +
               error.found;
    }

    std::string operator()(const WrongKeys& error) const {
        std::string text;
        const auto add = [&text](std::string_view problem, const std::string& key) {
            constexpr std::size_t longestKey = 60;
            text.append(text.empty() ? "" : "; ").append(problem);
            text.append(" key \"").append(printable(key, longestKey)).append("\"");
        };
        for (const std::string& key : error.missing) {
            add("missing", key);
        }
        for (const std::string& key : error.repeated) {
            add("repeated", key);
        }
        constexpr std::size_t mostUnexpected = 5;
        for (std::size_t i = 0; i < std::min(error.unexpected.size(), mostUnexpected); ++i) {
            add("unexpected", error.unexpected[i]);
        }
        return text;
    }
};

}  // namespace

std::string describe(const DocumentError& error) {
    return std::visit(Description{}, error);
}

}  // namespace vorna::devserver
