// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The results of one measurement repeated, and what is said of them: an order, never a mean, since a busy
/// machine only ever adds.

#include <cstddef>
#include <vector>

namespace vorna::bench {

class Series {
  public:
    explicit Series(std::size_t expected = 0) { values_.reserve(expected); }

    void add(double value) { values_.push_back(value); }

    std::size_t size() const { return values_.size(); }

    /// The value that the given part of all values does not exceed: 0.5 is the median, 1 the greatest. 0 when
    /// nothing was measured.
    double quantile(double part) const;

    double median() const { return quantile(0.5); }

    double greatest() const { return quantile(1); }

  private:
    std::vector<double> values_;
};

}  // namespace vorna::bench
