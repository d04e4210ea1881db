// SPDX-License-Identifier: BSL-1.0
#include "platform/pure/copy_steps.h"

#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace {

using IO::System::CopyInSteps;
using IO::System::eCopyEnd;
using IO::System::eCopyWay;

// A way to copy that returns these results one after the other, then fails the test.
eCopyWay Answers(std::vector<long long> results) {
    return [results = std::move(results), at = std::size_t{0}](std::size_t) mutable {
        EXPECT_LT(at, results.size());
        return at < results.size() ? results[at++] : -1;
    };
}

eCopyWay Never() {
    return Answers({});
}

struct eRow {
    std::string promise;
    std::vector<long long> first, second, third;
    unsigned long long expected;
    eCopyEnd end;
};

const eRow rows[] = {
    {"the first way brings all", {10}, {}, {}, 10, eCopyEnd::Complete},
    {"in several steps", {4, 4, 2}, {}, {}, 10, eCopyEnd::Complete},
    {"the source was cut meanwhile", {4, 0}, {}, {}, 10, eCopyEnd::Complete},
    {"the first way does not work here", {-1}, {10}, {}, 10, eCopyEnd::Complete},
    {"it gives up in the middle", {4, -1}, {6}, {}, 10, eCopyEnd::Complete},
    {"both give up", {-1}, {-1}, {5, 5}, 10, eCopyEnd::Complete},
    {"the first ways see nothing of a file that has something", {0}, {0}, {3, 0}, 0, eCopyEnd::Complete},
    {"how many there are is not known", {-1}, {-1}, {3, 3, 0}, 0, eCopyEnd::Complete},
    {"a file with nothing in it", {0}, {0}, {0}, 0, eCopyEnd::Complete},
    {"the first ways refuse, and there is nothing", {-1}, {-1}, {0}, 0, eCopyEnd::Complete},
    {"no way works", {-1}, {-1}, {-1}, 10, eCopyEnd::Failed},
    {"the last one fails in the middle", {-1}, {4, -1}, {2, -1}, 10, eCopyEnd::Failed},
    {"the end comes just when a way gives up", {4, -1}, {0}, {}, 10, eCopyEnd::Complete},
};

TEST(CopyInSteps, GoesOnWithTheNextWayWhereOneGivesUp) {
    for (const eRow& row : rows) {
        SCOPED_TRACE(row.promise);
        EXPECT_EQ(row.end, CopyInSteps({Answers(row.first), Answers(row.second), Answers(row.third)}, 4, row.expected,
                                       [](auto) { return false; }));
    }
}

TEST(CopyInSteps, AsksWhetherToStopBeforeTheFirstStep) {
    EXPECT_EQ(eCopyEnd::Stopped, CopyInSteps({Never()}, 4, 10, [](auto) { return true; }));
}

TEST(CopyInSteps, AsksAgainBetweenAnyTwoSteps) {
    int asked = 0;
    EXPECT_EQ(eCopyEnd::Stopped,
              CopyInSteps({Answers({4, -1}), Answers({4}), Never()}, 4, 100, [&](auto) { return ++asked == 4; }));
    EXPECT_EQ(4, asked);
}

TEST(CopyInSteps, NeverAsksForMoreThanAStepNorForMoreThanIsExpected) {
    std::vector<std::size_t> asked;
    const eCopyWay way = [&](std::size_t limit) {
        asked.push_back(limit);
        return static_cast<long long>(limit);
    };
    EXPECT_EQ(eCopyEnd::Complete, CopyInSteps({way}, 64, 150, [](auto) { return false; }));
    EXPECT_EQ((std::vector<std::size_t>{64, 64, 22}), asked);
}

} // namespace
