// SPDX-License-Identifier: BSL-1.0
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include <qzl_base/error.h>
#include <qzl_io/streams.h>

#include "probe.h"
#include "support/reports.h"

using IO::eSeekDir;
namespace Mode = IO::StreamMode;

namespace {

constexpr char kUnit[] = "internal/src/bios/qzl_io/stream";

void ExpectOneReport(const eReports& reports, const std::string& unit, const std::string& message) {
    ASSERT_EQ(reports.errors().size(), 1u);
    EXPECT_EQ(reports.errors()[0].file, unit);
    EXPECT_EQ(reports.errors()[0].message, message);
}

} // namespace

TEST(StreamCore, ModeBitsAndDirectionsHaveTheirNumbers) {
    EXPECT_EQ(Mode::Read, 0x0001);
    EXPECT_EQ(Mode::Write, 0x0002);
    EXPECT_EQ(Mode::Create, 0x0004);
    EXPECT_EQ(Mode::Errors, 0x0200);
    EXPECT_EQ(Mode::Failed, 0x2000);
    EXPECT_EQ(Mode::Modified, 0x4000);
    EXPECT_EQ(Mode::Bad, 0x8000);
    EXPECT_EQ(static_cast<int>(eSeekDir::Begin), 0);
    EXPECT_EQ(static_cast<int>(eSeekDir::Current), 1);
    EXPECT_EQ(static_cast<int>(eSeekDir::End), 2);
}

TEST(StreamCore, EnabledAsksForAnyBitAndDisabledForNone) {
    IO::eMemoryStream stream;
    EXPECT_TRUE(stream.Enabled(0x0202));
    stream.Disable(0x0002);
    EXPECT_TRUE(stream.Enabled(0x0202));
    EXPECT_FALSE(stream.Disabled(0x0202));
    stream.Disable(0x0200);
    EXPECT_FALSE(stream.Enabled(0x0202));
    EXPECT_TRUE(stream.Disabled(0x0202));
    stream.Enable(0x0002);
    EXPECT_FALSE(stream.Disabled(0x0202));
}

TEST(StreamCore, AStreamIsOpenWithFlagsAndWithoutFailed) {
    IO::eMemoryStream stream;
    EXPECT_TRUE(stream.IsOpen());
    stream << 1;
    stream.Reset();
    EXPECT_FALSE(stream.Eos());
    stream.Enable(Mode::Failed);
    EXPECT_FALSE(stream.IsOpen());
    EXPECT_TRUE(stream.Eos());
    EXPECT_FALSE(IO::eBufferStream().IsOpen());
}

TEST(StreamCore, ReadAndWriteOfNothingDoNothing) {
    unsigned char bytes[4] = {1, 2, 3, 4};
    eBareStream stream(bytes, 4, 4, Mode::Read | Mode::Write | Mode::Errors);
    stream.Seek(4, eSeekDir::Begin);
    stream.Read(nullptr, 0);
    stream.Write(nullptr, 0);
    EXPECT_EQ(stream.underflows, 0);
    EXPECT_EQ(stream.overflows, 0);
    EXPECT_TRUE(stream.Disabled(Mode::Modified | Mode::Bad));
}

TEST(StreamCore, AReadBeyondTheDataGivesWhatRemainsAndSetsBadForGood) {
    const eReports reports;
    eMemory stream = Holding("abcd");
    char target[10] = {};
    stream.Read(target, 10);
    EXPECT_STREQ(target, "abcd");
    EXPECT_TRUE(stream.Enabled(Mode::Bad));
    EXPECT_EQ(stream.Position(), stream.Size());
    ExpectOneReport(reports, kUnit, "Attempt to read beyond the stream!");
    stream.Seek(0, eSeekDir::Begin);
    EXPECT_EQ(stream.Position(), 0u);
    EXPECT_TRUE(stream.Eos());
    EXPECT_EQ(stream.GetChar(), 'a');
}

TEST(StreamCore, WithoutErrorsAFailureOnlySetsBad) {
    const eReports reports;
    eMemory stream = Holding("abcd");
    stream.Disable(Mode::Errors);
    char target[10] = {};
    stream.Read(target, 10);
    stream.Seek(9, eSeekDir::Begin);
    EXPECT_TRUE(stream.Enabled(Mode::Bad));
    EXPECT_TRUE(reports.errors().empty());
}

TEST(StreamCore, TheStateIsCompleteBeforeAReportThrows) {
    const eReports reports(eReports::Throws);
    eMemory stream = Holding("abcd");
    char target[10] = {};
    EXPECT_THROW(stream.Read(target, 10), xError::eException);
    EXPECT_STREQ(target, "abcd");
    EXPECT_TRUE(stream.Enabled(Mode::Bad));
    EXPECT_EQ(stream.Position(), 4u);
}

