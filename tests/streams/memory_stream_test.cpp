// SPDX-License-Identifier: BSL-1.0
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <functional>
#include <limits>
#include <new>
#include <set>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <qzl_base/error.h>
#include <qzl_io/streams.h>

#include "probe.h"
#include "support/reports.h"

using IO::eSeekDir;
namespace Mode = IO::StreamMode;
using namespace std::string_literals;

namespace {

constexpr char kUnit[] = "internal/src/bios/qzl_io/stream_memory";

// A memory stream with an application's own allocator, which fails beyond a limit and returns bytes that are not
// cleared.
class eLimited : public eMemory {
public:
    explicit eLimited(unsigned long long limit) : eMemory(16), most(limit) {}
    ~eLimited() override { ReleaseBuffer(); }

    mutable int blocks = 0;

protected:
    unsigned char* AllocateBuffer(unsigned long long size) const override {
        if (size > most)
            return nullptr;
        ++blocks;
        unsigned char* const block = eMemory::AllocateBuffer(size);
        std::memset(block, 0xAA, size);
        return block;
    }

private:
    unsigned long long most;
};

// For a stream of 16 bytes that doubles.
void ExpectStepsOfABulkWrite(IO::eMemoryStream& stream) {
    const auto room = [&] { return eInside::DumpOf(stream); };
    stream << 1;
    stream.Write(std::string(3000, 'x').data(), 3000);
    EXPECT_EQ(room(), "MemoryStream(off:0, ptr:3004, end:4096, eos:3004, buff:4096)");
    const eReports reports;
    stream.Seek(1000000, eSeekDir::Begin);
    EXPECT_EQ(room(), "MemoryStream(off:0, ptr:1000000, end:8192, eos:3004, buff:8192)");
    stream.Write("lost", 4);
    EXPECT_EQ(room(), "MemoryStream(off:0, ptr:1000000, end:16384, eos:3004, buff:16384)")
        << "a position far beyond the buffer asks for one step";
}

} // namespace

template <class Stream>
class MemoryStreams : public testing::Test {};
using eBothKinds = testing::Types<eMemory, eMemoryT>;
TYPED_TEST_SUITE(MemoryStreams, eBothKinds);

TYPED_TEST(MemoryStreams, StartWith256BytesOpenForWritingWithErrors) {
    TypeParam stream;
    EXPECT_EQ(stream.BufferSize(), 256u);
    EXPECT_EQ(stream.Size(), 0u);
    EXPECT_TRUE(stream.IsOpen());
    EXPECT_EQ(stream.Flags(), 0x0202);
    EXPECT_NE(stream.Buffer(), nullptr);
    EXPECT_EQ(std::count(stream.Buffer(), stream.Buffer() + 256, 0), 256);
}

TYPED_TEST(MemoryStreams, AreMembersThatNeedNoInitializer) {
    struct eDocument {
        int number;
        TypeParam body;
    };
    eDocument document = {};
    document.body << 1;
    EXPECT_EQ(document.body.Size(), 4u);
    const TypeParam empty = {};
    EXPECT_EQ(empty.BufferSize(), 256u);
}

TYPED_TEST(MemoryStreams, DoubleWhenAByteEndsAtTheEndOfTheBuffer) {
    TypeParam stream;
    for (int i = 0; i < 255; ++i)
        stream << 'x';
    EXPECT_EQ(stream.BufferSize(), 256u);
    stream << 'x';
    EXPECT_EQ(stream.BufferSize(), 512u);
    for (int i = 0; i < 255; ++i)
        stream << 'y';
    EXPECT_EQ(stream.BufferSize(), 512u);
    stream << 'y';
    EXPECT_EQ(stream.BufferSize(), 1024u);
    EXPECT_EQ(Content(stream), std::string(256, 'x') + std::string(256, 'y'));
    EXPECT_EQ(std::count(stream.Buffer() + 512, stream.Buffer() + 1024, 0), 512) << "new room is cleared";
}

TYPED_TEST(MemoryStreams, GrowByTheirStep) {
    TypeParam stream(16, 4);
    std::vector<unsigned long long> sizes;
    for (int i = 0; i < 24; ++i) {
        stream << 'x';
        if (sizes.empty() || sizes.back() != stream.BufferSize())
            sizes.push_back(stream.BufferSize());
    }
    EXPECT_EQ(sizes, (std::vector<unsigned long long>{16, 20, 24, 28}));
}

TYPED_TEST(MemoryStreams, BulkWritesGrowAsOftenAsNeeded) {
    const std::string text(1000, 'x');
    TypeParam doubling(1), stepping(16, 4);
    doubling.Write(text.data(), text.size());
    stepping.Write(text.data(), text.size());
    EXPECT_EQ(Content(doubling), text);
    EXPECT_EQ(doubling.BufferSize(), 1024u);
    EXPECT_EQ(Content(stepping), text);
    EXPECT_EQ(stepping.BufferSize(), 1000u) << "a write that ends at the end of the buffer does not grow it";
}

