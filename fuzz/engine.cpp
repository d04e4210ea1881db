// SPDX-License-Identifier: BSL-1.0
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <string>
#include <string_view>

#include "require.h"
#include "target.h"

// Passes inputs to the target. If QZL_FUZZ_GROW is set, each is also repeated to a megabyte, on which the library may
// work for a second of the processor; the sanitizers take three to fifty times as long, and time that grows with the
// square of the size takes minutes. That is not for a run that generates inputs: it would keep the slow ones for the
// code that they reach so often.

namespace {

constexpr std::size_t kGrownSize = std::size_t{1} << 20;
constexpr std::clock_t kLongest = 10 * CLOCKS_PER_SEC;

std::string Repeated(std::string_view input) {
    std::string grown;
    grown.reserve(kGrownSize + input.size());
    while (grown.size() < kGrownSize)
        grown += input;
    return grown;
}

void CheckTime(std::string_view input) {
    const std::string grown = Repeated(input);
    const std::clock_t begin = std::clock();
    Work(grown);
    const std::clock_t taken = std::clock() - begin;
    Require(taken <= kLongest, "a megabyte takes " + std::to_string(taken * 1000 / CLOCKS_PER_SEC) + " ms");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool growing = std::getenv("QZL_FUZZ_GROW") != nullptr;
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    Check(input);
    if (growing && size != 0)
        CheckTime(input);
    return 0;
}
