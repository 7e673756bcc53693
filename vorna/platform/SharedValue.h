// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A copy-on-write value. Data that rarely differs between records (the device's description, the identity)
/// is stored once for all of them.

#include <vorna/platform/NeverDestroyed.h>

#include <memory>
#include <type_traits>
#include <utility>

namespace vorna {

/// Behaves like a T, but copying costs only a pointer. Reading one object from several threads is safe;
/// changing it needs the same care as a T. A moved-from object may only be assigned to or destroyed.
template <class T>
class SharedValue {
  public:
    /// A default T; all defaults share one object.
    SharedValue() : value_(defaultValue()) {}

    explicit SharedValue(T value) : value_(std::make_shared<const T>(std::move(value))) {}

    const T& operator*() const noexcept { return *value_; }

    const T* operator->() const noexcept { return value_.get(); }

    /// Gives this object its own copy and returns it for changing.
    T& edit() {
        auto own = std::make_shared<T>(*value_);
        T& result = *own;
        value_ = std::move(own);
        return result;
    }

    /// True if both hold the same object and so are equal. False does not mean that they differ.
    bool sharesWith(const SharedValue& other) const noexcept { return value_ == other.value_; }

    friend bool operator==(const SharedValue& left, const SharedValue& right) {
        return left.value_ == right.value_ || *left.value_ == *right.value_;
    }

  private:
    static const std::shared_ptr<const T>& defaultValue() {
        static NeverDestroyed<const std::shared_ptr<const T>> value(std::make_shared<const T>());
        return *value;
    }

    std::shared_ptr<const T> value_;
};

}  // namespace vorna
