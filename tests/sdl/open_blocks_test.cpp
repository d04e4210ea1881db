// SPDX-License-Identifier: BSL-1.0
#include "sdl/open_blocks.h"

#include <cstddef>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

TEST(OffsetStack, IsAStackOfAscendingNumbers) {
    std::mt19937_64 random(3);
    for (int round = 0; round < 50; ++round) {
        xSDL::eOffsetStack stack;
        std::vector<std::size_t> model;
        for (int step = 0; step < 300; ++step) {
            if (random() % 3 > 0) {
                const std::size_t top = model.empty() ? 0 : model.back();
                model.push_back(top + (random() >> (12 + random() % 52)) % (std::size_t{1} << 55));
                stack.Push(model.back());
            } else if (!model.empty()) {
                model.pop_back();
                stack.Pop();
            }
            ASSERT_EQ(stack.Size(), model.size());
            if (model.empty())
                continue;
            const std::size_t behind = random() % model.size();
            ASSERT_EQ(stack.FromTop(behind), model[model.size() - 1 - behind]);
        }
    }
}

TEST(OffsetStack, IsEmptyAgainAfterTheLastIsRemoved) {
    xSDL::eOffsetStack stack;
    for (const std::size_t offset : {std::size_t{0}, std::size_t{127}, std::size_t{128}, ~std::size_t{0} >> 1}) {
        stack.Push(offset);
        EXPECT_EQ(stack.FromTop(0), offset);
        stack.Pop();
        EXPECT_EQ(stack.Size(), 0u);
    }
}

TEST(OpenBlocks, AreFoundBehindCharactersThatBeginNoToken) {
    const std::string text = std::string("{a \1 $ {b ") + std::string(xSDL::kTextEnd, '\0');
    const std::size_t size = text.size() - xSDL::kTextEnd;
    xSDL::eOpenBlocks blocks;
    const xSDL::eOpenBlocks::eOpen open = blocks.Find(text.data(), 0, size, size);
    ASSERT_EQ(blocks.Count(open), 2u);
    EXPECT_EQ(blocks.At(open, 0), text.rfind('{'));
    EXPECT_EQ(blocks.At(open, 1), 0u);
}

} // namespace
