// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Keeps `pthread_cancel` away from work that must not stop half-way.

#include <pthread.h>

namespace vorna {

/// Postpones a cancellation of the calling thread until the end of the scope: for work that would be left
/// half done, waits in destructors, and other libraries that cannot be unwound.
class NoCancellation {
  public:
    NoCancellation() noexcept { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &before_); }

    NoCancellation(const NoCancellation&) = delete;
    NoCancellation& operator=(const NoCancellation&) = delete;
    NoCancellation(NoCancellation&&) = delete;
    NoCancellation& operator=(NoCancellation&&) = delete;

    ~NoCancellation() { pthread_setcancelstate(before_, nullptr); }

  private:
    int before_ = PTHREAD_CANCEL_ENABLE;
};

}  // namespace vorna
