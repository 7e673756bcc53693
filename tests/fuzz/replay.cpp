// SPDX-License-Identifier: Apache-2.0
/// Runs a fuzz target over the files of the given folders, in a build without a fuzzer. A folder that does
/// not exist counts as empty; at least one file must be found.

#include <tests/fuzz/Fuzz.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>

int main(int count, char** folders) {
    int files = 0;
    for (int index = 1; index < count; ++index) {
        std::error_code absent;
        for (const auto& entry : std::filesystem::directory_iterator(folders[index], absent)) {
            std::ifstream file(entry.path(), std::ios::binary);
            const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
            ++files;
        }
    }
    std::printf("%d inputs\n", files);
    return files > 0 ? 0 : 1;
}
