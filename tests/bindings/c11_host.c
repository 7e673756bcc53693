// SPDX-License-Identifier: Apache-2.0
/* Nothing but the header, in the strictest C. */
#include <vorna/vorna.h>

int main(void) {
    return vorna_get_debug() ? 1 : 0;
}