TEST(StreamCore, TheEndIsALegalPositionAndWhatLiesBeyondIsNot) {
    const eReports reports;
    eMemory stream = Holding("abcd");
    stream.Seek(4, eSeekDir::Begin);
    EXPECT_TRUE(stream.Eos());
    EXPECT_TRUE(stream.Disabled(Mode::Bad));
    EXPECT_TRUE(reports.errors().empty());
    stream.Seek(5, eSeekDir::Begin);
    EXPECT_TRUE(stream.Enabled(Mode::Bad));
    ExpectOneReport(reports, kUnit, "Invalid seek location!");
}

TEST(StreamCore, SeekMovesAsItsDirectionSays) {
    struct eRow {
        unsigned long long argument;
        eSeekDir dir;
        unsigned long long position;
    };
    const eRow rows[] = {
        {7, eSeekDir::Begin, 7}, {0, eSeekDir::Begin, 0}, {2, eSeekDir::Current, 6}, {0 - 3ull, eSeekDir::Current, 1},
        {0, eSeekDir::End, 10},  {10, eSeekDir::End, 0},  {4, eSeekDir::End, 6},     {5, eSeekDir{77}, 4},
    };
    for (const eRow& row : rows) {
        eMemory stream = Holding("0123456789");
        stream.Seek(4, eSeekDir::Begin);
        stream.Seek(row.argument, row.dir);
        EXPECT_EQ(stream.Position(), row.position) << row.argument << " by " << static_cast<int>(row.dir);
        EXPECT_TRUE(stream.Disabled(Mode::Bad));
    }
}

TEST(StreamCore, AnUnknownDirectionStillChecksThePosition) {
    const eReports reports;
    eMemory stream = Holding("0123456789");
    stream.Take(12);
    stream.Disable(Mode::Write);
    stream.Seek(0, eSeekDir{3});
    EXPECT_EQ(stream.Position(), 12u);
    ExpectOneReport(reports, kUnit, "Invalid seek location!");
}

TEST(StreamCore, SkipMovesForwardAndBackward) {
    eMemory stream = Holding("0123456789");
    EXPECT_EQ(&stream.Skip(8), &stream);
    EXPECT_EQ(stream.Position(), 8u);
    stream.Skip(0 - 5ull);
    EXPECT_EQ(stream.Position(), 3u);
}

TEST(StreamCore, ClearEmptiesAndResetGoesToTheStart) {
    eMemory stream = Holding("0123456789");
    stream.Skip(4).Reset();
    EXPECT_EQ(stream.Position(), 0u);
    EXPECT_EQ(stream.Size(), 10u);
    stream.Skip(4).Clear();
    EXPECT_EQ(stream.Position(), 0u);
    EXPECT_EQ(stream.Size(), 0u);
}

TEST(StreamCore, WritingStreamsFlushBeforeTheyMove) {
    unsigned char bytes[16] = {};
    eBareStream stream(bytes, 16, 8, Mode::Read | Mode::Write);
    stream.Skip(2);
    EXPECT_EQ(stream.flushes, 0) << "at the start of the buffer";
    stream.Skip(2);
    EXPECT_EQ(stream.flushes, 1);
    stream.Seek(0, eSeekDir::Begin);
    EXPECT_EQ(stream.flushes, 2);
    stream.Disable(Mode::Write);
    stream.Skip(2).Skip(2);
    EXPECT_EQ(stream.flushes, 2) << "neither Write nor Modified";
    stream << 'x';
    stream.Skip(1);
    EXPECT_EQ(stream.flushes, 3) << "Modified";
}

TEST(StreamCore, ARequestThatEndsAtTheEndOfTheBufferOverflows) {
    unsigned char bytes[8] = {};
    for (unsigned long long n : {3ull, 4ull, 5ull}) {
        const int expected = n < 4 ? 0 : 1;
        eBareStream look(bytes, 4, 4, 0), take(bytes, 4, 4, 0), place(bytes, 4, 4, 0);
        look.Look(n);
        take.Take(n);
        place.Place(n);
        EXPECT_EQ(look.overflows, expected) << n;
        EXPECT_EQ(take.overflows, expected) << n;
        EXPECT_EQ(place.overflows, expected) << n;
        EXPECT_EQ(look.Position(), 0u);
        EXPECT_EQ(take.Position(), n);
        EXPECT_EQ(place.Position(), n);
        EXPECT_EQ(place.Size(), std::max(n, 4ull));
        EXPECT_TRUE(place.Enabled(Mode::Modified));
        EXPECT_TRUE(take.Disabled(Mode::Modified));
    }
}

