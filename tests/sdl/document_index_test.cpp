// SPDX-License-Identifier: BSL-1.0
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "document/block_index.h"
#include "document/child_index.h"
#include "support/rounds.h"

namespace {

using xSDL::eBlockIndex;

struct eModelBlock {
    std::size_t begin = 0;
    std::size_t end = 0;
};

std::vector<eModelBlock> ModelOf(const std::string& text) {
    std::vector<eModelBlock> blocks;
    std::vector<std::size_t> open;
    for (std::size_t at = 0; at < text.size(); ++at)
        if (text[at] == '{') {
            open.push_back(blocks.size());
            blocks.push_back({at, text.size() + 1});
        } else if (text[at] == '}' && !open.empty()) {
            blocks[open.back()].end = at + 1;
            open.pop_back();
        }
    return blocks;
}

std::size_t Around(const std::vector<eModelBlock>& blocks, std::size_t offset) {
    std::size_t found = eBlockIndex::kNone;
    for (std::size_t index = 0; index < blocks.size() && blocks[index].begin < offset; ++index)
        if (blocks[index].end > offset)
            found = index;
    return found;
}

void ExpectIndex(const std::string& text, std::mt19937& random, bool wide) {
    const std::vector<eModelBlock> model = ModelOf(text);
    eBlockIndex index(text.size(), wide);
    std::size_t depth = 0;
    for (std::size_t at = 0; at < text.size(); ++at)
        if (text[at] == '{') {
            index.Open(at);
            ++depth;
        } else if (text[at] == '}' && depth > 0) {
            index.Close(at + 1);
            --depth;
        }
    index.Finish();
    ASSERT_EQ(index.Size(), model.size());
    for (std::size_t block = 0; block < model.size(); ++block) {
        ASSERT_EQ(index.Begin(block), model[block].begin);
        ASSERT_EQ(index.End(block), model[block].end);
        ASSERT_EQ(index.IndexAt(model[block].begin), block);
        ASSERT_EQ(index.IsClosed(block), model[block].end <= text.size());
    }
    for (int times = 0; times < 20; ++times) {
        const std::size_t offset = random() % (text.size() + 1);
        ASSERT_EQ(index.Around(offset), Around(model, offset)) << offset << " of " << text.size();
    }
}

TEST(DocumentIndex, BlocksAreFoundAsInAPlainListInEitherWidth) {
    std::mt19937 random(4);
    unsigned round = 0;
    for (eRounds rounds(300, 5000); rounds.Next(); ++round) {
        std::string text;
        const auto openings = random() % 4 + 1;
        for (auto left = random() % (round % 3 == 0 ? 12000 : 300); left > 0; --left)
            text += random() % 5 == 0 ? ' ' : random() % 5 < openings ? '{' : '}';
        ExpectIndex(text, random, round % 2 == 0);
        if (HasFatalFailure())
            return;
    }
}

TEST(DocumentIndex, BlocksOfWholeGroupsAreFound) {
    std::mt19937 random(5);
    for (const std::size_t count : {1U, 63U, 64U, 65U, 128U, 4095U, 4096U, 4097U, 8192U}) {
        ExpectIndex(std::string(count, '{'), random, false);
        ExpectIndex(std::string(count, '{') + std::string(count, '}'), random, false);
        std::string pairs;
        for (std::size_t pair = 0; pair < count; ++pair)
            pairs += "{}";
        ExpectIndex(pairs, random, true);
        ExpectIndex("{" + pairs, random, false);
    }
}

TEST(ChildIndex, KeepsEvenlySpacedPlacesWhateverRoomThereIs) {
    using xSDL::eChildIndex;
    for (std::size_t room = 8; room < 40; ++room) {
        eChildIndex index(room * 2 * sizeof(eChildIndex::ePlace));
        eChildIndex::ePlaces& places = index.Of({0, 0}, xSDL::eCounted::Blocks, "");
        std::size_t after = 0;
        for (std::size_t child = 0; child < 1000; ++child)
            after = index.Pass(&places, {{0, 10 * child}, child}, after);
        EXPECT_LE(places.list.size(), room);
        for (std::size_t at = 0; at < places.list.size(); ++at) {
            ASSERT_EQ(places.list[at].before, at * places.every) << room;
            ASSERT_EQ(places.list[at].child.offset, 10 * places.list[at].before) << room;
        }
        if (!places.list.empty()) {
            EXPECT_EQ(places.list.back().before + after, 1000u) << room;
        }
    }
}

} // namespace
