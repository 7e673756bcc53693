// SPDX-License-Identifier: Apache-2.0
// The cost of a lookup in the remote configuration, alone and beside seven others while tables are swapped,
// and of reading the service's answer and putting it in force.
//
// Arguments: the number of keys. "Swapped" lookups run while another thread keeps replacing the table.

#include <vorna/config/ActiveRemoteConfigs.h>
#include <vorna/config/RemoteConfigResponse.h>
#include <vorna/config/RemoteConfigTable.h>

#include <benchmark/benchmark.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace vorna {
namespace {

using Configs = std::map<std::string, std::string>;

std::string keyOf(std::int64_t index) {
    return "feature_" + std::to_string(index) + "_enabled";
}

Configs configsOf(std::int64_t count) {
    Configs configs;
    for (std::int64_t index = 0; index < count; ++index) {
        // Some values fit the small-string optimisation, some do not.
        configs.emplace(keyOf(index), index % 2 == 0 ? "true" : "a value of some thirty characters");
    }
    return configs;
}

/// None of the texts needs escaping.
std::string answerOf(const Configs& configs) {
    std::string entries;
    for (const auto& [key, value] : configs) {
        entries += (entries.empty() ? "\"" : ",\"") + key + "\":\"" + value + '"';
    }
    return "{\"configs\":{" + entries + "}}";
}

std::vector<std::string> keysOf(std::int64_t count) {
    std::vector<std::string> keys;
    for (std::int64_t index = 0; index < count; ++index) {
        // In an order that neither the table nor the processor can predict.
        keys.push_back(keyOf(index * 7919 % count));
    }
    return keys;
}

/// The table in force for one run, and the keys to look up. Made by the first thread, used by all.
struct Shared {
    ActiveRemoteConfigs inForce;
    std::vector<std::string> keys;
};

std::unique_ptr<Shared> shared;  // NOLINT(cppcoreguidelines-avoid-non-const-global-variables)

void setUp(const benchmark::State& state) {
    shared = std::make_unique<Shared>();
    shared->inForce.replace(configsOf(state.range(0)));
    shared->keys = keysOf(state.range(0));
}

void tearDown(const benchmark::State&) {
    shared.reset();
}

void lookUp(benchmark::State& state) {
    const std::vector<std::string>& keys = shared->keys;
    std::size_t at = static_cast<std::size_t>(state.thread_index()) * keys.size() / 8;
    for (auto _ : state) {
        benchmark::DoNotOptimize(shared->inForce.lookup(keys[at], "default"));
        at = at + 1 == keys.size() ? 0 : at + 1;
    }
    state.SetItemsProcessed(state.iterations());
}

void lookUpWhileSwapped(benchmark::State& state) {
    std::atomic<bool> ends = false;
    std::thread writer;
    if (state.thread_index() == 0) {
        writer = std::thread([&state, &ends] {
            const Configs configs = configsOf(state.range(0));
            while (!ends) {
                shared->inForce.replace(configs);
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            }
        });
    }
    lookUp(state);
    if (writer.joinable()) {
        ends = true;
        writer.join();
    }
}

void lookUpAbsentKey(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(shared->inForce.lookup("feature_that_is_not_there", "default"));
    }
}

void putInForce(benchmark::State& state) {
    const Configs configs = configsOf(state.range(0));
    ActiveRemoteConfigs inForce;
    for (auto _ : state) {
        inForce.replace(configs);
    }
}

void readAnswer(benchmark::State& state) {
    const std::string body = answerOf(configsOf(state.range(0)));
    for (auto _ : state) {
        const auto decoded = decodeRemoteConfigResponse(body);
        if (!decoded) {
            state.SkipWithError("the answer was not read");
        }
        benchmark::DoNotOptimize(decoded);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(body.size()));
}

void numbersOfKeys(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(10)->Arg(1'000)->Arg(10'000)->Setup(setUp)->Teardown(tearDown)->UseRealTime();
}

BENCHMARK(lookUp)->Apply(numbersOfKeys)->Threads(1)->Threads(8);
BENCHMARK(lookUpWhileSwapped)->Apply(numbersOfKeys)->Threads(1)->Threads(8);
BENCHMARK(lookUpAbsentKey)->Apply(numbersOfKeys);
BENCHMARK(putInForce)->Arg(10)->Arg(1'000)->Arg(10'000)->Arg(100'000);
BENCHMARK(readAnswer)->Arg(10)->Arg(1'000)->Arg(10'000)->Arg(100'000);

}  // namespace
}  // namespace vorna
