// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The path from the top of a JSON text to one of its values.

#include <vorna/base/Export.h>

#include <cstddef>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace vorna::json {

class VORNA_EXPORT Path {
  public:
    /// The key of a member or the index of an element.
    using Step = std::variant<std::string, std::size_t>;

    /// The path to the top.
    Path() = default;

    /// As in `Path{"paidProducts", 1U, "price"}`.
    Path(std::initializer_list<Step> steps) : steps_(steps) {}

    bool empty() const noexcept { return steps_.empty(); }

    std::span<const Step> steps() const noexcept { return steps_; }

    void append(std::string_view key) { steps_.emplace_back(std::in_place_type<std::string>, key); }

    void append(std::size_t index) { steps_.emplace_back(index); }

    /// For errors, whose paths are built from the inside out while a recursion unwinds.
    void prepend(std::string_view key);
    void prepend(std::size_t index);

    /// The path must not be empty.
    void removeLast() { steps_.pop_back(); }

    /// As in "paidProducts[1].price"; empty for the top. A key with anything but ASCII letters, digits, '_',
    /// '-' and '$' is quoted in brackets, as in ["a.b"][0], so that different paths have different texts,
    /// each on one line.
    std::string text() const;

    friend bool operator==(const Path&, const Path&) = default;

  private:
    std::vector<Step> steps_;
};

}  // namespace vorna::json