TYPED_TEST(MemoryStreams, AValueWiderThanTheStepGetsItsRoomInSeveral) {
    const eReports reports;
    TypeParam doubling(1), stepping(1, 4);
    doubling << 0x1122334455667788ll;
    stepping << 0x1122334455667788ll;
    EXPECT_EQ(doubling.BufferSize(), 8u);
    EXPECT_EQ(stepping.BufferSize(), 9u);
    EXPECT_EQ(Content(doubling), "\x88\x77\x66\x55\x44\x33\x22\x11");
    EXPECT_EQ(Content(stepping), Content(doubling));
    EXPECT_TRUE(reports.errors().empty());
}

TYPED_TEST(MemoryStreams, DumpNamesThem) {
    TypeParam stream;
    stream.Write("abc", 3);
    EXPECT_EQ(stream.Dump(), "MemoryStream(off:0, ptr:3, end:256, eos:3, buff:256)");
}

TYPED_TEST(MemoryStreams, OfSizeZeroHaveRoomOnlyAfterResizing) {
    const eReports reports;
    TypeParam stream(0, 0);
    EXPECT_EQ(stream.Buffer(), nullptr);
    EXPECT_TRUE(stream.IsOpen());
    stream << 1;
    stream.Write("abc", 3);
    EXPECT_EQ(stream.Size(), 0u);
    EXPECT_TRUE(stream.Enabled(Mode::Bad));
    ASSERT_EQ(reports.errors().size(), 2u);
    EXPECT_EQ(reports.errors()[0].message, "Attempt to write beyond the stream!");
    EXPECT_EQ(reports.errors()[1].message, "Attempt to write beyond the stream!");
    EXPECT_EQ(stream.GetInt32(), 0);
    EXPECT_EQ(reports.errors()[2].message, "Attempt to read beyond the stream!");
    stream.ResizeBuffer(10, false);
    stream << 7;
    EXPECT_EQ(stream.Size(), 4u);
    EXPECT_EQ(stream.Buffer()[0], 7);
}

TYPED_TEST(MemoryStreams, OfSizeZeroWithAStepGrow) {
    TypeParam stream(0, 8);
    stream << 1;
    EXPECT_EQ(stream.BufferSize(), 8u);
    EXPECT_EQ(stream.Size(), 4u);
}

TYPED_TEST(MemoryStreams, ResizingNeverShrinksAndKeepsDataAndPosition) {
    TypeParam stream;
    stream.ResizeBuffer(100, true);
    EXPECT_EQ(stream.BufferSize(), 256u);
    EXPECT_EQ(stream.Size(), 100u);
    stream.Write("abc", 3);
    stream.ResizeBuffer(1000, false);
    EXPECT_EQ(stream.BufferSize(), 1000u);
    EXPECT_EQ(stream.Size(), 100u);
    EXPECT_EQ(stream.Position(), 3u);
    EXPECT_EQ(Content(stream).substr(0, 4), "abc\0"s);
    stream.ResizeBuffer(2000, true);
    EXPECT_EQ(stream.Size(), 2000u);
    const unsigned char* const bytes = stream.Buffer();
    stream.ResizeBuffer(5, true);
    stream.ResizeBuffer(2000, true);
    EXPECT_EQ(stream.Size(), 2000u);
    EXPECT_EQ(stream.BufferSize(), 2000u);
    EXPECT_EQ(stream.Buffer(), bytes);
}

TYPED_TEST(MemoryStreams, ShiftLeftDropsTheFirstBytes) {
    struct eRow {
        unsigned long long n;
        bool done;
        std::string content;
        unsigned long long position;
    };
    for (const eRow& row : {eRow{3, true, "3456789", 7}, eRow{10, true, "", 0}, eRow{0, true, "0123456789", 10},
                            eRow{11, false, "0123456789", 4}}) {
        TypeParam stream;
        stream.Write("0123456789", 10);
        stream.Seek(4, eSeekDir::Begin);
        EXPECT_EQ(stream.ShiftLeft(row.n), row.done) << row.n;
        EXPECT_EQ(Content(stream), row.content) << row.n;
        EXPECT_EQ(stream.Position(), row.position) << row.n;
    }
}

TYPED_TEST(MemoryStreams, ShiftLeftDropsNothingWhereNothingIs) {
    const eReports reports;
    TypeParam without(0, 0), empty(16);
    EXPECT_TRUE(without.ShiftLeft(0));
    EXPECT_TRUE(empty.ShiftLeft(0));
    EXPECT_FALSE(without.ShiftLeft(1));
    EXPECT_FALSE(empty.ShiftLeft(1));
    EXPECT_TRUE(reports.errors().empty());
}

