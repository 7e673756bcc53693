// SPDX-License-Identifier: Apache-2.0
#include <tools/common/Files.h>

#include <vorna/platform/FileDescriptor.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <vector>

namespace vorna::tools {
namespace {

Unexpected<std::error_code> lastError() {
    return Unexpected(std::error_code(errno, std::generic_category()));
}

Result<std::string, std::error_code> readAll(int descriptor) {
    constexpr std::size_t chunkBytes = 64UL * 1024;
    std::string text;
    std::vector<char> chunk(chunkBytes);
    while (true) {
        const ssize_t count = ::read(descriptor, chunk.data(), chunk.size());
        if (count > 0) {
            text.append(chunk.data(), static_cast<std::size_t>(count));
        } else if (count == 0) {
            return text;
        } else if (errno != EINTR) {
            return lastError();
        }
    }
}

}  // namespace

Result<std::string, std::error_code> readFile(const std::filesystem::path& path) {
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file.isOpen()) {
        return lastError();
    }
    return readAll(file.number());
}

Result<std::string, std::error_code> readStandardInput() {
    return readAll(STDIN_FILENO);
}

}  // namespace vorna::tools