TEST(StreamCore, OverflowRefillsInputAndOnlyReBasesOutput) {
    unsigned char bytes[4] = {1, 2, 3, 4};
    eBareStream input(bytes, 4, 4, Mode::Read);
    input.Skip(3);
    EXPECT_EQ(*input.Look(1), 4);
    EXPECT_EQ(input.underflows, 1);
    EXPECT_EQ(input.Offset(), 3u);
    unsigned char other[4] = {1, 2, 3, 4};
    eBareStream output(other, 4, 4, Mode::Write);
    output.Place(3);
    output.Place(1);
    EXPECT_EQ(output.underflows, 0);
    EXPECT_EQ(output.flushes, 1) << "Modified is flushed first";
    EXPECT_EQ(output.Offset(), 3u);
    EXPECT_EQ(output.Position(), 4u);
}

TEST(StreamCore, AHookFindsBadAsItIs) {
    struct eAsking : eBareStream {
        using eBareStream::eBareStream;
        void Overflow() override {
            bad.push_back(Enabled(Mode::Bad) && Eos());
            eBareStream::Overflow();
        }
        void Underflow() override {
            bad.push_back(Enabled(Mode::Bad) && Eos());
            eBareStream::Underflow();
        }
        std::vector<bool> bad;
    };
    const eReports reports;
    for (const bool before : {false, true}) {
        unsigned char bytes[4] = {1, 2, 3, 4};
        eAsking stream(bytes, 4, 4, Mode::Read);
        stream.Enable(before ? Mode::Bad : Mode::Read);
        stream.Skip(3);
        stream.GetUint8();
        stream.Write("x", 1);
        stream.Seek(0, eSeekDir::Begin);
        stream.Write("abcdef", 6);
        EXPECT_GE(stream.bad.size(), 4u);
        EXPECT_EQ(stream.bad, std::vector<bool>(stream.bad.size(), before));
        EXPECT_EQ(stream.Enabled(Mode::Bad), before);
    }
}

TEST(StreamCore, AHookThatFailsIsNotReportedTwice) {
    enum class eHow { Reports, ReportsNothing, OnlySetsBad, SeeksWithoutFailure };
    struct eFailing : eBareStream {
        using eBareStream::eBareStream;
        void Overflow() override {
            if (how == eHow::Reports)
                Fail("the hook", 7, "cannot");
            if (how == eHow::OnlySetsBad)
                Enable(Mode::Bad);
            if (how == eHow::SeeksWithoutFailure)
                Seek(0, eSeekDir::Current);
        }
        eHow how = eHow::Reports;
    };
    struct eRow {
        eHow how;
        bool before;
        std::vector<std::string> messages;
    };
    for (const eRow& row :
         {eRow{eHow::Reports, false, {"cannot"}}, eRow{eHow::Reports, true, {"cannot"}},
          eRow{eHow::OnlySetsBad, false, {}}, eRow{eHow::OnlySetsBad, true, {"Attempt to write beyond the stream!"}},
          eRow{eHow::ReportsNothing, false, {"Attempt to write beyond the stream!"}},
          eRow{eHow::ReportsNothing, true, {"Attempt to write beyond the stream!"}},
          eRow{eHow::SeeksWithoutFailure, false, {"Attempt to write beyond the stream!"}}}) {
        const eReports reports;
        unsigned char bytes[4] = {};
        eFailing stream(bytes, 4, 4, Mode::Errors);
        stream.how = row.how;
        stream.Enable(row.before ? Mode::Bad : Mode::Errors);
        stream.Write("abcdefgh", 8);
        EXPECT_EQ(MessagesOf(reports.errors()), row.messages) << static_cast<int>(row.how) << row.before;
        EXPECT_TRUE(stream.Enabled(Mode::Bad));
    }
}

TEST(StreamCore, OverflowFlushesBeforeItRefills) {
    struct eWatched : eBareStream {
        using eBareStream::eBareStream;
        void Flush() override {
            flushed = Dump();
            eBareStream::Flush();
        }
        std::string flushed;
    };
    unsigned char bytes[4] = {1, 2, 3, 4};
    eWatched stream(bytes, 4, 4, Mode::Read);
    stream << 'a' << 'b';
    stream.Overflow();
    EXPECT_EQ(stream.flushed, "(off:0, ptr:2, end:4, eos:4, buff:4)") << "while the buffer still holds the bytes";
    EXPECT_EQ(stream.Dump(), "(off:2, ptr:0, end:4, eos:2, buff:4)");
}

