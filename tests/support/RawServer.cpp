// SPDX-License-Identifier: Apache-2.0
#include <tests/support/RawServer.h>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <condition_variable>
#include <mutex>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <utility>

namespace vorna::support {

struct RawServer::State {
    Script script;
    int listener = -1;
    std::uint16_t port = 0;

    mutable std::mutex mutex;
    mutable std::condition_variable changed;
    bool ends = false;
    /// Sockets by connection number; -1 once closed.
    std::vector<int> sockets;
    std::vector<std::string> received;
    std::vector<std::thread> scripts;
    std::thread acceptor;

    void listen();
    void acceptAll();
};

namespace {

[[noreturn]] void fail(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

/// The Content-Length of an HTTP head; 0 if absent.
std::size_t contentLength(std::string_view head) {
    std::string lowered(head);
    std::transform(lowered.begin(), lowered.end(), lowered.begin(), [](char character) {
        return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
    });
    constexpr std::string_view name = "\r\ncontent-length:";
    std::size_t at = lowered.find(name);
    std::size_t length = 0;
    if (at != std::string::npos) {
        at = lowered.find_first_not_of(' ', at + name.size());
        std::from_chars(lowered.data() + at, lowered.data() + lowered.size(), length);
    }
    return length;
}

}  // namespace

void RawServer::State::listen() {
    listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    socklen_t size = sizeof address;
    if (listener < 0 || bind(listener, generic, size) != 0 || ::listen(listener, SOMAXCONN) != 0 ||
        getsockname(listener, generic, &size) != 0) {
        fail("RawServer");
    }
    port = ntohs(address.sin_port);
}

void RawServer::State::acceptAll() {
    for (;;) {
        const int socket = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        const std::scoped_lock lock(mutex);
        if (socket < 0 || ends) {
            if (socket >= 0) {
                close(socket);
            }
            return;
        }
        const std::size_t number = sockets.size();
        sockets.push_back(socket);
        received.emplace_back();
        scripts.emplace_back([this, number, socket] {
            Connection connection(*this, number, socket);
            script(connection);
        });
        changed.notify_all();
    }
}

RawServer::Connection::~Connection() {
    const std::scoped_lock lock(state_.mutex);
    if (socket_ >= 0) {
        close(socket_);
        state_.sockets[number_] = -1;
    }
}

bool RawServer::Connection::receive() {
    std::array<char, 16384> buffer;  // NOLINT(cppcoreguidelines-pro-type-member-init): recv fills it
    const ssize_t count = socket_ < 0 ? 0 : recv(socket_, buffer.data(), buffer.size(), 0);
    if (count <= 0) {
        return false;
    }
    const std::string_view bytes(buffer.data(), static_cast<std::size_t>(count));
    unread_ += bytes;
    const std::scoped_lock lock(state_.mutex);
    state_.received[number_] += bytes;
    return true;
}

std::string RawServer::Connection::readRequest() {
    constexpr std::string_view endOfHead = "\r\n\r\n";
    std::size_t wanted = std::string::npos;
    for (;;) {
        if (wanted == std::string::npos) {
            const std::size_t end = unread_.find(endOfHead);
            if (end != std::string::npos) {
                const std::size_t body = end + endOfHead.size();
                wanted = body + contentLength(std::string_view(unread_).substr(0, body));
            }
        }
        if (unread_.size() >= wanted || !receive()) {
            break;
        }
    }
    std::string request = unread_.substr(0, wanted);
    unread_.erase(0, request.size());
    return request;
}

bool RawServer::Connection::send(std::string_view bytes) const {
    while (!bytes.empty()) {
        const ssize_t count = socket_ < 0 ? -1 : ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (count <= 0) {
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

void RawServer::Connection::hang() {
    while (receive()) {
    }
}

void RawServer::Connection::reset() {
    const std::scoped_lock lock(state_.mutex);
    if (socket_ < 0) {
        return;
    }
    // With a linger time of zero, closing discards unsent data and sends a reset.
    const linger now{.l_onoff = 1, .l_linger = 0};
    setsockopt(socket_, SOL_SOCKET, SO_LINGER, &now, sizeof now);
    close(socket_);
    socket_ = -1;
    state_.sockets[number_] = -1;
}

RawServer::RawServer(Script script) : state_(std::make_unique<State>()) {
    state_->script = std::move(script);
    state_->listen();
    state_->acceptor = std::thread([state = state_.get()] { state->acceptAll(); });
}

RawServer::~RawServer() {
    {
        const std::scoped_lock lock(state_->mutex);
        state_->ends = true;
        for (const int socket : state_->sockets) {
            if (socket >= 0) {
                shutdown(socket, SHUT_RDWR);
            }
        }
    }
    shutdown(state_->listener, SHUT_RDWR);
    state_->acceptor.join();
    close(state_->listener);
    for (std::thread& script : state_->scripts) {
        script.join();
    }
}

std::uint16_t RawServer::port() const noexcept {
    return state_->port;
}

std::string RawServer::url(std::string_view path) const {
    return "http://127.0.0.1:" + std::to_string(state_->port) + std::string(path);
}

std::size_t RawServer::connectionCount() const {
    const std::scoped_lock lock(state_->mutex);
    return state_->sockets.size();
}

std::vector<std::string> RawServer::received() const {
    const std::scoped_lock lock(state_->mutex);
    return state_->received;
}

bool RawServer::waitForConnections(std::size_t count) const {
    std::unique_lock lock(state_->mutex);
    return state_->changed.wait_for(lock, std::chrono::seconds(30),
                                    [&] { return state_->sockets.size() >= count; });
}

std::string RawServer::httpAnswer(int status, std::string_view body) {
    return "HTTP/1.1 " + std::to_string(status) + " Told\r\nContent-Length: " + std::to_string(body.size()) +
           "\r\nConnection: close\r\n\r\n" + std::string(body);
}

}  // namespace vorna::support
