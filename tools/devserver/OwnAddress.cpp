// SPDX-License-Identifier: Apache-2.0
#include <tools/devserver/OwnAddress.h>

#include <arpa/inet.h>
#include <strings.h>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

namespace vorna::devserver {
namespace {

bool equalIgnoringCase(std::string_view left, std::string_view right) {
    return left.size() == right.size() && ::strncasecmp(left.data(), right.data(), left.size()) == 0;
}

// The host without its port and, if it is an IPv6 address, its brackets; std::nullopt if it is malformed.
std::optional<std::string> nameOf(std::string_view host) {
    std::string_view name = host.substr(0, host.find(':'));
    std::string_view port = host.substr(name.size());
    if (host.starts_with('[')) {
        const std::size_t end = host.find(']');
        if (end == std::string_view::npos) {
            return std::nullopt;
        }
        name = host.substr(1, end - 1);
        port = host.substr(end + 1);
    }
    const bool isPort = port.empty() || (port.starts_with(':') &&
                                         port.find_first_not_of("0123456789", 1) == std::string_view::npos);
    return isPort ? std::optional(std::string(name)) : std::nullopt;
}

bool isLoopbackAddress(const std::string& name) {
    in_addr four{};
    if (::inet_pton(AF_INET, name.c_str(), &four) == 1) {
        return (ntohl(four.s_addr) >> 24U) == 127;
    }
    in6_addr six{};
    return ::inet_pton(AF_INET6, name.c_str(), &six) == 1 && IN6_IS_ADDR_LOOPBACK(&six);
}

}  // namespace

OwnAddress::OwnAddress(std::vector<std::string> names) : names_(std::move(names)) {}

bool OwnAddress::isHost(std::string_view host) const {
    const std::optional<std::string> name = nameOf(host);
    return name && (equalIgnoringCase(*name, "localhost") || isLoopbackAddress(*name) ||
                    std::any_of(names_.begin(), names_.end(),
                                [&](const std::string& own) { return equalIgnoringCase(*name, own); }));
}

bool OwnAddress::isSameOrigin(std::string_view origin, std::string_view host) {
    for (const std::string_view scheme : {"https://", "http://"}) {
        if (origin.starts_with(scheme)) {
            return equalIgnoringCase(origin.substr(scheme.size()), host);
        }
    }
    return false;
}

}  // namespace vorna::devserver