TEST(StreamCore, PlaceBufferMovesTheTailAndKeepsPositionAndSize) {
    unsigned char bytes[5] = {'a', 'b', 'c', 'd', 'e'};
    eBareStream stream(bytes, 5, 4, 0);
    stream.Skip(2);
    stream.PlaceBuffer();
    EXPECT_EQ(std::string(bytes, bytes + 3), "cde");
    EXPECT_EQ(stream.Position(), 2u);
    EXPECT_EQ(stream.Size(), 4u);
    EXPECT_EQ(stream.Dump(), "(off:2, ptr:0, end:5, eos:2, buff:5)");
    stream.PlaceBuffer();
    EXPECT_EQ(stream.Dump(), "(off:2, ptr:0, end:5, eos:2, buff:5)") << "no effect at the start of the buffer";
}

TEST(StreamCore, PlaceBufferReportsAPositionBeyondTheDataWhateverErrorsSays) {
    const eReports reports;
    unsigned char bytes[8] = {};
    eBareStream stream(bytes, 8, 2, 0);
    stream.Take(5);
    stream.PlaceBuffer();
    ExpectOneReport(reports, kUnit, "Stream.PlaceBuffer: (off:0, ptr:5, end:8, eos:2, buff:8)");
    EXPECT_EQ(stream.Dump(), "(off:5, ptr:0, end:8, eos:-3, buff:8)");
    EXPECT_TRUE(stream.Disabled(Mode::Bad));
}

TEST(StreamCore, PlaceBufferReportsANegativePosition) {
    const eReports reports;
    unsigned char bytes[8] = {};
    eBareStream stream(bytes, 8, 2, 0);
    stream.Seek(3, eSeekDir::End);
    ExpectOneReport(reports, kUnit, "Stream.PlaceBuffer: (off:0, ptr:-1, end:8, eos:2, buff:8)");
    EXPECT_EQ(stream.Position(), 0 - 1ull);
    EXPECT_EQ(stream.Size(), 2u);
}

TEST(StreamCore, UnderflowBeyondTheDataIsAnInvalidReadLocation) {
    const eReports reports;
    unsigned char bytes[8] = {};
    eBareStream stream(bytes, 8, 2, Mode::Errors);
    stream.Take(5);
    stream.Underflow();
    ASSERT_EQ(reports.errors().size(), 2u);
    EXPECT_EQ(reports.errors()[1].message, "Invalid read location!");
    EXPECT_EQ(reports.errors()[1].file, kUnit);
    EXPECT_TRUE(stream.Enabled(Mode::Bad));
}

TEST(StreamCore, EveryCheckReportsALineOfItsOwn) {
    const eReports reports;
    unsigned char bytes[8] = {};
    eBareStream stream(bytes, 8, 2, Mode::Errors);
    stream.Take(5);
    stream.Underflow();
    stream.Skip(1);
    stream.Read(bytes, 1);
    IO::eMemoryStream none(0, 0);
    none << 1;
    none.GetInt32();
    none.Write("x", 1);
    std::vector<int> lines;
    for (const xError::eReport& report : reports.errors())
        if (std::find(lines.begin(), lines.end(), report.line) == lines.end())
            lines.push_back(report.line);
    EXPECT_EQ(lines.size(), 7u);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), 0), 0);
}

TEST(StreamCore, CopyToCopiesTheRestOrWhatThereIs) {
    const eReports reports;
    struct eRow {
        unsigned long long from, n;
        std::string copied;
    };
    for (const eRow& row : {eRow{0, 0, "0123456789"}, eRow{4, 0, "456789"}, eRow{4, 3, "456"}, eRow{4, 99, "456789"},
                            eRow{10, 0, ""}, eRow{10, 5, ""}}) {
        eMemory source = Holding("0123456789");
        source.Seek(row.from, eSeekDir::Begin);
        IO::eMemoryStream target(2);
        EXPECT_EQ(&source.CopyTo(target, row.n), &source);
        EXPECT_EQ(Content(target), row.copied) << row.from << ", " << row.n;
        EXPECT_EQ(source.Position(), row.from + row.copied.size());
        EXPECT_EQ(source.Offset(), 0u);
        EXPECT_TRUE(source.Disabled(Mode::Bad));
    }
    EXPECT_TRUE(reports.errors().empty());
}

