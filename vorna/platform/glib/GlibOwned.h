// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Owning pointers to GLib's objects, and a place for the errors of its calls.

#include <gio/gio.h>

#include <memory>
#include <utility>

namespace vorna::glib {

template <auto release>
struct Releaser {
    template <class T>
    void operator()(T* object) const noexcept {
        release(object);
    }
};

template <class T, auto release>
using Owned = std::unique_ptr<T, Releaser<release>>;

template <class T>
using Object = Owned<T, g_object_unref>;
using Variant = Owned<GVariant, g_variant_unref>;
using Text = Owned<char, g_free>;

/// An owned GError, or null.
class Error {
  public:
    Error() = default;

    explicit Error(GError* error) noexcept : error_(error) {}

    const GError* get() const noexcept { return error_.get(); }

  private:
    Owned<GError, g_error_free> error_;
};

/// Receives the error of a call and frees it: `g_something(..., error.out())`.
class ErrorSlot {
  public:
    ErrorSlot() = default;
    ErrorSlot(const ErrorSlot&) = delete;
    ErrorSlot& operator=(const ErrorSlot&) = delete;
    ErrorSlot(ErrorSlot&&) = delete;
    ErrorSlot& operator=(ErrorSlot&&) = delete;

    ~ErrorSlot() { g_clear_error(&error_); }

    GError** out() noexcept {
        g_clear_error(&error_);
        return &error_;
    }

    /// Null if the last call succeeded.
    const GError* get() const noexcept { return error_; }

    Error take() noexcept { return Error(std::exchange(error_, nullptr)); }

  private:
    GError* error_ = nullptr;
};

}  // namespace vorna::glib
