// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The rules against which documents are checked.

#include <tools/lint/Document.h>
#include <tools/lint/Finding.h>

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vorna::lint {

/// Collects the findings of the rules.
class Reporter {
  public:
    Reporter(const Document& document, std::vector<Finding>& findings)
        : document_(document),
          findings_(findings) {}

    /// Sets the rule of the following findings.
    void setRule(std::string_view code, Severity severity);

    /// Reports the whole document.
    void atOffset(std::size_t offset, std::string message);
    /// Reports a value of the document.
    void atEntry(std::size_t entry, std::string message);
    /// Reports a field, present or absent.
    void atField(const Object& object, std::string_view key, std::string message);

  private:
    const Document& document_;
    std::vector<Finding>& findings_;
    std::string_view code_;
    Severity severity_ = Severity::error;
};

/// A rule finds every occurrence of one problem, in any document, even one that is not JSON.
struct Rule {
    std::string_view code;
    Severity severity = Severity::error;
    /// For the list of rules.
    std::string_view summary;
    void (*check)(const Document& document, Reporter& reporter) = nullptr;
};

/// All rules, errors first.
[[nodiscard]] std::span<const Rule> rules() noexcept;

}  // namespace vorna::lint
