// SPDX-License-Identifier: Apache-2.0
/// The least that a host is: a program that says something. Its size is what HostWith.cpp is compared to.

#include <cstdio>

int main() {
    std::puts("level_up");
}
