// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <tools/lint/Document.h>
#include <tools/lint/Finding.h>

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vorna::lint {

// What a rule tells its findings to.
class Reporter {
  public:
    Reporter(const Document& document, std::vector<Finding>& findings)
        : document_(document),
          findings_(findings) {}

    // The rule whose findings follow.
    void setRule(std::string_view code, Severity severity);

    // Of the text at large.
    void atOffset(std::size_t offset, std::string message);
    // Of a value of the document.
    void atEntry(std::size_t entry, std::string message);
    // Of a field, whether it is there or not.
    void atField(const Object& object, std::string_view key, std::string message);

  private:
    const Document& document_;
    std::vector<Finding>& findings_;
    std::string_view code_;
    Severity severity_ = Severity::error;
};

// Each looks for one thing, and finds it however often it is there. Any document, also one that is not JSON.
struct Rule {
    std::string_view code;
    Severity severity = Severity::error;
    std::string_view summary;  // what it finds, for the list of rules
    void (*check)(const Document& document, Reporter& reporter) = nullptr;
};

// All of them, errors first.
[[nodiscard]] std::span<const Rule> rules() noexcept;

}  // namespace vorna::lint
