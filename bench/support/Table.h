// SPDX-License-Identifier: Apache-2.0
#pragma once

/// What a benchmark says at its end: a title, rows of text under their headings, remarks below.

#include <string>
#include <string_view>
#include <vector>

namespace vorna::bench {

class Table {
  public:
    Table(std::string title, std::vector<std::string> headings);

    /// One text for each heading; the first column is aligned to the left, the others to the right.
    void row(std::vector<std::string> cells);

    /// A line under the table, for what a reader needs to know to judge the figures.
    void remark(std::string text);

    /// To standard output.
    void print() const;

  private:
    std::string title_;
    std::vector<std::vector<std::string>> rows_;
    std::vector<std::string> remarks_;
};

/// With so many digits behind the point; thousands are set apart.
std::string number(double value, int digits = 0);

/// As in "2.00 x".
std::string ratio(double value);

/// How a figure stands to what is asked of it.
std::string atMost(double value, double limit);
std::string atLeast(double value, double limit);

}  // namespace vorna::bench
