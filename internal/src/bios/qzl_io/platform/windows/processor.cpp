// SPDX-License-Identifier: BSL-1.0
#include "platform/processor.h"

#include <array>

#include <windows.h>

#if defined(_MSC_VER) && !defined(__clang__)
#include <intrin.h>
#else
#include <cpuid.h>
#endif

namespace IO::Platform {

#if defined(QZL_IO_WITHOUT_AVX2)

bool HasAvx2() {
    return false;
}

#else

namespace {

// The registers EAX, EBX, ECX and EDX of an answer of the processor.
using eAnswer = std::array<int, 4>;

eAnswer AskProcessor(int leaf) {
    eAnswer answer{};
#if defined(_MSC_VER) && !defined(__clang__)
    __cpuidex(answer.data(), leaf, 0);
#else
    __cpuid_count(leaf, 0, answer[0], answer[1], answer[2], answer[3]);
#endif
    return answer;
}

constexpr bool HasBits(unsigned long long word, unsigned long long bits) {
    return (word & bits) == bits;
}

// The answers are those of the processor; whether registers of 32 bytes outlive a change of threads is up to the
// system.
bool FindAvx2() {
    constexpr int kBasic = 1;
    constexpr int kExtended = 7;
    constexpr unsigned kPclmul = 1u << 1;
    constexpr unsigned kPopcnt = 1u << 23;
    constexpr unsigned kBmi = 1u << 3;
    constexpr unsigned kAvx2 = 1u << 5;
    return AskProcessor(0)[0] >= kExtended &&
           HasBits(static_cast<unsigned>(AskProcessor(kBasic)[2]), kPclmul | kPopcnt) &&
           HasBits(static_cast<unsigned>(AskProcessor(kExtended)[1]), kBmi | kAvx2) &&
           HasBits(::GetEnabledXStateFeatures(), XSTATE_MASK_AVX);
}

} // namespace

// The processor takes a while to answer, a virtual one a long while.
bool HasAvx2() {
    static const bool found = FindAvx2();
    return found;
}

#endif

} // namespace IO::Platform
