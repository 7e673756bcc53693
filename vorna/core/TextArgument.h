// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Text as an argument of the facade's operations, which a host need not convert and which may be missing.

#include <concepts>
#include <cstddef>
#include <optional>
#include <string_view>
#include <type_traits>

namespace vorna {

/// A view of anything that converts to std::string_view, or no text: nullptr, a null `const char*`,
/// std::nullopt, or an empty optional. An empty text is a text. Valid as long as what it was made from.
class TextArgument {
  public:
    // NOLINTBEGIN(google-explicit-constructor, hicpp-explicit-conversions): arguments are converted
    // implicitly

    constexpr TextArgument() noexcept = default;

    constexpr TextArgument(std::nullptr_t) noexcept {}

    constexpr TextArgument(std::nullopt_t) noexcept {}

    constexpr TextArgument(const char* text, std::size_t size) noexcept
        : TextArgument(std::string_view(text, size)) {}

    template <std::convertible_to<std::string_view> Source>
    constexpr TextArgument(const Source& source) {
        if constexpr (std::is_class_v<Source>) {
            const std::string_view text = source;
            // A default-constructed view is an empty text.
            text_ = text.data() == nullptr ? std::string_view("") : text;
        } else {
            const char* const text = source;
            if (text != nullptr) {
                text_ = text;
            }
        }
    }

    template <std::convertible_to<std::string_view> Source>
    constexpr TextArgument(const std::optional<Source>& source) {
        if (source) {
            *this = TextArgument(*source);
        }
    }

    // NOLINTEND(google-explicit-constructor, hicpp-explicit-conversions)

    /// std::nullopt if there is no text.
    constexpr std::optional<std::string_view> text() const noexcept {
        return text_.data() == nullptr ? std::nullopt : std::optional(text_);
    }

  private:
    /// Without data if there is no text.
    std::string_view text_;
};

}  // namespace vorna
