// SPDX-License-Identifier: Apache-2.0
#include <tools/lint/Report.h>

#include <vorna/text/Utf8.h>

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>
#include <boost/json/string.hpp>

#include <algorithm>
#include <string_view>
#include <utility>

namespace vorna::lint {

namespace {

struct Count {
    std::size_t errors = 0;
    std::size_t warnings = 0;
    std::size_t documentsWithFindings = 0;
};

Count count(std::span<const CheckedDocument> documents) {
    Count count;
    for (const CheckedDocument& document : documents) {
        for (const Finding& finding : document.verdict.findings) {
            ++(finding.severity == Severity::error ? count.errors : count.warnings);
        }
        count.documentsWithFindings += document.verdict.findings.empty() ? 0U : 1U;
    }
    return count;
}

std::string counted(std::size_t number, std::string_view noun) {
    return std::to_string(number).append(" ").append(noun).append(number == 1 ? "" : "s");
}

/// Keeps a finding on one line for any names of keys and files.
std::string onOneLine(std::string_view text) {
    std::string line = utf8::repaired(text);
    std::replace_if(
        line.begin(), line.end(),
        [](char letter) { return static_cast<unsigned char>(letter) < 0x20U || letter == 0x7F; }, ' ');
    return line;
}

boost::json::string readable(std::string_view text) {
    const std::string repaired = utf8::repaired(text);
    return boost::json::string(repaired.data(), repaired.size());
}

boost::json::object described(const Finding& finding) {
    return {{"code", readable(finding.code)},        {"severity", readable(name(finding.severity))},
            {"path", readable(finding.path.text())}, {"line", finding.position.line},
            {"column", finding.position.column},     {"offset", finding.offset},
            {"message", readable(finding.message)}};
}

}  // namespace

std::string humanReport(std::span<const CheckedDocument> documents) {
    std::string report;
    for (const CheckedDocument& document : documents) {
        for (const Finding& finding : document.verdict.findings) {
            report.append(onOneLine(document.file));
            report.append(":").append(std::to_string(finding.position.line));
            report.append(":").append(std::to_string(finding.position.column));
            report.append(": ").append(name(finding.severity)).append(": ");
            if (!finding.path.empty()) {
                report.append(onOneLine(finding.path.text())).append(": ");
            }
            report.append(onOneLine(finding.message)).append(" [").append(finding.code).append("]\n");
        }
    }
    if (documents.empty()) {
        return report;
    }
    const Count all = count(documents);
    if (all.documentsWithFindings == 0) {
        return report.append(counted(documents.size(), "document")).append(", no findings\n");
    }
    report.append(counted(all.errors, "error")).append(", ").append(counted(all.warnings, "warning"));
    report.append(" in ").append(std::to_string(all.documentsWithFindings));
    return report.append(" of ").append(counted(documents.size(), "document")).append("\n");
}

std::string jsonReport(std::span<const CheckedDocument> documents) {
    boost::json::array list;
    for (const CheckedDocument& document : documents) {
        boost::json::array findings;
        for (const Finding& finding : document.verdict.findings) {
            findings.emplace_back(described(finding));
        }
        boost::json::object& described = list.emplace_back(boost::json::object()).as_object();
        described["file"] = readable(document.file);
        described["kind"] = nullptr;
        if (document.verdict.kind) {
            described["kind"] = readable(name(*document.verdict.kind));
        }
        described["findings"] = std::move(findings);
    }
    const Count all = count(documents);
    const boost::json::object report{
        {"documents", std::move(list)}, {"errors", all.errors}, {"warnings", all.warnings}};
    return boost::json::serialize(report) + "\n";
}

}  // namespace vorna::lint
