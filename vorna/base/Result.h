// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A value or an error: the part of C++23's `std::expected` that this library uses, under the same names, so
/// that an alias can replace this file once the standard type is available.

// First, because moc cannot parse <concepts> otherwise.
#include <cstddef>

#include <concepts>
#include <cstdlib>
#include <functional>
#include <memory>
#include <type_traits>
#include <utility>
#include <variant>

namespace vorna {

/// Marks an error in a `return`: `return Unexpected(ENOENT);`.
template <class Error>
class Unexpected {
  public:
    constexpr explicit Unexpected(Error error) noexcept(std::is_nothrow_move_constructible_v<Error>)
        : error_(std::move(error)) {}

    constexpr const Error& error() const& noexcept { return error_; }

    constexpr Error&& error() && noexcept { return std::move(error_); }

    friend bool operator==(const Unexpected&, const Unexpected&) = default;

  private:
    Error error_;
};

template <class Error>
Unexpected(Error) -> Unexpected<Error>;

// The names are the standard's.
// NOLINTBEGIN(readability-identifier-naming)

/// A `Value` or an `Error`. `Value` may be void for operations that only succeed or fail. Accessing the one
/// that is absent is a programming error and aborts.
template <class Value, class Error>
class [[nodiscard]] Result {
    static constexpr bool isVoid = std::is_void_v<Value>;
    using Stored = std::conditional_t<isVoid, std::monostate, Value>;

    template <class From>
    static constexpr bool isOwnKind = std::same_as<std::remove_cvref_t<From>, Result>;

  public:
    using value_type = Value;
    using error_type = Error;
    using unexpected_type = Unexpected<Error>;

    /// Success, with a default-constructed value.
    constexpr Result() requires std::default_initializable<Stored> : state_(std::in_place_index<0>) {}

    /// Success. Implicit, for `return value;`.
    template <class From = Stored>
    constexpr explicit(!std::convertible_to<From, Stored>)
        // NOLINTNEXTLINE(bugprone-forwarding-reference-overload): the constraint excludes copies and moves
        Result(From&& value) requires(!isVoid && !isOwnKind<From> && std::constructible_from<Stored, From>)
        : state_(std::in_place_index<0>, std::forward<From>(value)) {}

    /// Failure. Implicit, for `return Unexpected(error);`.
    template <class From>
    constexpr Result(Unexpected<From> unexpected) requires std::constructible_from<Error, From>
        : state_(std::in_place_index<1>, std::move(unexpected).error()) {}

    constexpr bool has_value() const noexcept { return state_.index() == 0; }

    constexpr explicit operator bool() const noexcept { return has_value(); }

    constexpr std::add_lvalue_reference_t<const Value> value() const& {
        if constexpr (!isVoid) {
            return checked<0>(state_);
        } else {
            static_cast<void>(checked<0>(state_));
        }
    }

    constexpr std::add_lvalue_reference_t<Value> value() & {
        if constexpr (!isVoid) {
            return checked<0>(state_);
        } else {
            static_cast<void>(checked<0>(state_));
        }
    }

    constexpr std::add_rvalue_reference_t<Value> value() && {
        if constexpr (!isVoid) {
            return std::move(checked<0>(state_));
        } else {
            static_cast<void>(checked<0>(state_));
        }
    }

    constexpr std::add_lvalue_reference_t<const Value> operator*() const& { return value(); }

    constexpr std::add_lvalue_reference_t<Value> operator*() & { return value(); }

    constexpr std::add_rvalue_reference_t<Value> operator*() && { return std::move(*this).value(); }

    constexpr const Stored* operator->() const requires(!isVoid) {
        return std::addressof(checked<0>(state_));
    }

    constexpr Stored* operator->() requires(!isVoid) { return std::addressof(checked<0>(state_)); }

    template <class Default>
    constexpr Stored value_or(Default&& fallback) const& requires(!isVoid) {
        return has_value() ? **this : static_cast<Stored>(std::forward<Default>(fallback));
    }

    template <class Default>
        constexpr Stored value_or(Default&& fallback) && requires(!isVoid) {
        return has_value() ? *std::move(*this) : static_cast<Stored>(std::forward<Default>(fallback));
    }

    constexpr const Error& error() const& { return checked<1>(state_); }

    constexpr Error& error() & { return checked<1>(state_); }

    constexpr Error&& error() && { return std::move(checked<1>(state_)); }

    /// Calls the function with the value and returns its Result, which has the same error type; or returns
    /// the error unchanged.
    template <class Function>
    constexpr auto and_then(Function&& function) && {
        using Next =
            std::remove_cvref_t<decltype(applied(std::forward<Function>(function), std::move(*this)))>;
        return has_value() ? applied(std::forward<Function>(function), std::move(*this))
                           : Next(Unexpected(std::move(*this).error()));
    }

    /// Returns the value unchanged, or what the function returns for the error.
    template <class Function>
    constexpr auto transform_error(Function&& function) && {
        using Next = Result<Value, std::remove_cvref_t<std::invoke_result_t<Function, Error&&>>>;
        if (!has_value()) {
            return Next(Unexpected(std::invoke(std::forward<Function>(function), std::move(*this).error())));
        }
        if constexpr (isVoid) {
            return Next();
        } else {
            return Next(std::move(*this).value());
        }
    }

    friend bool operator==(const Result&, const Result&) = default;

  private:
    template <class Function>
    static constexpr decltype(auto) applied(Function&& function, Result&& result) {
        if constexpr (isVoid) {
            return std::invoke(std::forward<Function>(function));
        } else {
            return std::invoke(std::forward<Function>(function), std::move(result).value());
        }
    }

    /// Not std::get, which throws: this is a programming error.
    template <std::size_t index, class State>
    static constexpr auto& checked(State& state) {
        auto* const found = std::get_if<index>(&state);
        if (found == nullptr) {
            std::abort();
        }
        return *found;
    }

    std::variant<Stored, Error> state_;
};

// NOLINTEND(readability-identifier-naming)

}  // namespace vorna
