// SPDX-License-Identifier: Apache-2.0
// Only the header, in C++.
#include <vorna/vorna.h>

int main() {
    return vorna_get_debug() ? 1 : 0;
}
