// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A real nginx for one test: HTTP/2 or HTTP/1.1, over TLS with the given certificate or plain, on a free
/// loopback port, with everything it writes in a folder of its own.
///
///     Nginx nginx({.certificate = identity.certificate, .privateKey = identity.privateKey});
///     ... requests to nginx.url("/v1/event") ...
///     nginx.stop();
///     EXPECT_EQ(nginx.requests().size(), 5000);
///
/// Knobs: the options. Remembered: every request, as nginx's access log has it.

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
        /// PEM. Without them it is plain HTTP.
        std::string certificate;
        std::string privateKey;
        /// Offered beside HTTP/1.1; over TLS only.
        bool offersHttp2 = true;
        /// Directives for the server block, in nginx's own language. `proxy_pass http://accepting;` takes a
        /// request in to its last byte and answers 200; `return 200;` does not wait for the body.
        std::string server = "location / { proxy_pass http://accepting; }";
    };

    /// A line of the access log.
    struct Request {
        std::string method;
        std::string path;
        std::string protocol;
        int status = 0;
        /// The same for all that came on one connection.
        std::uint64_t connection = 0;
    };

    /// Whether the program is installed; a test that needs it is skipped otherwise.
    static bool isInstalled();

    /// Whether its module is installed that knows `echo_sleep SECONDS;` and `echo TEXT;`.
    static bool canSleep();

    /// Starts it. What is sent to it from now on is answered; a step that fails ends the test with an
    /// exception that says which.
    explicit Nginx(const Options& options);
    Nginx(const Nginx&) = delete;
    Nginx& operator=(const Nginx&) = delete;
    Nginx(Nginx&&) = delete;
    Nginx& operator=(Nginx&&) = delete;
    ~Nginx();

    std::uint16_t port() const noexcept { return port_; }

    /// "https://localhost:PORT" or "http://..." and the path.
    std::string url(std::string_view path) const;

    /// The folder that relative names in the directives refer to.
    const std::filesystem::path& folder() const { return folder_.path(); }

    /// Lets it finish what it has begun, and waits for its end.
    void stop();

    /// In the order in which they were finished: all of them once it has been stopped.
    std::vector<Request> requests() const;

  private:
    void end(int signal);

    TemporaryFolder folder_;
    bool isSecure_;
    std::uint16_t port_ = 0;
    pid_t process_ = -1;
};

}  // namespace vorna::support
