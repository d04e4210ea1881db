// SPDX-License-Identifier: BSL-1.0
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

// Runs a fuzz target on every named file, and on every file below a named folder, so that earlier findings are tried
// again in an ordinary test without a fuzzing engine.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

std::size_t replayed = 0;

void Replay(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    ++replayed;
}

} // namespace

int main(int count, char** names) {
    for (int index = 1; index < count; ++index) {
        const std::filesystem::path name = names[index];
        if (!std::filesystem::is_directory(name))
            Replay(name);
        else
            for (const auto& entry : std::filesystem::recursive_directory_iterator(name))
                if (entry.is_regular_file())
                    Replay(entry.path());
    }
    std::cout << replayed << " inputs replayed\n";
    return replayed > 0 ? 0 : 1;
}
