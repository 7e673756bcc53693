#include <tools/lint/Lint.h>
#include <tools/lint/Options.h>
#include <tools/lint/Report.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <exception>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <variant>
#include <vector>

namespace {

using namespace vorna::lint;

constexpr int findingsStatus = 1;
constexpr int unreadableStatus = 2;

// What the file holds; absent with `errno` set when it cannot be read.
std::optional<std::string> contents(const std::string& file) {
    const auto close = [](std::FILE* stream) {
        if (stream != stdin) {
            static_cast<void>(std::fclose(stream));
        }
    };
    const std::unique_ptr<std::FILE, decltype(close)> stream(
        file == "-" ? stdin : std::fopen(file.c_str(), "rbe"), close);
    if (!stream) {
        return std::nullopt;
    }
    std::string text;
    std::vector<char> piece(std::size_t{64} * 1024);
    while (const std::size_t count = std::fread(piece.data(), 1, piece.size(), stream.get())) {
        text.append(piece.data(), count);
    }
    return std::ferror(stream.get()) != 0 ? std::nullopt : std::optional(std::move(text));
}

int check(const Options& options) {
    std::vector<CheckedDocument> documents;
    bool unreadable = false;
    for (const std::string& file : options.files) {
        const std::optional<std::string> text = contents(file);
        if (!text) {
            std::cerr << "vorna-lint: " << file << ": " << std::generic_category().message(errno) << '\n';
            unreadable = true;
            continue;
        }
        documents.push_back({file == "-" ? "<stdin>" : file, lint(*text, options.kind)});
    }
    std::cout << (options.format == Format::json ? jsonReport(documents) : humanReport(documents))
              << std::flush;
    if (unreadable || !std::cout) {
        return unreadableStatus;
    }
    const bool clean = std::all_of(documents.begin(), documents.end(), [](const CheckedDocument& document) {
        return document.verdict.findings.empty();
    });
    return clean ? 0 : findingsStatus;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    try {
        auto reading = readOptions(argumentCount, arguments);
        if (const auto* exit = std::get_if<EarlyExit>(&reading)) {
            (exit->status == 0 ? std::cout : std::cerr) << exit->output;
            return exit->status;
        }
        return check(std::get<Options>(reading));
    } catch (const std::exception& error) {
        std::cerr << "vorna-lint: " << error.what() << '\n';
        return unreadableStatus;
    }
}
