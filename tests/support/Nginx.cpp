// SPDX-License-Identifier: Apache-2.0
#include <tests/support/Nginx.h>

#include <fcntl.h>
#include <netinet/in.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <sstream>
#include <system_error>

namespace vorna::support {

namespace {

constexpr const char* program = "/usr/sbin/nginx";
constexpr const char* echoModule = "/usr/lib/nginx/modules/ngx_http_echo_module.so";
/// The descriptor on which nginx inherits its listening socket.
constexpr int inheritedListener = 3;

[[noreturn]] void fail(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

/// Listens on a free loopback port and reports which.
int listen(std::uint16_t& port) {
    const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    socklen_t size = sizeof address;
    if (listener < 0 || bind(listener, generic, size) != 0 || ::listen(listener, SOMAXCONN) != 0 ||
        getsockname(listener, generic, &size) != 0) {
        fail("a port for nginx");
    }
    port = ntohs(address.sin_port);
    return listener;
}

std::string configuration(const Nginx::Options& options, const std::string& folder, std::uint16_t port) {
    const bool isSecure = !options.certificate.empty();
    std::ostringstream text;
    if (Nginx::canSleep()) {
        text << "load_module " << echoModule << ";\n";
    }
    if (geteuid() == 0) {
        // Its folder is private.
        text << "user root;\n";
    }
    text << "daemon off;\nworker_processes 1;\npid nginx.pid;\nerror_log error.log;\n"
            "events { worker_connections 4096; }\n"
            "http {\n"
            "  log_format line '$request_method $uri $server_protocol $status $connection';\n"
            "  access_log access.log line;\n"
            "  client_max_body_size 0;\n"
            // Keeps stop() from waiting for peers that are already gone.
            "  lingering_timeout 100ms;\n";
    for (const char* const kind : {"client_body", "proxy", "fastcgi", "uwsgi", "scgi"}) {
        text << "  " << kind << "_temp_path " << kind << ";\n";
    }
    text << "  upstream accepting { server unix:" << folder << "/accepting; }\n"
         << "  server { listen unix:" << folder << "/accepting; access_log off; return 200; }\n"
         << "  server {\n"
         << "    listen 127.0.0.1:" << port << (isSecure ? " ssl" : "")
         << (isSecure && options.offersHttp2 ? " http2" : "") << ";\n";
    if (isSecure) {
        text << "    ssl_certificate certificate.pem;\n    ssl_certificate_key key.pem;\n";
    }
    text << options.server << "\n  }\n}\n";
    return text.str();
}

}  // namespace

bool Nginx::isInstalled() {
    return access(program, X_OK) == 0;
}

bool Nginx::canSleep() {
    return access(echoModule, R_OK) == 0;
}

Nginx::Nginx(const Options& options) : isSecure_(!options.certificate.empty()) {
    writeFile(folder() / "certificate.pem", options.certificate);
    writeFile(folder() / "key.pem", options.privateKey);
    const int listener = listen(port_);
    writeFile(folder() / "nginx.conf", configuration(options, folder().string(), port_));

    // nginx inherits a listening socket, as in a binary upgrade. So the port is ours from the start, and
    // clients that connect before nginx is ready simply wait.
    const std::string prefix = folder().string() + "/";
    const std::string inherited = "NGINX=" + std::to_string(inheritedListener) + ";";
    const std::array<const char*, 6> words{program, "-p", prefix.c_str(), "-c", "nginx.conf", nullptr};
    const std::array<const char*, 2> environment{inherited.c_str(), nullptr};
    const int messages =
        open((folder() / "error.log").c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, S_IRUSR | S_IWUSR);
    process_ = fork();
    if (process_ == 0) {
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        dup2(messages, STDERR_FILENO);
        if (listener == inheritedListener) {
            fcntl(listener, F_SETFD, 0);
        } else {
            dup2(listener, inheritedListener);
        }
        execve(program, const_cast<char**>(words.data()), const_cast<char**>(environment.data()));
        _exit(127);
    }
    close(listener);
    close(messages);
    if (process_ < 0) {
        fail("nginx");
    }
}

Nginx::~Nginx() {
    end(SIGTERM);
}

std::string Nginx::url(std::string_view path) const {
    return (isSecure_ ? "https://localhost:" : "http://localhost:") + std::to_string(port_) +
           std::string(path);
}

void Nginx::stop() {
    end(SIGQUIT);
}

void Nginx::end(int signal) {
    if (process_ > 0) {
        kill(process_, signal);
        waitpid(process_, nullptr, 0);
        process_ = -1;
    }
}

std::vector<Nginx::Request> Nginx::requests() const {
    std::vector<Request> requests;
    std::istringstream lines(contentsOf(folder() / "access.log"));
    Request next;
    while (lines >> next.method >> next.path >> next.protocol >> next.status >> next.connection) {
        requests.push_back(next);
    }
    return requests;
}

}  // namespace vorna::support