TYPED_TEST(MemoryStreams, FlushRaisesTheEndToThePosition) {
    TypeParam stream;
    stream.Write("abc", 3);
    stream.Take(2);
    EXPECT_EQ(stream.Size(), 3u);
    stream.Flush();
    EXPECT_EQ(stream.Size(), 5u);
    EXPECT_TRUE(stream.Disabled(Mode::Modified));
}

TYPED_TEST(MemoryStreams, ClearKeepsTheCapacity) {
    TypeParam stream;
    stream.Write(std::string(1000, 'x').data(), 1000);
    stream.Clear();
    EXPECT_EQ(stream.Size(), 0u);
    EXPECT_EQ(stream.BufferSize(), 1024u);
}

TYPED_TEST(MemoryStreams, ASizeThatCannotBeHadIsReportedWhateverErrorsSays) {
    const eReports reports;
    TypeParam stream(std::numeric_limits<long long>::max());
    EXPECT_EQ(stream.Buffer(), nullptr);
    EXPECT_EQ(stream.BufferSize(), static_cast<unsigned long long>(std::numeric_limits<long long>::max()));
    ASSERT_EQ(reports.errors().size(), 1u);
    EXPECT_EQ(reports.errors()[0].message, "Not enough memory!");
    EXPECT_EQ(reports.errors()[0].file, kUnit);
    stream.Disable(Mode::Errors);
    stream.ResizeBuffer(std::numeric_limits<unsigned long long>::max(), true);
    EXPECT_EQ(reports.errors().size(), 2u);
    stream << 1;
    EXPECT_EQ(stream.GetInt32(), 0);
    EXPECT_TRUE(stream.Enabled(Mode::Bad));
}

TYPED_TEST(MemoryStreams, OffsetStaysZeroWhateverIsDone) {
    const eReports reports;
    TypeParam stream(4);
    TypeParam target(4);
    stream.Write("0123456789", 10);
    stream.Seek(100, eSeekDir::Begin);
    stream.Flush();
    stream.Reset();
    char bytes[200];
    stream.Read(bytes, 200);
    stream.Reset();
    stream.CopyTo(target, 0);
    stream.Underflow();
    stream.Seek(200, eSeekDir::End);
    stream.Overflow();
    stream << 1;
    EXPECT_EQ(stream.Offset(), 0u);
    EXPECT_EQ(target.Offset(), 0u);
}

TEST(MemoryStream, TheLibrarysOwnClassesGrowByClearedRoom) {
    IO::eMemoryStream stream;
    IO::eMemoryStream_t other;
    for (IO::eStream* grown : {static_cast<IO::eStream*>(&stream), static_cast<IO::eStream*>(&other)}) {
        const std::string text(300, 'x');
        grown->Write(text.data(), text.size());
        EXPECT_EQ(Content(*grown), text);
        EXPECT_EQ(std::count(grown->Buffer() + 300, grown->Buffer() + 512, 0), 212);
    }
}

TEST(MemoryStream, ASeekBeforeTheStartGrowsAndReportsNothing) {
    const eReports reports;
    eMemory stream;
    stream.Write("abc", 3);
    stream.Seek(10, eSeekDir::End);
    EXPECT_TRUE(reports.errors().empty());
    EXPECT_EQ(stream.BufferSize(), 512u);
    EXPECT_EQ(stream.Position(), 0 - 7ull);
    EXPECT_EQ(stream.Size(), 3u);
    EXPECT_EQ(stream.Dump(), "MemoryStream(off:0, ptr:-7, end:512, eos:3, buff:512)");
}

TEST(MemoryStream, BeforeTheStartNothingIsTouchedAndEachCallReports) {
    const eReports reports;
    eMemory stream;
    stream.Write("abc", 3);
    stream.Seek(10, eSeekDir::End);
    char bytes[4] = "zzz";
    const std::vector<std::pair<const char*, std::function<void()>>> calls = {
        {"Attempt to read beyond the stream!", [&] { EXPECT_EQ(stream.GetInt32(), 0); }},
        {"Attempt to read beyond the stream!", [&] { EXPECT_EQ(stream.Int64(), 0); }},
        {"Attempt to read beyond the stream!", [&] { stream.Read(bytes, 3); }},
        {"Attempt to read beyond the stream!", [&] { EXPECT_EQ(*stream.Take(1), 0); }},
        {"Attempt to read beyond the stream!", [&] { EXPECT_EQ(*stream.Look(1), 0); }},
        {"Attempt to write beyond the stream!", [&] { stream << 1; }},
        {"Attempt to write beyond the stream!", [&] { stream.Write("xyz", 3); }},
        {"Attempt to write beyond the stream!", [&] { *stream.Place(1) = 1; }},
        {"Attempt to write beyond the stream!", [&] { stream.Bytes(3, 1); }},
    };
    for (std::size_t i = 0; i < calls.size(); ++i) {
        stream.Disable(Mode::Bad);
        calls[i].second();
        EXPECT_TRUE(stream.Enabled(Mode::Bad)) << i;
        ASSERT_EQ(reports.errors().size(), i + 1);
        EXPECT_EQ(reports.errors()[i].message, calls[i].first) << i;
    }
    EXPECT_EQ(stream.Dump(), "MemoryStream(off:0, ptr:-7, end:512, eos:3, buff:512)");
    EXPECT_STREQ(bytes, "zzz");
    stream.Reset();
    EXPECT_EQ(stream.Dump(), "MemoryStream(off:0, ptr:0, end:512, eos:3, buff:512)");
    EXPECT_EQ(stream.GetChar(), 'a');
}

