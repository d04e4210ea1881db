// SPDX-License-Identifier: BSL-1.0
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>

#include <qzl_io/streams.h>

#include "probe.h"
#include "support/reports.h"
#include "support/self_move.h"
#include "support/temp_folder.h"

using IO::eSeekDir;
namespace Mode = IO::StreamMode;

namespace {

constexpr int kNew = Mode::Read | Mode::Write | Mode::Create;

// Counts the blocks that have not been released.
class eCounted : public eMemory {
public:
    static inline int alive = 0;
    using eMemory::eMemory;
    eCounted(const eCounted&) = default;
    eCounted& operator=(const eCounted&) = default;
    ~eCounted() override { ReleaseBuffer(); }

    void Begin() { CreateBuffer(16, 0); }

protected:
    unsigned char* AllocateBuffer(unsigned long long size) const override {
        ++alive;
        return eMemory::AllocateBuffer(size);
    }
    void DeallocateBuffer(unsigned char*& block) const override {
        --alive;
        eMemory::DeallocateBuffer(block);
    }
};

// For a stream over "abcdef", positioned at its third byte.
template <class Stream>
void ExpectKeptByAMoveOntoItself(Stream& stream) {
    const unsigned char* const bytes = stream.Buffer();
    const std::string state = stream.Dump();
    const unsigned short flags = stream.Flags();
    MoveOntoItself(stream);
    EXPECT_TRUE(stream.IsOpen());
    EXPECT_EQ(stream.Buffer(), bytes);
    EXPECT_EQ(stream.Dump(), state);
    EXPECT_EQ(stream.Flags(), flags);
    EXPECT_EQ(Content(stream), "abcdef");
    EXPECT_EQ(stream.GetChar(), 'c');
}

} // namespace

TEST(StreamCopies, OfAMemoryStreamHaveItsStateAndItsBytes) {
    eMemory original(16, 4);
    original.Write("abcdef", 6);
    original.Seek(2, eSeekDir::Begin);
    eMemory copy(original);
    EXPECT_EQ(copy.Buffer(), original.Buffer());
    EXPECT_EQ(copy.Dump(), original.Dump());
    EXPECT_EQ(copy.Flags(), original.Flags());
    original << 'X';
    EXPECT_EQ(Content(copy), "abXdef");
    copy.ResizeBuffer(100, false);
    EXPECT_NE(copy.Buffer(), original.Buffer());
    copy << 'Y';
    EXPECT_EQ(Content(copy), "abYdef");
    EXPECT_EQ(Content(original), "abXdef");
}

TEST(StreamCopies, OfAMemoryStreamGrowByItsStep) {
    const eMemory original(16, 4);
    eMemory copy(original), assigned, source(16, 4), moved(std::move(source)), moveAssigned;
    assigned = original;
    moveAssigned = eMemory(16, 4);
    for (eMemory* stream : {&copy, &assigned, &moved, &moveAssigned}) {
        stream->Overflow();
        EXPECT_EQ(stream->BufferSize(), 20u);
    }
}

TEST(StreamCopies, StayValidWhileTheOtherGrowsOrDies) {
    auto original = std::make_unique<eMemory>(4);
    original->Write("abc", 3);
    eMemory copy(*original);
    eMemory third;
    third = copy;
    original->Write(std::string(1000, 'x').data(), 1000);
    EXPECT_EQ(Content(copy), "abc");
    original.reset();
    EXPECT_EQ(Content(copy), "abc");
    copy = eMemory(8);
    EXPECT_EQ(Content(third), "abc");
    third << 'd';
    EXPECT_EQ(Content(third), "abcd");
}

