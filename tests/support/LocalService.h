// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The real development server over HTTPS, with a data folder for the application.

#include <tests/support/TemporaryFolder.h>
#include <tests/tools/devserver/DevServerProcess.h>

#include <vorna/platform/Platform.h>

#include <chrono>
#include <cstddef>
#include <fstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace vorna::support {

/// Knobs: extra arguments of the server. Records: every accepted document.
class LocalService {
  public:
    explicit LocalService(std::vector<std::string> arguments = {})
        : server_(complete(std::move(arguments))) {}

    /// Options for a host that talks to this service and keeps its data in the same folder.
    PlatformOptions options() const {
        PlatformOptions options;
        options.serviceURL = server_.url();
        options.certificateAuthorityFile = folder_.path() / "ca.pem";
        options.dataDirectory = folder_.path() / "app";
        options.bundleIdentifier = "com.example.app";
        options.credentialStore = CredentialStoreKind::file;
        return options;
    }

    const std::string& url() const { return server_.url(); }

    /// The documents, in order of arrival.
    std::vector<std::string> documents() const {
        std::vector<std::string> lines;
        std::ifstream file(folder_.path() / "events.ndjson");
        for (std::string line; std::getline(file, line);) {
            lines.push_back(line);
        }
        return lines;
    }

    /// Waits for that many documents. Returns what there is after a generous timeout.
    std::vector<std::string> waitForDocuments(std::size_t count) const {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(2);
        std::vector<std::string> found = documents();
        while (found.size() < count && std::chrono::steady_clock::now() < deadline) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            found = documents();
        }
        return found;
    }

  private:
    std::vector<std::string> complete(std::vector<std::string> arguments) const {
        arguments.insert(arguments.end(), {"--state", folder_.path().string(), "--quiet"});
        return arguments;
    }

    TemporaryFolder folder_;
    devserver::DevServerProcess server_;
};

}  // namespace vorna::support
