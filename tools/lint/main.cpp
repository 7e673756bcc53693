// SPDX-License-Identifier: Apache-2.0
#include <tools/lint/Lint.h>
#include <tools/lint/Options.h>
#include <tools/lint/Report.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <exception>
#include <iostream>
#include <string>
#include <system_error>
#include <vector>

namespace {

using namespace vorna::lint;
using vorna::Result;
using vorna::Unexpected;

constexpr int findingsStatus = 1;
constexpr int unreadableStatus = 2;

/// The contents of a file, or of standard input for "-".
Result<std::string, std::error_code> contents(const std::string& file) {
    const bool isInput = file == "-";
    const int descriptor = isInput ? STDIN_FILENO : ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    std::string text;
    std::vector<char> piece(std::size_t{64} * 1024);
    ssize_t count = descriptor < 0 ? -1 : 1;
    while (count > 0) {
        count = ::read(descriptor, piece.data(), piece.size());
        if (count > 0) {
            text.append(piece.data(), static_cast<std::size_t>(count));
        } else if (count < 0 && errno == EINTR) {
            count = 1;
        }
    }
    const std::error_code problem(count < 0 ? errno : 0, std::generic_category());
    if (!isInput && descriptor >= 0) {
        ::close(descriptor);
    }
    if (problem) {
        return Unexpected(problem);
    }
    return text;
}

int check(const Options& options) {
    std::vector<CheckedDocument> documents;
    bool unreadable = false;
    for (const std::string& file : options.files) {
        const auto text = contents(file);
        if (!text) {
            std::cerr << "vorna-lint: " << file << ": " << text.error().message() << '\n';
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
        const auto options = readOptions(argumentCount, arguments);
        if (!options) {
            (options.error().status == 0 ? std::cout : std::cerr) << options.error().output;
            return options.error().status;
        }
        return check(*options);
    } catch (const std::exception& error) {
        std::cerr << "vorna-lint: " << error.what() << '\n';
        return unreadableStatus;
    }
}