TEST(StreamCopies, ReleaseWhatIsSharedExactlyOnce) {
    {
        eCounted first(0, 0);
        first.Begin();
        EXPECT_EQ(eCounted::alive, 1);
        eCounted second(first), third(second), other(0, 0);
        other.Begin();
        EXPECT_EQ(eCounted::alive, 2);
        other = third;
        EXPECT_EQ(eCounted::alive, 1) << "assigning over a stream releases what it held";
        other = *&other;
        first.Write(std::string(100, 'x').data(), 100);
        EXPECT_EQ(eCounted::alive, 2);
        second = first;
        third = first;
        other = first;
        EXPECT_EQ(eCounted::alive, 1);
    }
    EXPECT_EQ(eCounted::alive, 0);
}

TEST(StreamCopies, AMovedFromMemoryStreamIsNotOpen) {
    eMemory original;
    original.Write("abc", 3);
    const unsigned char* const bytes = original.Buffer();
    eMemory moved(std::move(original));
    EXPECT_EQ(moved.Buffer(), bytes);
    EXPECT_EQ(Content(moved), "abc");
    EXPECT_FALSE(original.IsOpen());
    EXPECT_EQ(original.Buffer(), nullptr);
    original << 1;
    EXPECT_EQ(original.GetInt32(), 0);
    original = std::move(moved);
    EXPECT_EQ(Content(original), "abc");
    EXPECT_FALSE(moved.IsOpen());
}

template <class Stream>
class MemoryMoves : public testing::Test {};
using eBothKinds = testing::Types<eMemory, eMemoryT>;
TYPED_TEST_SUITE(MemoryMoves, eBothKinds);

TYPED_TEST(MemoryMoves, OfAMemoryStreamOntoItselfChangeNothing) {
    TypeParam stream(16, 4);
    stream.Write("abcdef", 6);
    stream.Seek(2, eSeekDir::Begin);
    ExpectKeptByAMoveOntoItself(stream);
    stream.Overflow();
    EXPECT_EQ(stream.BufferSize(), 20u);
}

TEST(StreamCopies, ABufferStreamMovedOntoItselfKeepsWhatItViews) {
    const std::string text = "abcdef";
    eView stream(text);
    stream.Skip(2);
    ExpectKeptByAMoveOntoItself(stream);
}

TEST(StreamCopies, OfABufferStreamAddressTheSameBytes) {
    const std::string text = "abc";
    eView original(text), copy(original), assigned;
    assigned = copy;
    EXPECT_EQ(assigned.Buffer(), original.Buffer());
    EXPECT_EQ(assigned.GetChar(), 'a');
    eView moved(std::move(original));
    EXPECT_FALSE(original.IsOpen());
    EXPECT_EQ(moved.GetChar(), 'a');
}

TEST(StreamCopies, OfAFileStreamShareHandleAndBuffer) {
    const eTempFolder folder;
    eFile original(folder.Name("file"), kNew);
    original.Write("0123456789", 10);
    eFile copy(original);
    EXPECT_EQ(copy.Buffer(), original.Buffer());
    EXPECT_EQ(copy.Handle(), original.Handle());
    EXPECT_EQ(copy.Dump(), original.Dump());
    original.Close();
    EXPECT_EQ(original.Handle(), -1);
    EXPECT_EQ(folder.Read("file"), "0123456789");
    copy << 'x';
    copy.Close();
    EXPECT_EQ(folder.Read("file"), "0123456789x");
}

TEST(StreamCopies, OfAFileStreamReadIndependently) {
    const eTempFolder folder;
    std::string text;
    for (int i = 0; i < 40000; ++i)
        text += std::to_string(i) + ";";
    eFile original(folder.Write("file", text), Mode::Read);
    EXPECT_EQ(original.GetLine(';'), "0");
    eFile copy(original);
    for (int i = 1; i < 40000; ++i)
        ASSERT_EQ(original.GetLine(';'), std::to_string(i));
    for (int i = 1; i < 40000; ++i)
        ASSERT_EQ(copy.GetLine(';'), std::to_string(i));
    EXPECT_NE(copy.Buffer(), original.Buffer());
}

