// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Counts up: 1, 2, 3 …

#include <vorna/platform/RandomSource.h>

#include <atomic>

namespace vorna::support {

class CountingRandomSource final : public RandomSource {
  public:
    std::uint16_t next16() override { return static_cast<std::uint16_t>(++count_); }

    std::uint64_t next64() override { return ++count_; }

  private:
    std::atomic<std::uint64_t> count_ = 0;
};

}  // namespace vorna::support
