// SPDX-License-Identifier: Apache-2.0
#include <tools/devserver/ConfigFile.h>

#include <tools/devserver/JsonText.h>

#include <cerrno>
#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>

namespace vorna::devserver {

// Read anew for every request: no test of date and size notices each edit, and the file is small.
Reading<std::string> ConfigFile::read() const {
    std::error_code error;
    if (!std::filesystem::exists(path_, error) && !error) {
        return std::string("{}");
    }
    if (!std::filesystem::is_regular_file(path_, error)) {
        return Complaint{path_.string() + ": not a file that can be read"};
    }
    std::ifstream file(path_, std::ios::binary);
    if (!file) {
        return Complaint{path_.string() + ": " + std::generic_category().message(errno)};
    }
    std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    Reading<boost::json::value> reading = readJson(text);
    if (const auto* complaint = std::get_if<Complaint>(&reading)) {
        return Complaint{path_.string() + ": " + complaint->text};
    }
    return text;
}

std::string complaintAboutConfigRequest(std::string_view body) {
    Reading<boost::json::object> reading = readObjectWithExactly({"deviceData"}, body);
    if (const auto* complaint = std::get_if<Complaint>(&reading)) {
        return complaint->text;
    }
    const boost::json::value& device = std::get<boost::json::object>(reading).at("deviceData");
    return device.is_object() ? std::string() : wrongKind("deviceData", "an object", device).text;
}

}  // namespace vorna::devserver