TEST(StreamCore, CopyingFromAnExhaustedSourceReportsNothingInAnyState) {
    unsigned char bytes[4] = {'a', 'b', 'c', 'd'};
    struct eRow {
        const char* what;
        std::function<void(eMemory&)> prepare;
    };
    const eRow rows[] = {
        {"at the end", [](eMemory& s) { s.Skip(4); }},
        {"Bad at the end", [](eMemory& s) { s.Skip(4).Enable(Mode::Bad); }},
        {"beyond the end", [](eMemory& s) { s.Take(9); }},
        {"before the start", [](eMemory& s) { s.Seek(9, eSeekDir::End); }},
        {"to refill", [](eMemory& s) { s.Enable(Mode::Read), s.Skip(4); }},
        {"Failed", [](eMemory& s) { s.Skip(4).Enable(Mode::Failed); }},
        {"empty", [](eMemory& s) { s.Clear(); }},
    };
    for (const eRow& row : rows)
        for (const unsigned long long n : {0u, 3u}) {
            eMemory source = Holding("abcd");
            row.prepare(source);
            IO::eMemoryStream target;
            const eReports reports;
            source.CopyTo(target, n);
            EXPECT_EQ(target.Size(), 0u) << row.what;
            EXPECT_TRUE(reports.errors().empty()) << row.what;
        }
    const eReports reports;
    IO::eMemoryStream target;
    IO::eBufferStream claiming(bytes, 4, 9), none(nullptr, 4, 4);
    claiming.CopyTo(target, 0);
    EXPECT_EQ(Content(target), "abcd");
    EXPECT_TRUE(claiming.Enabled(Mode::Bad)) << "it said that there was more";
    none.CopyTo(target, 0);
    IO::eBufferStream().CopyTo(target, 5);
    eBareStream bare(bytes, 4, 9, Mode::Read | Mode::Errors);
    bare.Skip(4).CopyTo(target, 0);
    EXPECT_TRUE(reports.errors().empty());
}

TEST(StreamCore, CopyingLetsThroughWhatTheSourcesHookThrows) {
    struct eThrowing : eBareStream {
        using eBareStream::eBareStream;
        void Underflow() override { throw std::runtime_error("from the hook"); }
    };
    unsigned char bytes[4] = {'a', 'b', 'c', 'd'};
    eThrowing source(bytes, 4, 9, Mode::Errors);
    IO::eMemoryStream target;
    EXPECT_THROW(source.CopyTo(target, 0), std::runtime_error);
    EXPECT_EQ(Content(target), "abcd");
}

TEST(StreamCore, CopyingMovesTheSourceByItsSkip) {
    struct eSkipping : eBareStream {
        using eBareStream::eBareStream;
        eStream& Skip(unsigned long long n) override {
            skipped.push_back(n);
            return eBareStream::Skip(n);
        }
        std::vector<unsigned long long> skipped;
    };
    unsigned char bytes[4] = {1, 2, 3, 4};
    eSkipping source(bytes, 4, 4, 0);
    IO::eMemoryStream target;
    source.CopyTo(target, 3);
    EXPECT_EQ(source.skipped, std::vector<unsigned long long>{3});
}

TEST(StreamCore, CopyFromReturnsTheTarget) {
    eMemory source = Holding("0123456789");
    IO::eMemoryStream target;
    EXPECT_EQ(&target.CopyFrom(source, 4), &target);
    EXPECT_EQ(Content(target), "0123");
    IO::eMemoryStream empty;
    target.CopyFrom(empty, 7);
    EXPECT_EQ(Content(target), "0123");
}

TEST(StreamCore, CopyingIntoAStreamWithoutRoomStopsWithOneReport) {
    const eReports reports;
    eMemory source = Holding("0123456789");
    unsigned char bytes[4] = {};
    IO::eBufferStream target(bytes, 4, 4);
    source.CopyTo(target, 0);
    EXPECT_EQ(std::string(bytes, bytes + 4), "0123");
    ExpectOneReport(reports, "internal/src/bios/qzl_io/stream_memory", "Attempt to write beyond the stream!");
    EXPECT_TRUE(target.Enabled(Mode::Bad));
    EXPECT_TRUE(source.Disabled(Mode::Bad));
}

TEST(StreamCore, AStreamMayWriteItsOwnBytesAndCopyToItself) {
    eMemory stream(8);
    stream.Write("0123456789", 10);
    stream.Write(stream.Buffer(), stream.Size());
    stream.Write(stream.Buffer(), stream.Size());
    EXPECT_EQ(Content(stream), "0123456789012345678901234567890123456789");
    const eReports reports;
    stream.Reset();
    stream.CopyTo(stream, 0);
    EXPECT_EQ(Content(stream).substr(0, 10), "0123456789");
    EXPECT_EQ(reports.errors().size(), 1u) << "the position has moved twice";
}
