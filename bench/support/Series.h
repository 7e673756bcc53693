// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Repeated results of one measurement. Only order statistics, never a mean: a busy machine only ever adds
/// time.

#include <cstddef>
#include <vector>

namespace vorna::bench {

class Series {
  public:
    explicit Series(std::size_t expected = 0) { values_.reserve(expected); }

    void add(double value) { values_.push_back(value); }

    std::size_t size() const { return values_.size(); }

    /// The given quantile: 0.5 is the median, 1 the maximum. 0 if nothing was measured.
    double quantile(double part) const;

    double median() const { return quantile(0.5); }

    double greatest() const { return quantile(1); }

  private:
    std::vector<double> values_;
};

}  // namespace vorna::bench
