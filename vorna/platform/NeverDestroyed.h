// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Holds what lives as long as the process. Background threads may still use such a value while `exit` runs
/// the destructors of statics, so it has none.

#include <utility>

namespace vorna {

/// Meant for function-local statics: `static NeverDestroyed<T> value(arguments...);` makes the value once, on
/// first use, thread-safely, and leaves it alone for ever.
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
