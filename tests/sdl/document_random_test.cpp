// SPDX-License-Identifier: BSL-1.0
#include <gtest/gtest.h>

#include <random>
#include <string>

#include <qzl_io/sdl/document.h>

#include "sdl/document_edits.h"
#include "sdl/random_source.h"
#include "support/rounds.h"

namespace {

TEST(DocumentRandom, AnEditGivesWhatIsMeantAndAllElseStays) {
    std::mt19937 random(3);
    for (eRounds rounds(20000, 500000); rounds.Next();) {
        eSDLDocument document(RandomSource(random, 16));
        for (auto edits = random() % 12; edits > 0; --edits) {
            const std::string text = document.Text();
            const auto index = random() % 64;
            const auto edit = static_cast<eEdit>(random() % 6);
            const eSDLItem item = ItemOf(random() % 256, random() % 256);
            ASSERT_TRUE(item.IsGood());
            ASSERT_EQ(EditAndCompare(document, index, edit, item), "")
                << testing::PrintToString(text) << " edit " << static_cast<int>(edit) << " of part " << index
                << " with " << testing::PrintToString(item.Text()) << " gives "
                << testing::PrintToString(document.Text());
        }
    }
}

} // namespace