TEST(MemoryStream, APositionBeyondTheBufferReadsZeroAndDropsValues) {
    const eReports reports;
    eMemory stream;
    stream.Seek(5000, eSeekDir::Begin);
    EXPECT_EQ(stream.BufferSize(), 512u) << "one step";
    stream << 0x11111111;
    EXPECT_EQ(stream.Position(), 5004u);
    EXPECT_EQ(stream.Size(), 5004u);
    stream.Seek(5000, eSeekDir::Begin);
    EXPECT_EQ(stream.GetInt32(), 0);
}

TEST(MemoryStream, HooksOfTheApplicationServeGrowth) {
    const eReports reports;
    eLimited stream(32);
    stream.Write(std::string(20, 'x').data(), 20);
    EXPECT_EQ(stream.blocks, 1);
    EXPECT_EQ(Content(stream), std::string(20, 'x'));
    EXPECT_EQ(std::count(stream.Buffer() + 20, stream.Buffer() + 32, 0), 12) << "cleared whatever the hook gives";
    stream.Write(std::string(20, 'y').data(), 20);
    EXPECT_EQ(stream.Buffer(), nullptr);
    EXPECT_EQ(stream.BufferSize(), 64u);
    ASSERT_EQ(reports.errors().size(), 2u);
    EXPECT_EQ(reports.errors()[0].message, "Not enough memory!");
    EXPECT_EQ(reports.errors()[1].message, "Attempt to write beyond the stream!");
    EXPECT_EQ(stream.GetInt32(), 0);
}

TYPED_TEST(MemoryStreams, ABulkWriteLeadsToTheSizeOfItsSteps) {
    TypeParam derived(16);
    ExpectStepsOfABulkWrite(derived);
}

TEST(MemoryStream, ABulkWriteGrowsTheLibrarysOwnClassesToTheSizeOfItsSteps) {
    IO::eMemoryStream own(16);
    IO::eMemoryStream_t other(16);
    ExpectStepsOfABulkWrite(own);
    ExpectStepsOfABulkWrite(other);
}

TEST(MemoryStream, AHookOfTheApplicationSeesOneStepPerCall) {
    struct eOverflowing : eMemory {
        using eMemory::eMemory;
        void Overflow() override {
            sizes.push_back(bufferSize);
            eMemory::Overflow();
        }
        std::vector<unsigned long long> sizes;
    };
    eOverflowing doubling(16), stepping(16, 100);
    doubling.Write(std::string(100, 'x').data(), 100);
    stepping.Write(std::string(300, 'x').data(), 300);
    EXPECT_EQ(doubling.sizes, (std::vector<unsigned long long>{16, 32, 64}));
    EXPECT_EQ(stepping.sizes, (std::vector<unsigned long long>{16, 116, 216}));
    EXPECT_EQ(Content(stepping), std::string(300, 'x'));
    eLimited limited(1u << 20);
    limited << 1;
    limited.Write(std::string(3000, 'x').data(), 3000);
    EXPECT_EQ(limited.blocks, 8);
    EXPECT_EQ(limited.BufferSize(), 4096u);
    eMemory source(4000);
    source.Write(std::string(3900, 'x').data(), 3900);
    source.Reset();
    eLimited copied(1u << 20);
    source.CopyTo(copied, 0);
    EXPECT_EQ(copied.blocks, 8);
}

// --- Blocks and their allocators ---

namespace {

// A memory stream whose hooks recognise their own blocks.
class eOwnBlocks : public eMemory {
public:
    using eMemory::eMemory;
    eOwnBlocks(const eOwnBlocks&) = default;
    eOwnBlocks(eOwnBlocks&&) noexcept = default;
    eOwnBlocks& operator=(const eOwnBlocks&) = default;
    eOwnBlocks& operator=(eOwnBlocks&&) noexcept = default;
    ~eOwnBlocks() override { ReleaseBuffer(); }

