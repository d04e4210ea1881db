// SPDX-License-Identifier: BSL-1.0
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <qzl_io/detail/share.h>
#include <qzl_io/streams.h>

#include "probe.h"
#include "support/self_move.h"

namespace {

std::vector<int> released; // in the order of their release

struct eNoting {
    static constexpr int kNone = -1;
    static void Release(int thing) {
        released.push_back(thing);
        if (thing == kRefused)
            throw std::runtime_error("refused");
    }
    static constexpr int kRefused = 13;
};

using eOwner = IO::eShare<eNoting>;
using eReleased = std::vector<int>;

class Share : public testing::Test {
protected:
    Share() { released.clear(); }
};

// Grows by itself: takes the block out of the buffer, has another one made and returns the first.
class eTakingOut : public eMemory {
public:
    eTakingOut() : eMemory(0, 8) { CreateBuffer(8, 0); }
    eTakingOut(const eTakingOut&) = default;
    eTakingOut& operator=(const eTakingOut&) = default;
    ~eTakingOut() override { ReleaseBuffer(); }

    void Overflow() override {
        unsigned char* old = std::exchange(buffer, nullptr);
        const auto length = static_cast<unsigned long long>(Distance(old, eos));
        const auto position = static_cast<unsigned long long>(Distance(old, ptr));
        const unsigned long long size = bufferSize;
        CreateBuffer(2 * size, length);
        std::memcpy(buffer, old, size);
        MoveTo(Shifted(buffer, position));
        DeallocateBuffer(old);
    }

    static inline int alive = 0;

protected:
    unsigned char* AllocateBuffer(unsigned long long size) const override {
        ++alive;
        return new unsigned char[size];
    }
    void DeallocateBuffer(unsigned char*& block) const override {
        alive -= block ? 1 : 0;
        delete[] std::exchange(block, nullptr);
    }
};

} // namespace

static_assert(std::is_nothrow_move_constructible_v<eOwner> && std::is_nothrow_move_assignable_v<eOwner>);
static_assert(!std::is_convertible_v<int, eOwner> && std::is_convertible_v<eOwner, int>);

TEST_F(Share, ReleasesWhatItOwnsOnceAndNothingIsNeverReleased) {
    {
        const eOwner owner(7), nothing, another(eNoting::kNone), copyOfNothing(nothing);
        EXPECT_EQ(owner, 7);
        EXPECT_EQ(nothing, eNoting::kNone);
        EXPECT_EQ(copyOfNothing, eNoting::kNone);
        EXPECT_TRUE(owner.Sole() && nothing.Sole() && copyOfNothing.Sole());
    }
    EXPECT_EQ(released, eReleased{7});
}

TEST_F(Share, ReleasesWhenTheLastOfAChainOfCopiesGoes) {
    auto first = std::make_unique<eOwner>(7);
    auto second = std::make_unique<eOwner>(*first);
    auto third = std::make_unique<eOwner>(*second);
    EXPECT_FALSE(first->Sole() || second->Sole() || third->Sole());
    second.reset();
    first.reset();
    EXPECT_EQ(released, eReleased{});
    EXPECT_TRUE(third->Sole());
    auto fourth = std::make_unique<eOwner>(*third);
    third.reset();
    EXPECT_EQ(*fourth, 7);
    EXPECT_EQ(released, eReleased{});
    fourth.reset();
    EXPECT_EQ(released, eReleased{7});
}

TEST_F(Share, AMoveHandsTheOwnershipOn) {
    eOwner from(7);
    const eOwner copy(from);
    {
        const eOwner to(std::move(from));
        EXPECT_EQ(from, eNoting::kNone);
        EXPECT_TRUE(from.Sole());
        EXPECT_EQ(to, 7);
        EXPECT_FALSE(to.Sole());
    }
    EXPECT_EQ(released, eReleased{});
    EXPECT_TRUE(copy.Sole());
}

TEST_F(Share, AnAssignmentReleasesWhatNobodyElseOwns) {
    eOwner owner(1);
    const eOwner two(2);
    owner = two;
    EXPECT_EQ(released, eReleased{1});
    owner = eOwner(3);
    EXPECT_EQ(released, eReleased{1}) << "2 has an owner left";
    EXPECT_TRUE(two.Sole());
    owner = eOwner();
    EXPECT_EQ(released, (eReleased{1, 3}));
}

TEST_F(Share, AnAssignmentToItselfChangesNothing) {
    {
        eOwner owner(7);
        eOwner& same = owner;
        owner = same;
        EXPECT_EQ(owner, 7);
        EXPECT_TRUE(owner.Sole());
        MoveOntoItself(owner);
        EXPECT_EQ(owner, 7);
        eOwner copy(owner);
        copy = owner;
        MoveOntoItself(copy);
        EXPECT_EQ(released, eReleased{});
    }
    EXPECT_EQ(released, eReleased{7});
}

TEST_F(Share, ResetReleasesForTheLastOwnerOnly) {
    eOwner first(7), second(first);
    first.Reset();
    EXPECT_EQ(first, eNoting::kNone);
    EXPECT_EQ(released, eReleased{});
    second.Reset();
    second.Reset();
    EXPECT_EQ(released, eReleased{7});
}

TEST_F(Share, LeaveGivesTheThingToTheLastOwner) {
    eOwner first(7), second(first);
    EXPECT_FALSE(first.Leave());
    EXPECT_EQ(first, eNoting::kNone);
    EXPECT_TRUE(second.Leave());
    EXPECT_EQ(second, eNoting::kNone);
    EXPECT_EQ(released, eReleased{});
}

TEST_F(Share, WhatAReleaseThrowsPassesAndNothingIsOwnedThen) {
    eOwner owner(eNoting::kRefused);
    EXPECT_THROW(owner.Reset(), std::runtime_error);
    EXPECT_EQ(owner, eNoting::kNone);
    owner.Reset();
    owner = eOwner(7);
    EXPECT_EQ(released, eReleased{eNoting::kRefused});
}

TEST_F(Share, AClassWithHooksMayTakeTheBlockOutOfTheBuffer) {
    {
        eTakingOut stream;
        std::string expected;
        for (char c = 'a'; c <= 'z'; ++c) {
            stream << c;
            expected += c;
        }
        EXPECT_EQ(Content(stream), expected);
        EXPECT_EQ(eTakingOut::alive, 1);
    }
    EXPECT_EQ(eTakingOut::alive, 0);
}

TEST_F(Share, ATextStreamsCopiesDeleteWhatWasOpenedForThemOnce) {
    IO::eMemoryStream lent;
    {
        IO::eTextStream first(&lent), second(first);
        second.WriteStr("a");
        first = IO::eTextStream(&lent);
        first.WriteStr("b");
    }
    EXPECT_EQ(Content(lent), "ab");
}
