// SPDX-License-Identifier: Apache-2.0
/// Formatting and parsing identifiers, next to the least any formatter must do: copying 26 bytes.

#include <vorna/events/ULID.h>

#include <benchmark/benchmark.h>

#include <array>
#include <cstddef>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

using vorna::Date;
using vorna::ULID;

/// Enough of them to defeat branch prediction, few enough to fit the L1 cache.
constexpr std::size_t count = 256;

std::vector<ULID> identifiers() {
    std::mt19937_64 generator(20261121);  // NOLINT(cert-msc32-c,cert-msc51-cpp): the same on every run
    std::vector<ULID> made;
    made.reserve(count);
    for (std::size_t index = 0; index < count; ++index) {
        made.emplace_back(Date{1.8e9 + static_cast<double>(index)}, generator);
    }
    return made;
}

std::vector<ULID::Text> texts() {
    std::vector<ULID::Text> made;
    made.reserve(count);
    for (const ULID& ulid : identifiers()) {
        made.push_back(ulid.toText());
    }
    return made;
}

void copyOf26Bytes(benchmark::State& state) {
    const std::vector<ULID::Text> from = texts();
    ULID::Text into{};
    std::size_t next = 0;
    for (auto _ : state) {
        std::memcpy(into.data(), from[next++ % count].data(), into.size());
        benchmark::DoNotOptimize(into);
    }
}

void format(benchmark::State& state) {
    const std::vector<ULID> from = identifiers();
    std::size_t next = 0;
    for (auto _ : state) {
        ULID::Text text = from[next++ % count].toText();
        benchmark::DoNotOptimize(text);
    }
}

void formatAsString(benchmark::State& state) {
    const std::vector<ULID> from = identifiers();
    std::size_t next = 0;
    for (auto _ : state) {
        std::string text = from[next++ % count].ulidString();
        benchmark::DoNotOptimize(text);
    }
}

void parse(benchmark::State& state) {
    const std::vector<ULID::Text> from = texts();
    std::size_t next = 0;
    for (auto _ : state) {
        auto ulid = ULID::fromString(ULID::view(from[next++ % count]));
        benchmark::DoNotOptimize(ulid);
    }
}

void compare(benchmark::State& state) {
    const std::vector<ULID> from = identifiers();
    std::size_t next = 0;
    for (auto _ : state) {
        bool less = from[next % count] < from[(next + 1) % count];
        ++next;
        benchmark::DoNotOptimize(less);
    }
}

BENCHMARK(copyOf26Bytes);
BENCHMARK(format);
BENCHMARK(formatAsString);
BENCHMARK(parse);
BENCHMARK(compare);

}  // namespace

BENCHMARK_MAIN();
