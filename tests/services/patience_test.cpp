// SPDX-License-Identifier: BSL-1.0
#include "platform/pure/patience.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <vector>

#include <gtest/gtest.h>

namespace {

using IO::Platform::AnswerTo;
using IO::Platform::eAnswer;
using IO::System::ePatience;
using std::chrono::milliseconds;

TEST(RefusalsOfWindows, MeanWhatTheTableSays) {
    struct eRow {
        unsigned long error;
        bool forGood;
        eAnswer answer;
    };
    for (const eRow& row : {
             eRow{5, false, eAnswer::Busy},   // access denied: until a deletion is complete
             eRow{5, true, eAnswer::Refused}, // access denied: a read-only file
             eRow{32, false, eAnswer::Busy},  // sharing violation
             eRow{32, true, eAnswer::Busy}, eRow{145, false, eAnswer::Full},     // not empty
             eRow{303, false, eAnswer::Busy},                                    // deletion pending
             eRow{0, false, eAnswer::Refused}, eRow{2, false, eAnswer::Refused}, // file not found
             eRow{3, false, eAnswer::Refused},                                   // path not found
             eRow{19, false, eAnswer::Refused},                                  // write-protected
             eRow{21, false, eAnswer::Refused},                                  // no medium
             eRow{80, false, eAnswer::Refused},                                  // file exists
             eRow{112, false, eAnswer::Refused},                                 // disk full
             eRow{183, false, eAnswer::Refused},                                 // already exists
             eRow{267, false, eAnswer::Refused},                                 // no folder
             eRow{1314, false, eAnswer::Refused},                                // privilege not held
         })
        EXPECT_EQ(row.answer, AnswerTo(row.error, row.forGood)) << row.error;
}

class Patience : public testing::Test {
protected:
    // The result of Get for these answers, of which the last repeats.
    bool Get(const std::vector<eAnswer>& answers) {
        asked = 0;
        return patience.Get([&] { return answers[std::min(asked++, answers.size() - 1)]; });
    }

    std::size_t asked = 0;
    milliseconds waited{0};
    ePatience patience{[this](milliseconds pause) { waited += pause; }};
};

TEST_F(Patience, AsksOnceForWhatIsDoneOrRefusedForGood) {
    EXPECT_TRUE(Get({eAnswer::Done}));
    EXPECT_EQ(1u, asked);
    EXPECT_FALSE(Get({eAnswer::Refused}));
    EXPECT_EQ(1u, asked);
    EXPECT_FALSE(Get({eAnswer::Full}));
    EXPECT_EQ(1u, asked);
    EXPECT_EQ(milliseconds(0), waited);
}

TEST_F(Patience, AsksAgainForWhatIsBusyUntilItIsNot) {
    EXPECT_TRUE(Get({eAnswer::Busy, eAnswer::Busy, eAnswer::Done}));
    EXPECT_EQ(3u, asked);
    EXPECT_FALSE(Get({eAnswer::Busy, eAnswer::Refused}));
    EXPECT_EQ(2u, asked);
    EXPECT_GT(waited, milliseconds(0));
}

TEST_F(Patience, WaitsForOneEntryLessThanAQuarterOfASecond) {
    EXPECT_FALSE(Get({eAnswer::Busy}));
    EXPECT_GE(asked, 4u);
    EXPECT_GE(waited, milliseconds(100));
    // A pause may be longer by one tick of the system's clock.
    EXPECT_LT(waited + (asked - 1) * milliseconds(16), milliseconds(250));
}

TEST_F(Patience, WaitsInVainForAboutASecondAndThenNoMore) {
    for (int entry = 0; entry < 1000; ++entry)
        EXPECT_FALSE(Get({eAnswer::Busy}));
    EXPECT_EQ(1u, asked);
    EXPECT_GE(waited, milliseconds(1000));
    EXPECT_LT(waited, milliseconds(1250));
}

TEST_F(Patience, WaitingThatHelpsIsNotCounted) {
    for (int entry = 0; entry < 1000; ++entry)
        EXPECT_TRUE(Get({eAnswer::Busy, eAnswer::Busy, eAnswer::Busy, eAnswer::Done})) << entry;
}

TEST_F(Patience, AFolderThatIsFullIsWaitedForOnlyWhenItHasBeenEmptied) {
    for (const bool emptied : {false, true}) {
        std::size_t left = 3;
        EXPECT_EQ(emptied, patience.GetRemoved(emptied, [&] { return left-- > 1 ? eAnswer::Full : eAnswer::Done; }));
        EXPECT_EQ(emptied, waited > milliseconds(0));
    }
}

TEST(PatienceOfItsOwn, ReallyWaits) {
    ePatience patience;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(patience.Get([] { return eAnswer::Busy; }));
    const auto waited = std::chrono::steady_clock::now() - start;
    EXPECT_GE(waited, milliseconds(140));
}

TEST(PatienceOfItsOwn, OfASaveEndsWithTheSecondInVain) {
    ePatience patience(ePatience::kPausesOfSave);
    int asked = 0;
    for (int refused = 0; refused < 3; ++refused) {
        asked = 0;
        EXPECT_FALSE(patience.Get([&asked] { return ++asked, eAnswer::Busy; }));
    }
    EXPECT_EQ(1, asked);
}

} // namespace
