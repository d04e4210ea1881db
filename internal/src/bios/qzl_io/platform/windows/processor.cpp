// SPDX-License-Identifier: BSL-1.0
#include "platform/processor.h"

#include <array>

#include <windows.h>

#if defined(_MSC_VER) && !defined(__clang__)
#include <intrin.h>
#else
#include <cpuid.h>
#endif

#include "platform/pure/processor_answers.h"

namespace IO::Platform {

#if defined(QZL_IO_WITHOUT_AVX2)

bool HasAvx2() {
    return false;
}

#else

namespace {

// EAX, EBX, ECX and EDX with an answer of the processor.
using eRegisters = std::array<int, 4>;

eRegisters AskProcessor(int leaf) {
    eRegisters answer{};
#if defined(_MSC_VER) && !defined(__clang__)
    __cpuidex(answer.data(), leaf, 0);
#else
    __cpuid_count(leaf, 0, answer[0], answer[1], answer[2], answer[3]);
#endif
    return answer;
}

eProcessorAnswers Answers() {
    eProcessorAnswers answers;
    const int last = AskProcessor(0)[0];
    answers.leaf1c = static_cast<unsigned>(AskProcessor(1)[2]);
    if (last >= 7)
        answers.leaf7b = static_cast<unsigned>(AskProcessor(7)[1]);
    answers.statesKept = ::GetEnabledXStateFeatures();
    return answers;
}

} // namespace

// The processor takes a while to answer, a virtual one a long while.
bool HasAvx2() {
    static const bool told = TellAvx2(Answers());
    return told;
}

#endif

} // namespace IO::Platform
