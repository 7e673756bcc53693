// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Holds a value for the life of the process. Background threads may still use it while `exit` runs the
/// destructors of statics, so it is never destroyed.

#include <utility>

namespace vorna {

/// For function-local statics: `static NeverDestroyed<T> value(arguments...);` constructs the value on first
/// use, thread-safely.
template <class T>
class NeverDestroyed {
  public:
    template <class... Arguments>
    explicit NeverDestroyed(Arguments&&... arguments) : value_(std::forward<Arguments>(arguments)...) {}

    NeverDestroyed(const NeverDestroyed&) = delete;
    NeverDestroyed& operator=(const NeverDestroyed&) = delete;
    NeverDestroyed(NeverDestroyed&&) = delete;
    NeverDestroyed& operator=(NeverDestroyed&&) = delete;

    ~NeverDestroyed() {}  // NOLINT(modernize-use-equals-default): a member of a union is not destroyed

    T& operator*() noexcept { return value_; }

    T* operator->() noexcept { return &value_; }

  private:
    union {
        T value_;
    };
};

}  // namespace vorna
