// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A real nginx for one test: HTTP/2 or HTTP/1.1, over TLS with the given certificate or plain, on a free
/// loopback port, keeping all its files in its own folder.
///
///     Nginx nginx({.certificate = identity.certificate, .privateKey = identity.privateKey});
///     ... requests to nginx.url("/v1/event") ...
///     nginx.stop();
///     EXPECT_EQ(nginx.requests().size(), 5000);
///
/// Knobs: the options. Records: every request, from nginx's access log.

#include <tests/support/TemporaryFolder.h>

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace vorna::support {

class Nginx {
  public:
    struct Options {
        /// PEM. Plain HTTP without them.
        std::string certificate;
        std::string privateKey;
        /// In addition to HTTP/1.1; over TLS only.
        bool offersHttp2 = true;
        /// Directives for nginx's server block. `proxy_pass http://accepting;` reads the whole request and
        /// answers 200; `return 200;` does not wait for the body.
        std::string server = "location / { proxy_pass http://accepting; }";
    };

    /// A line of the access log.
    struct Request {
        std::string method;
        std::string path;
        std::string protocol;
        int status = 0;
        /// Equal for requests on the same connection.
        std::uint64_t connection = 0;
    };

    /// Whether nginx is installed; tests that need it are skipped otherwise.
    static bool isInstalled();

    /// Whether the module for `echo_sleep SECONDS;` and `echo TEXT;` is installed.
    static bool canSleep();

    /// Starts nginx and waits until it answers. Throws, naming the step, if that fails.
    explicit Nginx(const Options& options);
    Nginx(const Nginx&) = delete;
    Nginx& operator=(const Nginx&) = delete;
    Nginx(Nginx&&) = delete;
    Nginx& operator=(Nginx&&) = delete;
    ~Nginx();

    std::uint16_t port() const noexcept { return port_; }

    /// "https://localhost:PORT" or "http://..." and the path.
    std::string url(std::string_view path) const;

    /// The folder that relative paths in directives refer to.
    const std::filesystem::path& folder() const { return folder_.path(); }

    /// Stops it gracefully and waits.
    void stop();

    /// In order of completion. Complete only after `stop`.
    std::vector<Request> requests() const;

  private:
    void end(int signal);

    TemporaryFolder folder_;
    bool isSecure_;
    std::uint16_t port_ = 0;
    pid_t process_ = -1;
};

}  // namespace vorna::support
