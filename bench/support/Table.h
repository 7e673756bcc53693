// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A benchmark's report: a title, rows under headings, remarks below.

#include <string>
#include <string_view>
#include <vector>

namespace vorna::bench {

class Table {
  public:
    Table(std::string title, std::vector<std::string> headings);

    /// One cell per heading; the first column is left-aligned, the others right-aligned.
    void row(std::vector<std::string> cells);

    /// A line below the table that helps to judge the figures.
    void remark(std::string text);

    /// Prints to standard output.
    void print() const;

  private:
    std::string title_;
    std::vector<std::vector<std::string>> rows_;
    std::vector<std::string> remarks_;
};

/// With that many decimals and thousands separators.
std::string number(double value, int digits = 0);

/// Such as "2.00 x".
std::string ratio(double value);

/// Compares a figure with its target.
std::string atMost(double value, double limit);
std::string atLeast(double value, double limit);

}  // namespace vorna::bench
