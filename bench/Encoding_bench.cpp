// SPDX-License-Identifier: Apache-2.0
/// The cost of encoding an event as the body of its request, compared with Boost.JSON's own serializer on the
/// same document.
///
///     Encoding_bench DATA-FOLDER

#include <bench/support/SampleEvents.h>
#include <bench/support/Series.h>
#include <bench/support/Stopwatch.h>
#include <bench/support/Table.h>

#include <vorna/core/FacadeState.h>
#include <vorna/device/DeviceMetadataCollector.h>
#include <vorna/events/EventData.h>

#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>

#include <cstddef>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

namespace vorna::bench {
namespace {

int measure(const std::string& dataFolder) {
    const Platform platform = makePlatform(sampleOptions(dataFolder));
    FacadeState state;
    state.setAppID("bench");
    state.setAdid("1c9a6c3f-7b1d-4f0e-9a52-9d4d7f6f0b21");
    state.setIdentity("01HZX4T2M9V6QK3W8C5Y7N0B1D", 1'767'225'600);
    DeviceMetadataCollector collector(platform.system, platform.clock);

    constexpr std::size_t count = 32;
    std::vector<EventData> events;
    std::vector<boost::json::value> documents;
    Series bytes;
    for (std::size_t index = 0; index < count; ++index) {
        const SampleEvent sample = sampleEvent(index);
        const std::uint64_t now = wholeSeconds(platform.clock->now());
        events.push_back({std::string(sample.name), now, now, std::string(sample.customValue.value_or("")),
                          collector.collect(state.description())});
        json::Encoded encoded = encode(events.back());
        if (!encoded) {
            std::cerr << "cannot encode an event\n";
            return EXIT_FAILURE;
        }
        bytes.add(static_cast<double>(encoded->size()));
        documents.push_back(boost::json::parse(*encoded));
    }

    constexpr std::size_t rounds = 3000;
    const double clock = nanosecondsOfTheClock();
    Series ours(rounds * count);
    Series boosts(rounds * count);
    for (std::size_t round = 0; round < rounds; ++round) {
        for (const EventData& event : events) {
            ours.add(static_cast<double>(nanosecondsOf([&] { used(encode(event)); })) - clock);
        }
        for (const boost::json::value& document : documents) {
            boosts.add(static_cast<double>(nanosecondsOf([&] { used(boost::json::serialize(document)); })) -
                       clock);
        }
    }

    Table table("An event as JSON text", {"what", "ns p50", "ns p99", "ratio to Boost.JSON"});
    table.row({"encode", number(ours.median()), number(ours.quantile(0.99)),
               ratio(ours.median() / boosts.median())});
    table.row({"Boost.JSON, ready-made tree of the same document", number(boosts.median()),
               number(boosts.quantile(0.99)), ratio(1)});
    table.remark("The text has " + number(bytes.median()) + " bytes in the median, " +
                 number(bytes.greatest()) + " at most.");
    table.print();
    return EXIT_SUCCESS;
}

}  // namespace
}  // namespace vorna::bench

int main(int count, char** arguments) {
    if (count != 2) {
        std::cerr << "Usage: Encoding_bench DATA-FOLDER\n";
        return EXIT_FAILURE;
    }
    return vorna::bench::measure(arguments[1]);
}