    void Begin() { CreateBuffer(8, 0); }

    static inline std::set<const unsigned char*> alive;
    static inline int strangers = 0; // blocks passed in that this class did not make

protected:
    unsigned char* AllocateBuffer(unsigned long long size) const override {
        auto* const block = new unsigned char[size];
        alive.insert(block);
        return block;
    }
    void DeallocateBuffer(unsigned char*& block) const override {
        if (!block)
            return;
        strangers += alive.erase(block) == 0;
        delete[] block;
        block = nullptr;
    }
};

} // namespace

TEST(MemoryStream, EachBlockGoesBackToTheHookThatMadeIt) {
    const std::string text(200, 'x');
    const auto write = [&](eOwnBlocks& stream) { stream.Write(text.data(), text.size()); };
    const std::function<void()> lives[] = {
        [] { eOwnBlocks never_grown(16); },
        [] { eOwnBlocks without(0, 0); },
        [&] {
            eOwnBlocks grown(16);
            write(grown);
            EXPECT_EQ(eOwnBlocks::alive.size(), 1u);
        },
        [&] {
            eOwnBlocks resized(16);
            resized.ResizeBuffer(100, false);
            resized.ResizeBuffer(200, true);
        },
        [&] {
            eOwnBlocks begun(16);
            begun.Begin();
        },
        [&] {
            eOwnBlocks first(16), second(first), third(16);
            third = second;
            write(first);
            write(third);
            second = first;
            EXPECT_EQ(eOwnBlocks::alive.size(), 2u);
        },
        [&] {
            eOwnBlocks grown(16);
            write(grown);
            eOwnBlocks copy(grown), assigned(16);
            assigned = copy;
            assigned = *&assigned;
        },
        [&] {
            eOwnBlocks first(16), grown(16);
            write(grown);
            eOwnBlocks moved(std::move(first)), movedGrown(std::move(grown));
            moved = std::move(movedGrown);
            movedGrown = eOwnBlocks(16);
            write(movedGrown);
        },
    };
    for (const auto& live : lives) {
        live();
        EXPECT_TRUE(eOwnBlocks::alive.empty()) << "each of the class's own is released";
        EXPECT_EQ(eOwnBlocks::strangers, 0) << "and no other is handed to it";
    }
}

TEST(MemoryStream, ABlockThatCannotBeMadeLeavesTheOldOne) {
    struct eRefusing : eOwnBlocks {
        using eOwnBlocks::eOwnBlocks;
        ~eRefusing() override { ReleaseBuffer(); }
        unsigned char* AllocateBuffer(unsigned long long) const override { throw std::bad_alloc(); }
    };
    {
        eRefusing stream(4);
        EXPECT_THROW(stream << 0x61616161, std::bad_alloc);
        EXPECT_EQ(Content(stream), "aaaa") << "what fits";
        EXPECT_THROW(stream << 'b', std::bad_alloc);
        EXPECT_THROW(stream.ResizeBuffer(100, false), std::bad_alloc);
        EXPECT_EQ(stream.BufferSize(), 4u);
    }
    EXPECT_EQ(eOwnBlocks::strangers, 0);
}

TEST(MemoryStream, GrowthClearsTheRoomAfterTheData) {
    IO::eMemoryStream own(64);
    eMemory derived(64);
    for (IO::eMemoryStream* stream : {&own, static_cast<IO::eMemoryStream*>(&derived)}) {
        stream->Write(std::string(60, 'x').data(), 60);
        stream->Seek(40, eSeekDir::Begin);
        stream->Trunc();
        stream->ResizeBuffer(100, false);
        EXPECT_EQ(Content(*stream), std::string(40, 'x'));
        EXPECT_EQ(std::count(stream->Buffer() + 40, stream->Buffer() + 100, 0), 60);
        EXPECT_EQ(stream->Position(), 40u);
    }
}

TEST(MemoryStream, GrowthLeavesTheBytesOfACopyAlone) {
    IO::eMemoryStream stream(16);
    stream.Write("0123456789", 10);
    IO::eMemoryStream copy(stream);
    stream.Write("abcdefghij", 10);
    EXPECT_NE(stream.Buffer(), copy.Buffer());
    EXPECT_EQ(Content(stream), "0123456789abcdefghij");
    EXPECT_EQ(Content(copy), "0123456789");
    copy.Write("ABCDEFGHIJ", 10);
    EXPECT_EQ(Content(stream), "0123456789abcdefghij");
    EXPECT_EQ(Content(copy), "0123456789ABCDEFGHIJ");
}

