// SPDX-License-Identifier: Apache-2.0
#include <bench/support/Series.h>

#include <algorithm>

namespace vorna::bench {

double Series::quantile(double part) const {
    if (values_.empty()) {
        return 0;
    }
    std::vector<double> values = values_;
    const auto last = static_cast<double>(values.size() - 1);
    const auto nth = values.begin() + static_cast<std::ptrdiff_t>(part * last);
    std::nth_element(values.begin(), nth, values.end());
    return *nth;
}

}  // namespace vorna::bench
