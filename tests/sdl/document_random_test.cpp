// SPDX-License-Identifier: BSL-1.0
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

#include <qzl_io/sdl/document.h>

#include "sdl/document_edits.h"
#include "sdl/random_source.h"
#include "support/rounds.h"

namespace {

// Edits a part of the document and describes the edit if it changes anything else.
std::string WrongEdit(eSDLDocument& document, std::mt19937& random) {
    const std::string text = document.Text();
    const auto index = random() % 64;
    const auto edit = static_cast<eEdit>(random() % 6);
    const eSDLItem item = ItemOf(random() % 256, random() % 256);
    EXPECT_TRUE(item.IsGood());
    const std::string wrong = EditAndCompare(document, index, edit, item);
    if (wrong.empty())
        return {};
    return wrong + ": " + testing::PrintToString(text) + " edit " + std::to_string(static_cast<int>(edit)) +
           " of part " + std::to_string(index) + " with " + testing::PrintToString(item.Text()) + " gives " +
           testing::PrintToString(document.Text());
}

TEST(DocumentRandom, AnEditGivesWhatIsMeantAndAllElseStays) {
    std::mt19937 random(3);
    for (eRounds rounds(20000, 500000); rounds.Next();) {
        eSDLDocument document(RandomSource(random, 16));
        for (auto edits = random() % 12; edits > 0; --edits)
            ASSERT_EQ(WrongEdit(document, random), "");
    }
}

TEST(DocumentRandom, AnEditOfWhatFuzzingHasFoundGivesWhatIsMeantAndAllElseStays) {
    const std::filesystem::path seeds = QZL_SEEDS_DIR;
    if (!std::filesystem::exists(seeds))
        GTEST_SKIP() << "the tree has no seeds";
    const int edits = LongTests() ? 1000 : 3;
    std::mt19937 random(4);
    for (const auto& entry : std::filesystem::recursive_directory_iterator(seeds)) {
        if (!entry.is_regular_file())
            continue;
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string text(std::istreambuf_iterator<char>(file), {});
        for (int edit = 0; edit < edits; ++edit) {
            eSDLDocument document(text);
            ASSERT_EQ(WrongEdit(document, random), "") << entry.path();
        }
    }
}

} // namespace
