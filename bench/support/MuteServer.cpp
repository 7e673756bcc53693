// SPDX-License-Identifier: Apache-2.0
#include <bench/support/MuteServer.h>

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace vorna::bench {

MuteServer::MuteServer() : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const raw = reinterpret_cast<sockaddr*>(&address);
    if (socket_ < 0 || bind(socket_, raw, size) != 0 || listen(socket_, SOMAXCONN) != 0 ||
        getsockname(socket_, raw, &size) != 0) {
        throw std::system_error(errno, std::generic_category(), "cannot start the silent server");
    }
    url_ = "https://127.0.0.1:" + std::to_string(ntohs(address.sin_port));
}

MuteServer::~MuteServer() {
    close(socket_);
}

void MuteServer::waitForClient() const {
    pollfd waiting{.fd = socket_, .events = POLLIN, .revents = 0};
    poll(&waiting, 1, -1);
}

}  // namespace vorna::bench
