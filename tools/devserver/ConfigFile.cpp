// SPDX-License-Identifier: Apache-2.0
#include <tools/devserver/ConfigFile.h>

#include <tools/common/Files.h>
#include <tools/devserver/JsonText.h>

#include <utility>

namespace vorna::devserver {

std::string describe(const ConfigFileError& error) {
    const auto* const unreadable = std::get_if<std::error_code>(&error.reason);
    return error.path.string() + ": " +
           (unreadable != nullptr ? unreadable->message() : describe(std::get<DocumentError>(error.reason)));
}

// Reread for every request: comparing date and size would miss some edits, and the file is small.
Result<std::string, ConfigFileError> ConfigFile::read() const {
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path_, error);
    if (status.type() == std::filesystem::file_type::not_found) {
        return std::string("{}");
    }
    if (!error && !std::filesystem::is_regular_file(status)) {
        // A pipe would make the server wait for its writer.
        error = std::make_error_code(std::filesystem::is_directory(status) ? std::errc::is_a_directory
                                                                           : std::errc::not_supported);
    }
    if (error) {
        return Unexpected(ConfigFileError{path_, error});
    }
    Result<std::string, std::error_code> text = tools::readFile(path_);
    if (!text) {
        return Unexpected(ConfigFileError{path_, text.error()});
    }
    if (auto document = readJson(*text); !document) {
        return Unexpected(ConfigFileError{path_, std::move(document).error()});
    }
    return *std::move(text);
}

Result<void, DocumentError> checkConfigRequest(std::string_view body) {
    auto request = readObjectWithExactly({"deviceData"}, body);
    if (!request) {
        return Unexpected(std::move(request).error());
    }
    const boost::json::value& device = request->at("deviceData");
    if (!device.is_object()) {
        return Unexpected(wrongKind("deviceData", "an object", device));
    }
    return {};
}

}  // namespace vorna::devserver
