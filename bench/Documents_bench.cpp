// SPDX-License-Identifier: Apache-2.0
/// The cost of decoding and validating a paywall's document, compared with Boost.JSON's bare parse of the
/// same text, and the cost of a document with an error at its end.
///
///     Documents_bench

#include <bench/support/Series.h>
#include <bench/support/Stopwatch.h>
#include <bench/support/Table.h>

#include <vorna/documents/PaywallParameters.h>
#include <vorna/documents/PaywallValidation.h>

#include <boost/json/parse.hpp>

#include <cstddef>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

namespace vorna::bench {
namespace {

constexpr double mostTimesTheParse = 5;

/// A typical paywall: three products, every required field and some of the others.
PaywallParameters usualPaywall() {
    const auto product = [](const char* title, const char* price, const char* identifier, const char* badge) {
        return PaidProduct(title, price, identifier, "#1C2A4A", "#15151A", "#0A84FF", "#3A3A3C",
                           "7 days free", badge, "#0A84FF", "#48484A", "#FF9F0A", "#48484A",
                           "Cancel at any time", "#FFFFFF", "#FFFFFF", "#EBEBF5", "#000000", "#8E8E93");
    };
    return {"https://media.example.com/paywall/background-1170.mp4",
            "Learn without limits",
            {"All lessons in every language", "Practice that remembers your mistakes", "No advertisements 🎉"},
            {product("1 Week", "₺49,99", "com.example.lessons.weekly", ""),
             product("1 Month", "₺149,99", "com.example.lessons.monthly", "Popular"),
             product("1 Year", "₺999,99", "com.example.lessons.yearly", "Best value")},
            5,
            "com.example.lessons.monthly",
            "Start now",
            "https://www.example.com/terms",
            "https://www.example.com/privacy",
            "Renews automatically until you cancel.",
            "#0B0B0F",
            "#0A84FF",
            "#5E5CE6",
            "#FFFFFF",
            "#FFFFFF",
            "#8E8E93",
            "#8E8E93",
            "#8E8E93",
            "#8E8E93",
            "#EBEBF5",
            "#FFFFFF80"};
}

int measure() {
    const std::string text = encode(usualPaywall()).value();
    // The last field of the table is a number, so that all others are decoded first.
    std::string mistaken = text;
    mistaken.replace(mistaken.rfind("\"#FFFFFF80\""), std::string_view("\"#FFFFFF80\"").size(), "7");
    const auto decoded = PaywallParameters::decode(text);
    if (!decoded || !missingFields(*decoded).empty() || PaywallParameters::decode(mistaken)) {
        std::cerr << "the sample is not valid\n";
        return EXIT_FAILURE;
    }

    constexpr std::size_t rounds = 20'000;
    const double clock = nanosecondsOfTheClock();
    Series ours(rounds);
    Series parses(rounds);
    Series errors(rounds);
    Series validations(rounds);
    Series texts(rounds);
    for (std::size_t round = 0; round < rounds; ++round) {
        const auto timed = [&](Series& series, const auto& call) {
            series.add(static_cast<double>(nanosecondsOf(call)) - clock);
        };
        // As `validate` does, but without printing.
        timed(ours, [&] { used(missingFields(PaywallParameters::decode(text).value())); });
        timed(parses, [&] { used(boost::json::parse(text)); });
        timed(validations, [&] { used(missingFields(*decoded)); });
        timed(errors, [&] { used(PaywallParameters::decode(mistaken)); });
        timed(texts, [&] { used(encode(*decoded)); });
    }

    Table table("A paywall with three products",
                {"what", "ns p50", "ns p99", "ratio to Boost.JSON", "target", ""});
    const auto row = [&](const std::string& what, const Series& series, bool isJudged) {
        const double beside = series.median() / parses.median();
        table.row({what, number(series.median()), number(series.quantile(0.99)), ratio(beside),
                   isJudged ? "at most " + ratio(mostTimesTheParse) : "",
                   isJudged ? atMost(beside, mostTimesTheParse) : ""});
    };
    row("decode and validate", ours, true);
    row("   of that, validate", validations, false);
    row("decode up to an error at the end, and locate it", errors, false);
    row("encode", texts, false);
    row("Boost.JSON, bare parse of the same text", parses, false);
    table.remark("The text has " + number(static_cast<double>(text.size())) + " bytes.");
    table.print();
    return EXIT_SUCCESS;
}

}  // namespace
}  // namespace vorna::bench

int main() {
    return vorna::bench::measure();
}