TEST(StreamCopies, OfAFileStreamKeepTheirBytesWhenTheOtherFillsAnew) {
    const eTempFolder folder;
    eFile original(folder.Write("file", "0123456789"), Mode::Read);
    eFile copy(original);
    folder.Write("file", "abcdefghij");
    original.Fresh();
    EXPECT_EQ(original.GetChar(), 'a');
    EXPECT_EQ(copy.GetChar(), '0');
}

TEST(StreamCopies, OfAFileStreamThatOnlyWritesKeepWhatTheyPassOver) {
    const eTempFolder folder;
    std::string expected = std::string(50000, '.') + std::string(50000, ':');
    {
        eFile first(folder.Write("file", expected), Mode::Write);
        eFile second(first);
        first.Seek(50000, eSeekDir::Begin);
        first << 'A';
        second.Seek(5, eSeekDir::Begin);
        second << 'B';
    }
    expected[50000] = 'A';
    expected[5] = 'B';
    EXPECT_TRUE(folder.Read("file") == expected);
}

TEST(StreamCopies, OfAFileStreamWriteEachToItsPlace) {
    const eTempFolder folder;
    const std::string text(200000, '.');
    {
        eFile first(folder.Write("file", text), Mode::Read | Mode::Write);
        eFile second(first);
        second.Seek(100000, eSeekDir::Begin);
        first.Write("first", 5);
        second.Write("second", 6);
        first.Seek(50000, eSeekDir::Begin);
        first.Write("third", 5);
    }
    std::string expected = text;
    expected.replace(0, 5, "first").replace(100000, 6, "second").replace(50000, 5, "third");
    EXPECT_TRUE(folder.Read("file") == expected);
}

TEST(StreamCopies, AssigningOverAFileStreamClosesWhatItHeld) {
    const eTempFolder folder;
    eFile first(folder.Name("first"), kNew), second(folder.Name("second"), kNew);
    first << 'a';
    second << 'b';
    first = second;
    EXPECT_EQ(folder.Read("first"), "a");
    EXPECT_EQ(first.Handle(), second.Handle());
    EXPECT_EQ(first.Dump(), second.Dump());
    eFile third(folder.Name("third"), kNew);
    third << 'c';
    third = std::move(second);
    EXPECT_EQ(folder.Read("third"), "c");
    EXPECT_EQ(second.Handle(), -1);
    EXPECT_EQ(second.Buffer(), nullptr);
    EXPECT_FALSE(second.IsOpen());
    third = *&third;
    third << 'd';
    first = eFile();
    EXPECT_FALSE(first.IsOpen());
    third.Close();
    EXPECT_EQ(folder.Read("second"), "bd");
}

TEST(StreamCopies, AMovedFileStreamGoesOnWhereItWas) {
    const eTempFolder folder;
    eFileW original(folder.NameW(L"file"), kNew);
    original << 'a';
    eFileW moved(std::move(original));
    EXPECT_EQ(original.Handle(), -1);
    EXPECT_FALSE(original.IsOpen());
    moved << 'b';
    moved.Close();
    EXPECT_EQ(folder.Read("file"), "ab");
    original.Open(folder.NameW(L"file"), Mode::Read);
    EXPECT_EQ(original.GetChar(), 'a');
}

TEST(StreamCopies, AFileStreamMovedOntoItselfStaysOpen) {
    const eTempFolder folder;
    eFile narrow(folder.Write("narrow", "abcdef"), Mode::Read | Mode::Write);
    folder.Write("wide", "abcdef");
    eFileW wide(folder.NameW(L"wide"), Mode::Read | Mode::Write);
    const auto check = [](auto& stream) {
        const int handle = stream.Handle();
        stream.Seek(2, eSeekDir::Begin);
        ExpectKeptByAMoveOntoItself(stream);
        EXPECT_EQ(stream.Handle(), handle);
        stream << 'X';
        stream.Close();
    };
    check(narrow);
    check(wide);
    EXPECT_EQ(folder.Read("narrow"), "abcXef");
    EXPECT_EQ(folder.Read("wide"), "abcXef");
}
