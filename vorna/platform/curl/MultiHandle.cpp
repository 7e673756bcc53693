// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/curl/MultiHandle.h>

#include <dirent.h>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>
#include <charconv>
#include <iterator>
#include <memory>
#include <string_view>
#include <vector>

namespace vorna {

namespace {

/// Whether the descriptor is one of an unnamed pair as libcurl makes it: it does not block, and is inherited.
bool isInheritedHalfOfAPair(int descriptor) {
    sockaddr_un peer = {};
    socklen_t size = sizeof peer;
    const int flags = fcntl(descriptor, F_GETFD);
    const int status = fcntl(descriptor, F_GETFL);
    return flags >= 0 && (flags & FD_CLOEXEC) == 0 && status >= 0 && (status & O_NONBLOCK) != 0 &&
           getpeername(descriptor, reinterpret_cast<sockaddr*>(&peer), &size) == 0 &&
           peer.sun_family == AF_UNIX && size == sizeof peer.sun_family;
}

struct FolderCloser {
    void operator()(DIR* folder) const noexcept { closedir(folder); }
};

std::vector<int> inheritedHalvesOfPairs() {
    std::vector<int> found;
    const std::unique_ptr<DIR, FolderCloser> folder(opendir("/proc/self/fd"));
    // NOLINTNEXTLINE(concurrency-mt-unsafe): the folder is ours alone
    while (const dirent* const entry = folder ? readdir(folder.get()) : nullptr) {
        const std::string_view name = entry->d_name;
        int descriptor = -1;
        std::from_chars(name.data(), name.data() + name.size(), descriptor);
        if (descriptor >= 0 && isInheritedHalfOfAPair(descriptor)) {
            found.push_back(descriptor);
        }
    }
    std::ranges::sort(found);
    return found;
}

void closeOnExec(const std::vector<int>& before) {
    std::vector<int> made;
    std::ranges::set_difference(inheritedHalvesOfPairs(), before, std::back_inserter(made));
    // Any others among them would be the host's, which may want its children to have them.
    if (made.size() == 2) {
        for (const int descriptor : made) {
            fcntl(descriptor, F_SETFD, FD_CLOEXEC);
        }
    }
}

}  // namespace

MultiHandle makeMultiHandle() {
    const std::vector<int> before = inheritedHalvesOfPairs();
    MultiHandle multi(curl_multi_init());
    closeOnExec(before);
    return multi;
}

}  // namespace vorna
