// SPDX-License-Identifier: Apache-2.0
#include <bench/support/Table.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdio>
#include <utility>

namespace vorna::bench {

namespace {

/// Width in characters, not bytes.
std::size_t widthOf(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char character) {
        return (static_cast<unsigned char>(character) & 0xC0U) != 0x80U;
    }));
}

void printPadded(std::string_view text, std::size_t width, bool left) {
    const std::string blanks(width - std::min(width, widthOf(text)), ' ');
    std::printf("%s%.*s%s", left ? "" : blanks.c_str(), static_cast<int>(text.size()), text.data(),
                left ? blanks.c_str() : "");
}

}  // namespace

Table::Table(std::string title, std::vector<std::string> headings) : title_(std::move(title)) {
    rows_.push_back(std::move(headings));
}

void Table::row(std::vector<std::string> cells) {
    cells.resize(rows_.front().size());
    rows_.push_back(std::move(cells));
}

void Table::remark(std::string text) {
    remarks_.push_back(std::move(text));
}

void Table::print() const {
    std::vector<std::size_t> widths(rows_.front().size());
    std::size_t total = 0;
    for (std::size_t column = 0; column < widths.size(); ++column) {
        for (const std::vector<std::string>& row : rows_) {
            widths[column] = std::max(widths[column], widthOf(row[column]));
        }
        total += widths[column] + 2;
    }
    const std::string line(total, '-');
    std::printf("\n%s\n%s\n", title_.c_str(), line.c_str());
    bool isHeading = true;
    for (const std::vector<std::string>& row : rows_) {
        for (std::size_t column = 0; column < row.size(); ++column) {
            printPadded(row[column], widths[column], column == 0);
            std::printf("%s", column + 1 < row.size() ? "  " : "\n");
        }
        if (std::exchange(isHeading, false)) {
            std::printf("%s\n", line.c_str());
        }
    }
    for (const std::string& remark : remarks_) {
        std::printf("  %s\n", remark.c_str());
    }
    std::fflush(stdout);
}

std::string number(double value, int digits) {
    std::array<char, 64> buffer{};
    const auto written =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed, digits);
    std::string text(buffer.data(), written.ptr);
    const std::size_t first = text.front() == '-' ? 1 : 0;
    std::size_t at = std::min(text.find('.'), text.size());
    while (at > first + 3) {
        at -= 3;
        text.insert(at, 1, ',');
    }
    return text;
}

std::string ratio(double value) {
    return number(value, 2) + " x";
}

std::string atMost(double value, double limit) {
    return value <= limit ? "met" : "MISSED";
}

std::string atLeast(double value, double limit) {
    return value >= limit ? "met" : "MISSED";
}

}  // namespace vorna::bench
