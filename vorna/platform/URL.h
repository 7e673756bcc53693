// SPDX-License-Identifier: Apache-2.0
#pragma once

/// An absolute URL, valid by construction.

#include <vorna/base/Export.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vorna {

class VORNA_EXPORT URL {
  public:
    /// Returns std::nullopt if the text is not an absolute URL with a scheme and a host: it is empty,
    /// contains blanks or control characters, lacks a host, or has a port that is not a number.
    static std::optional<URL> parse(std::string_view text);

    /// The text as given.
    const std::string& text() const noexcept { return text_; }

    /// In lower case, such as "https".
    const std::string& scheme() const noexcept { return scheme_; }

    /// In lower case; an IPv6 address is without its brackets.
    const std::string& host() const noexcept { return host_; }

    /// The given port or the scheme's default; 0 if there is neither.
    std::uint16_t port() const noexcept { return port_; }

    /// True for 127.0.0.0/8, ::1 and "localhost", which stay on this machine.
    bool isLoopback() const;

    friend bool operator==(const URL&, const URL&) = default;

  private:
    URL() = default;

    std::string text_;
    std::string scheme_;
    std::string host_;
    std::uint16_t port_ = 0;
};

}  // namespace vorna
