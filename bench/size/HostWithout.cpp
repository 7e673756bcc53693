// SPDX-License-Identifier: Apache-2.0
/// A minimal host: a program that prints something. The size of HostWith.cpp is compared with its size.

#include <cstdio>

int main() {
    std::puts("level_up");
}
