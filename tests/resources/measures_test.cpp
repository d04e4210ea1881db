// SPDX-License-Identifier: BSL-1.0
#include <cstddef>
#include <string>

#include <gtest/gtest.h>

#include "counted_memory.h"
#include "painted_stack.h"

// The measures of the other tests measure.

namespace {

[[gnu::noinline]] void UseStack(std::size_t depth) {
    volatile unsigned char bytes[1000];
    bytes[0] = 0;
    if (depth > 0)
        UseStack(depth - 1);
    bytes[1] = bytes[0];
}

} // namespace

TEST(Measures, MemoryIsWhatIsAllocatedUntilItIsReleased) {
    const eCountedMemory memory;
    EXPECT_EQ(memory.Peak(), 0u);
    {
        const std::string text(100'000, 'x');
        EXPECT_GE(memory.Left(), 100'000u);
    }
    EXPECT_GE(memory.Peak(), 100'000u);
    EXPECT_LE(memory.Peak(), 110'000u);
    EXPECT_EQ(memory.Left(), 0u);
}

TEST(Measures, StackIsWhatCallsWithinCallsTake) {
    const std::size_t ten = StackOf([] { UseStack(9); });
    EXPECT_GE(ten, 10'000u);
    EXPECT_LE(ten, 20'000u);
    EXPECT_GE(StackOf([] { UseStack(99); }), 100'000u);
}
