// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/linux/GetrandomSource.h>

#include <vorna/platform/FatalError.h>

#include <sys/random.h>

#include <cerrno>

namespace vorna {

namespace {

template <class Number>
Number randomNumber() {
    Number number = 0;
    // Reads this small are never partial.
    while (getrandom(&number, sizeof number, 0) != static_cast<ssize_t>(sizeof number)) {
        if (errno != EINTR) {
            fatalError("the system has no secure random numbers");
        }
    }
    return number;
}

}  // namespace

std::uint16_t GetrandomSource::next16() {
    return randomNumber<std::uint16_t>();
}

std::uint64_t GetrandomSource::next64() {
    return randomNumber<std::uint64_t>();
}

}  // namespace vorna
