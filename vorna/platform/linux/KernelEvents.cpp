// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/linux/KernelEvents.h>

#include <linux/netlink.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>

namespace vorna {

bool concernsPowerSupply(std::string_view announcement) noexcept {
    while (!announcement.empty()) {
        const std::size_t length = std::min(announcement.find('\0'), announcement.size());
        if (announcement.substr(0, length) == "SUBSYSTEM=power_supply") {
            return true;
        }
        announcement.remove_prefix(std::min(length + 1, announcement.size()));
    }
    return false;
}

void KernelEvents::open() noexcept {
    constexpr unsigned kernelGroup = 1;
    FileDescriptor opened(
        socket(AF_NETLINK, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_KOBJECT_UEVENT));
    sockaddr_nl address = {};
    address.nl_family = AF_NETLINK;
    address.nl_groups = kernelGroup;
    if (opened.isOpen() &&
        bind(opened.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) {
        socket_ = std::move(opened);
    }
}

bool KernelEvents::takePowerSupplyChange() noexcept {
    bool isChanged = false;
    std::array<char, 8192> announcement;  // NOLINT(cppcoreguidelines-pro-type-member-init): recv() fills it
    while (socket_.isOpen()) {
        const ssize_t size = recv(socket_.number(), announcement.data(), announcement.size(), 0);
        if (size >= 0) {
            isChanged =
                isChanged || concernsPowerSupply({announcement.data(), static_cast<std::size_t>(size)});
        } else if (errno == ENOBUFS) {
            isChanged = true;
        } else if (errno == EAGAIN) {
            break;
        } else if (errno != EINTR) {
            socket_ = FileDescriptor();
        }
    }
    return isChanged;
}

}  // namespace vorna
