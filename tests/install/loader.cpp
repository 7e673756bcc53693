// SPDX-License-Identifier: Apache-2.0
/// Loads a plugin, lets it work, unloads it while it is working, and continues for that many milliseconds.

#include <dlfcn.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

int main(int, char** arguments) {
    void* const plugin = dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL);
    if (plugin == nullptr) {
        std::fprintf(stderr, "%s\n", dlerror());
        return 1;
    }
    reinterpret_cast<void (*)(const char*)>(dlsym(plugin, "work"))(arguments[2]);
    dlclose(plugin);
    std::this_thread::sleep_for(std::chrono::milliseconds(std::atoi(arguments[3])));
    return 0;
}