TEST(MemoryStream, RunningOutOfMemoryWhileThrowingLosesNoBlock) {
    const eReports reports(eReports::Throws);
    eLimited stream(32);
    EXPECT_THROW(stream.Write(std::string(100, 'x').data(), 100), xError::eException);
    EXPECT_EQ(stream.Buffer(), nullptr);
    EXPECT_THROW(stream << 1, xError::eException);
    stream.Disable(Mode::Errors);
    EXPECT_THROW(stream << 1, xError::eException);
}

TEST(MemoryStream, ABulkWriteThatThrewLeavesGrowthAtOneStep) {
    struct eRefusingOnce : eMemory {
        using eMemory::eMemory;
        unsigned char* AllocateBuffer(unsigned long long size) const override {
            return size > 100 && refusals-- > 0 ? nullptr : eMemory::AllocateBuffer(size);
        }
        mutable int refusals = 1;
    };
    const eReports reports(eReports::Throws);
    eRefusingOnce stream(16, 4);
    EXPECT_THROW(stream.Write(std::string(150, 'x').data(), 150), xError::eException);
    stream.ResizeBuffer(200, true);
    stream.Seek(200, eSeekDir::Begin);
    stream << 'x';
    EXPECT_EQ(stream.BufferSize(), 204u);
}

TEST(MemoryStream, RunningOutOfMemoryWhileThrowingKeepsBad) {
    const eReports reports(eReports::Throws);
    eLimited stream(32);
    stream.Enable(Mode::Bad);
    EXPECT_THROW(stream.Write(std::string(100, 'x').data(), 100), xError::eException);
    EXPECT_TRUE(stream.Enabled(Mode::Bad));
}

// --- eBufferStream ---

