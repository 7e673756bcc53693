// SPDX-License-Identifier: Apache-2.0
#include <tools/schemas/GeneratedTables.h>
#include <tools/schemas/Schema.h>

#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>

namespace {

using namespace vorna;

constexpr int usageStatus = 2;

constexpr std::string_view usage =
    "Usage: vorna-schema paywall|onboarding     print the JSON Schema of such documents\n"
    "       vorna-schema tables FILE            print a Markdown file with its generated tables updated\n";

int printTables(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    const std::string markdown{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    if (!stream.good()) {
        std::cerr << "vorna-schema: cannot read " << file << '\n';
        return usageStatus;
    }
    const std::optional<std::string> result = schemas::withGeneratedTables(markdown);
    if (!result) {
        std::cerr << "vorna-schema: " << file << ": a table has an unknown name or no end\n";
        return 1;
    }
    std::cout << *result;
    return 0;
}

int run(std::string_view what, const std::optional<std::string>& file) {
    if (what == "--help" && !file) {
        std::cout << usage;
    } else if (what == "paywall" && !file) {
        std::cout << schemas::schema(lint::DocumentKind::paywall);
    } else if (what == "onboarding" && !file) {
        std::cout << schemas::schema(lint::DocumentKind::onboarding);
    } else if (what == "tables" && file) {
        return printTables(*file);
    } else {
        std::cerr << usage;
        return usageStatus;
    }
    return 0;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    try {
        const std::string_view what = argumentCount > 1 ? arguments[1] : "";
        const std::optional<std::string> file =
            argumentCount > 2 ? std::optional<std::string>(arguments[2]) : std::nullopt;
        const int status = argumentCount > 3 ? run("", std::nullopt) : run(what, file);
        std::cout.flush();
        return std::cout ? status : 1;
    } catch (const std::exception& error) {
        std::cerr << "vorna-schema: " << error.what() << '\n';
        return 1;
    }
}
