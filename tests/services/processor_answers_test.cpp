// SPDX-License-Identifier: BSL-1.0
#include "platform/pure/processor_answers.h"

#include <gtest/gtest.h>

namespace {

using IO::Platform::eProcessorAnswers;
using IO::Platform::TellAvx2;

// Of a processor of 2013 under a system that keeps all its registers.
constexpr eProcessorAnswers kHaswell{0x7FFAFBFF, 0x000027AB, 0x7};

} // namespace

TEST(ProcessorAnswers, EveryAbilityIsNeeded) {
    EXPECT_TRUE(TellAvx2(kHaswell));
    EXPECT_FALSE(TellAvx2({}));
    for (const unsigned bit : {1u, 23u}) {
        eProcessorAnswers answers = kHaswell;
        answers.leaf1c &= ~(1u << bit);
        EXPECT_FALSE(TellAvx2(answers)) << bit;
    }
    for (const unsigned bit : {3u, 5u}) {
        eProcessorAnswers answers = kHaswell;
        answers.leaf7b &= ~(1u << bit);
        EXPECT_FALSE(TellAvx2(answers)) << bit;
    }
}

TEST(ProcessorAnswers, TheSystemMustKeepTheWideRegisters) {
    for (const unsigned long long kept : {0u, 1u, 3u, 5u}) {
        eProcessorAnswers answers = kHaswell;
        answers.statesKept = kept;
        EXPECT_FALSE(TellAvx2(answers)) << kept;
    }
}

TEST(ProcessorAnswers, OtherAbilitiesAreNotNeeded) {
    EXPECT_TRUE(TellAvx2({1u << 1 | 1u << 23, 1u << 3 | 1u << 5, 1u << 1 | 1u << 2}));
}