TEST(BufferStream, ViewsTheCallersBytes) {
    unsigned char bytes[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    eView stream(bytes, 8, 5);
    EXPECT_EQ(stream.Buffer(), bytes);
    EXPECT_EQ(stream.Size(), 5u);
    EXPECT_EQ(stream.Flags(), 0x0202);
    EXPECT_EQ(stream.Dump(), "BufferStream(off:0, ptr:0, end:8, eos:5, buff:8)");
    stream.Write("abcdefgh", 8);
    EXPECT_EQ(std::string(bytes, bytes + 8), "abcdefgh");
    EXPECT_EQ(stream.Size(), 8u);
    EXPECT_EQ(eView(bytes, 8, 0).Size(), 8u);
}

TEST(BufferStream, IsNotMadeFromATextThatIsGoneBeforeIt) {
    EXPECT_TRUE((std::is_constructible_v<IO::eBufferStream, std::string&>));
    EXPECT_TRUE((std::is_constructible_v<IO::eBufferStream, const std::string&>));
    EXPECT_FALSE((std::is_constructible_v<IO::eBufferStream, std::string>));
    EXPECT_FALSE((std::is_constructible_v<IO::eBufferStream, const std::string>));
    EXPECT_FALSE((std::is_constructible_v<IO::eBufferStream, const char*>));
    EXPECT_FALSE((std::is_constructible_v<IO::eBufferStream, const char(&)[4]>));
}

TEST(BufferStream, IsNotOpenUntilItHasBytes) {
    eView stream;
    EXPECT_FALSE(stream.IsOpen());
    EXPECT_EQ(stream.Buffer(), nullptr);
    stream << 1;
    EXPECT_EQ(stream.GetInt32(), 0);
    const std::string text = "abc";
    stream.Disable(Mode::Bad);
    stream.Enable(Mode::Read);
    stream.Assign(reinterpret_cast<const unsigned char*>(text.data()), 3, 0);
    EXPECT_TRUE(stream.IsOpen());
    EXPECT_EQ(stream.Flags(), 0x0203);
    EXPECT_EQ(stream.GetChar(), 'a');
}

TEST(BufferStream, AssignKeepsEveryOtherFlag) {
    unsigned char bytes[8] = {};
    eView stream(bytes, 8, 0);
    stream.Seek(5, eSeekDir::Begin);
    stream.Disable(Mode::Write | Mode::Errors);
    stream.Enable(Mode::Read | Mode::Modified | Mode::Bad | 0x1000);
    stream.Assign(bytes + 4, 4, 3);
    EXPECT_EQ(stream.Flags(), 0x0202 | 0x0001 | 0x4000 | 0x8000 | 0x1000);
    EXPECT_EQ(stream.Buffer(), bytes + 4);
    EXPECT_EQ(stream.Dump(), "BufferStream(off:0, ptr:0, end:4, eos:3, buff:4)");
}

TEST(BufferStream, OverNoBytesIsOpenAndTouchesNone) {
    const eReports reports;
    unsigned char byte = 7;
    char target = '?';
    eView stream;
    stream.Assign(&byte, 0, 0);
    EXPECT_TRUE(stream.IsOpen() && stream.Eos());
    EXPECT_EQ(stream.Dump(), "BufferStream(off:0, ptr:0, end:0, eos:0, buff:0)");
    stream.Read(&target, 1);
    EXPECT_EQ(target, '?');
    stream << 'x';
    EXPECT_EQ(byte, 7);
    ASSERT_EQ(reports.errors().size(), 2u);
    EXPECT_EQ(reports.errors()[0].message, "Attempt to read beyond the stream!");
    EXPECT_EQ(reports.errors()[1].message, "Attempt to write beyond the stream!");
}

TEST(BufferStream, ANullPointerIsNeverFollowed) {
    const eReports reports;
    eView stream(nullptr, 8, 8);
    char bytes[8] = {};
    stream << 1;
    EXPECT_EQ(stream.GetInt32(), 0);
    stream.Read(bytes, 8);
    stream.Write(bytes, 8);
    EXPECT_EQ(reports.errors().size(), 4u);
    EXPECT_EQ(stream.Dump(), "BufferStream(off:0, ptr:0, end:8, eos:8, buff:8)");
}

TEST(BufferStream, ItsLastByteIsReadAndReported) {
    const eReports reports;
    const std::string text = "abc";
    IO::eBufferStream bulk(text);
    char bytes[4] = {};
    bulk.Read(bytes, 3);
    EXPECT_STREQ(bytes, "abc");
    EXPECT_TRUE(reports.errors().empty());
    IO::eBufferStream single(text);
    EXPECT_EQ(single.GetChar(), 'a');
    EXPECT_EQ(single.GetChar(), 'b');
    EXPECT_TRUE(reports.errors().empty());
    EXPECT_EQ(single.GetChar(), 'c');
    ASSERT_EQ(reports.errors().size(), 1u);
    EXPECT_EQ(reports.errors()[0].message, "Attempt to write beyond the stream!");
    EXPECT_EQ(reports.errors()[0].file, kUnit);
    EXPECT_TRUE(single.Enabled(Mode::Bad));
    EXPECT_EQ(single.Position(), 3u);
}

TEST(BufferStream, ItsLastByteIsPeekedAtAndReported) {
    const eReports reports;
    const std::string text = "abcd";
    IO::eBufferStream stream(text);
    EXPECT_EQ(stream.Tbyte(), 0x636261u);
    EXPECT_TRUE(reports.errors().empty());
    EXPECT_EQ(stream.Int32(), 0x64636261);
    EXPECT_EQ(reports.errors().size(), 1u);
    EXPECT_EQ(stream.Bytes(4), 0x64636261u);
    EXPECT_EQ(reports.errors().size(), 2u);
    EXPECT_EQ(stream.Position(), 0u);
    stream.Skip(3);
    EXPECT_EQ(stream.Char(), 'd');
    EXPECT_EQ(reports.errors().size(), 3u);
    EXPECT_EQ(stream.Position(), 3u);
}

TEST(BufferStream, ReadsAsZerosAfterItsLastByte) {
    const eReports reports;
    const unsigned char bytes[] = {'a', 'b', 'c'};
    eView stream(bytes, 2, 2);
    stream.Skip(2);
    EXPECT_EQ(*stream.Look(1), 0);
    EXPECT_EQ(reports.errors().size(), 1u);
    EXPECT_EQ(stream.Position(), 2u);
    EXPECT_EQ(*stream.Take(1), 0);
    EXPECT_EQ(reports.errors().size(), 2u);
    EXPECT_EQ(stream.Position(), 3u);
}

TEST(BufferStream, ItsLastByteIsWrittenAndReported) {
    const eReports reports;
    unsigned char bytes[2] = {};
    IO::eBufferStream stream(bytes, 2, 2);
    stream << 'a' << 'b';
    EXPECT_EQ(bytes[0], 'a');
    EXPECT_EQ(bytes[1], 'b');
    ASSERT_EQ(reports.errors().size(), 1u);
    EXPECT_EQ(reports.errors()[0].message, "Attempt to write beyond the stream!");
}

TEST(BufferStream, BulkWritesBeyondTheEndKeepWhatFitsWithOneReport) {
    const eReports reports;
    unsigned char bytes[5] = {0, 0, 0, 0, 99};
    IO::eBufferStream stream(bytes, 4, 1);
    stream.Write("abcd", 4);
    EXPECT_TRUE(reports.errors().empty());
    stream.Reset();
    stream.Write("ABCDEFGH", 8);
    EXPECT_EQ(std::string(bytes, bytes + 5), "ABCDc");
    EXPECT_EQ(reports.errors().size(), 1u);
    EXPECT_TRUE(stream.Enabled(Mode::Bad));
    stream.Write("more", 4);
    EXPECT_EQ(reports.errors().size(), 2u) << "one for each call";
}

TEST(BufferStream, DataSaidToReachBeyondTheBytesEndWithThem) {
    const eReports reports;
    unsigned char bytes[4] = {'a', 'b', 'c', 'd'};
    eView stream(bytes, 4, 9);
    EXPECT_EQ(stream.Size(), 9u);
    char target[10] = {};
    stream.Read(target, 9);
    EXPECT_STREQ(target, "abcd");
    ASSERT_EQ(reports.errors().size(), 1u);
    EXPECT_EQ(reports.errors()[0].message, "Attempt to read beyond the stream!");
    EXPECT_EQ(reports.errors()[0].file, kUnit);
    EXPECT_EQ(stream.Offset(), 0u);
}

TYPED_TEST(MemoryStreams, RefillingReportsAPositionBeyondTheData) {
    const eReports reports;
    TypeParam stream(8);
    stream.Disable(Mode::Errors);
    stream.Seek(3, eSeekDir::Begin);
    stream.Disable(Mode::Bad);
    stream.Enable(Mode::Errors);
    stream.Underflow();
    ASSERT_EQ(reports.errors().size(), 1u);
    EXPECT_EQ(reports.errors()[0].message, "Invalid read location!");
    EXPECT_TRUE(stream.Enabled(Mode::Bad));
}

TEST(BufferStream, RefillingReportsAReadBeyond) {
    const eReports reports;
    const std::string text = "abc";
    IO::eBufferStream stream(text);
    stream.Underflow();
    stream.Overflow();
    ASSERT_EQ(reports.errors().size(), 2u);
    EXPECT_EQ(reports.errors()[0].message, "Attempt to read beyond the stream!");
    EXPECT_EQ(reports.errors()[1].message, "Attempt to write beyond the stream!");
    EXPECT_NE(reports.errors()[0].line, reports.errors()[1].line);
    EXPECT_EQ(stream.Position(), 0u);
}

TEST(BufferStream, EitherHookRestoresTheEndOfTheBuffer) {
    struct eCut : eView {
        using eView::eView;
        void Cut(unsigned long long capacity) { SetCapacity(capacity); }
    };
    const eReports reports;
    const std::string text = "0123456789";
    eCut stream(text);
    stream.Cut(3);
    stream.Overflow();
    EXPECT_EQ(stream.Room(), 10);
    stream.Cut(3);
    stream.Underflow();
    EXPECT_EQ(stream.Room(), 10);
}

TEST(BufferStream, FlushRaisesTheEndToThePosition) {
    unsigned char bytes[8] = {};
    eView stream(bytes, 8, 3);
    stream.Take(5);
    EXPECT_EQ(stream.Size(), 3u);
    stream.Flush();
    EXPECT_EQ(stream.Size(), 5u);
}

TEST(BufferStream, AnEmptyTextIsAStreamWithoutData) {
    const eReports reports;
    const std::string text;
    IO::eBufferStream stream(text);
    EXPECT_TRUE(stream.IsOpen());
    EXPECT_TRUE(stream.Eos());
    EXPECT_EQ(stream.Size(), 0u);
    EXPECT_EQ(stream.GetUint8(), 0);
    EXPECT_EQ(reports.errors().size(), 1u);
}

TEST(MemoryStream, AppendsToATextWhatTheBufferHoldsAndReportsNothing) {
    const eReports reports;
    const unsigned char bytes[] = {'a', 'b', 'c', 'd'};
    IO::eBufferStream stream(bytes, sizeof bytes, sizeof bytes + 5);
    std::string text = "-";
    EXPECT_EQ(stream.AppendTo(&text, 0), 0u);
    EXPECT_EQ(stream.AppendTo(&text, 3), 3u);
    EXPECT_EQ(stream.Position(), 3u);
    EXPECT_EQ(stream.AppendTo(&text, 9), 1u);
    EXPECT_EQ(stream.AppendTo(&text, 9), 0u);
    EXPECT_EQ(text, "-abcd");
    EXPECT_EQ(stream.Position(), 4u);
    EXPECT_EQ(IO::eBufferStream().AppendTo(&text, 9), 0u);
    IO::eMemoryStream written;
    written << 'x' << 'y';
    EXPECT_EQ(written.AppendTo(&text, 9), 0u);
    written.Seek(static_cast<unsigned long long>(-5), eSeekDir::Begin);
    EXPECT_EQ(written.AppendTo(&text, 9), 0u);
    written.Seek(0, eSeekDir::Begin);
    written << 'z';
    EXPECT_EQ(written.AppendTo(&text, 9), 1u);
    EXPECT_EQ(text, "-abcdy");
    EXPECT_TRUE(written.Enabled(IO::StreamMode::Modified)) << "nothing is flushed for it";
    EXPECT_TRUE(reports.errors().empty());
}
