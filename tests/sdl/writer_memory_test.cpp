// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl/writer.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <qzl_io/streams/stream_memory.h>

#include "support/content.h"
#include "support/reports.h"
#include "turning_cipher.h"

// A writer leaves a stream in memory as if the bytes of its text had been written to it, however they got there.

namespace {

class eInside : public IO::eStream {
public:
    static std::string DumpOf(const IO::eStream& stream) { return (stream.*&eInside::Dump)(); }
};

std::string Item(std::size_t size) {
    return std::string(size - 2, 'x');
}

// Writes a document of that many bytes.
void WriteText(IO::eStream& target, std::size_t size) {
    eSDLWriter(&target) << Item(size);
}

void WriteBytes(IO::eStream& target, std::size_t size) {
    const std::string text = '"' + Item(size) + '"';
    target.Write(text.data(), text.size());
}

void ExpectSame(IO::eMemoryStream& written, IO::eMemoryStream& expected) {
    EXPECT_EQ(Content(written), Content(expected));
    EXPECT_EQ(eInside::DumpOf(written), eInside::DumpOf(expected)) << "position, room and end of the data";
    EXPECT_EQ(written.Enabled(IO::StreamMode::Modified), expected.Enabled(IO::StreamMode::Modified));
    EXPECT_EQ(written.Enabled(IO::StreamMode::Bad), expected.Enabled(IO::StreamMode::Bad));
    EXPECT_EQ(written.Enabled(IO::StreamMode::Errors), expected.Enabled(IO::StreamMode::Errors));
}

struct eStart {
    const char* what;
    unsigned long long size;
    unsigned long long growBy;
    std::function<void(IO::eMemoryStream&)> prepare;
};

const std::vector<eStart> starts = {
    {"empty", 256, 0, [](IO::eMemoryStream&) {}},
    {"with room for most", 100'000, 0, [](IO::eMemoryStream&) {}},
    {"growing by little", 16, 100, [](IO::eMemoryStream&) {}},
    {"growing by a step larger than the text", 16, 200'000, [](IO::eMemoryStream&) {}},
    {"with data", 256, 0, [](IO::eMemoryStream& stream) { stream.Write("head", 4); }},
    {"at the beginning of its data", 256, 0,
     [](IO::eMemoryStream& stream) {
         stream.Write("head", 4);
         stream.Reset();
     }},
    {"cleared", 256, 0,
     [](IO::eMemoryStream& stream) {
         stream.Write("head", 4);
         stream.Clear();
     }},
    {"bad, and silent", 256, 0,
     [](IO::eMemoryStream& stream) {
         stream.Disable(IO::StreamMode::Errors);
         stream.Enable(IO::StreamMode::Bad);
     }},
};

constexpr std::array<std::size_t, 12> kSizes{2, 255, 256, 257, 1023, 1024, 1025, 2048, 4096, 4099, 65'536, 150'000};

} // namespace

TEST(WriterToMemory, LeavesAStreamAsIfTheTextHadBeenWrittenToIt) {
    for (const eStart& start : starts)
        for (const std::size_t size : kSizes) {
            SCOPED_TRACE(start.what + std::string(", ") + std::to_string(size) + " bytes");
            const eReports reports;
            IO::eMemoryStream written(start.size, start.growBy);
            IO::eMemoryStream expected(start.size, start.growBy);
            start.prepare(written);
            start.prepare(expected);
            WriteText(written, size);
            WriteBytes(expected, size);
            ExpectSame(written, expected);
            WriteText(written, size);
            WriteBytes(expected, size);
            ExpectSame(written, expected);
            written << 7 << "more";
            expected << 7 << "more";
            ExpectSame(written, expected);
            EXPECT_TRUE(reports.errors().empty());
        }
}

TEST(WriterToMemory, LeavesClearedRoomAfterTheText) {
    for (const std::size_t size : kSizes) {
        IO::eMemoryStream_t stream(300);
        WriteText(stream, size);
        unsigned long long room = 300;
        while (room < size)
            room *= 2;
        ASSERT_EQ(eInside::DumpOf(stream), "MemoryStream(off:0, ptr:" + std::to_string(size) +
                                               ", end:" + std::to_string(room) + ", eos:" + std::to_string(size) +
                                               ", buff:" + std::to_string(room) + ")");
        EXPECT_TRUE(std::all_of(stream.Buffer() + size, stream.Buffer() + room, [](unsigned char byte) {
            return byte == 0;
        })) << size;
    }
}

TEST(WriterToMemory, LeavesTheBytesOfACopyAlone) {
    IO::eMemoryStream stream;
    IO::eMemoryStream copy(stream);
    WriteText(stream, 5000);
    EXPECT_EQ(copy.Size(), 0U);
    copy << 1;
    EXPECT_EQ(Content(stream), '"' + Item(5000) + '"');
    IO::eMemoryStream full(stream);
    stream = IO::eMemoryStream();
    WriteText(stream, 3000);
    EXPECT_EQ(Content(full), '"' + Item(5000) + '"');
    EXPECT_EQ(Content(stream), '"' + Item(3000) + '"');
}

TEST(WriterToMemory, AsksTheHooksOfADerivedClassStepByStep) {
    class eCounting : public IO::eMemoryStream {
    public:
        eCounting() : eMemoryStream(16) {}
        ~eCounting() override { ReleaseBuffer(); }
        void Overflow() override {
            ++overflows;
            eMemoryStream::Overflow();
        }
        int overflows = 0;
        mutable std::vector<unsigned long long> blocks;

    protected:
        unsigned char* AllocateBuffer(unsigned long long size) const override {
            blocks.push_back(size);
            return eMemoryStream::AllocateBuffer(size);
        }
    };
    eCounting written;
    eCounting expected;
    WriteText(written, 1000);
    WriteBytes(expected, 1000);
    ExpectSame(written, expected);
    EXPECT_EQ(written.overflows, expected.overflows);
    EXPECT_EQ(written.blocks, expected.blocks);
    EXPECT_EQ(written.blocks, (std::vector<unsigned long long>{32, 64, 128, 256, 512, 1024}));
}

TEST(WriterToMemory, AStreamThatCannotGrowTakesWhatFits) {
    const eReports reports;
    IO::eMemoryStream without(0);
    WriteText(without, 5000);
    EXPECT_EQ(without.Size(), 0U);
    EXPECT_EQ(MessagesOf(reports.errors()), (std::vector<std::string>{"Attempt to write beyond the stream!"}));
}

TEST(WriterToMemory, GoesThroughTheCipher) {
    IO::eMemoryStream stream;
    const auto cipher = std::make_shared<eTurningCipher>();
    { eSDLWriter(&stream, cipher) << Item(5000); }
    EXPECT_EQ(cipher->inputs, (std::vector<std::size_t>{5000}));
    EXPECT_EQ(Content(stream), Turned('"' + Item(5000) + '"'));
}

// The text of a writer is its application's to flush, too.
TEST(WriterToMemory, ATextGoesOnAfterItWasTakenOver) {
    eSDLTextStream text;
    for (const std::size_t size : {5000U, 2U, 70'000U, 3U}) {
        IO::eMemoryStream stream;
        text.WriteString(Item(size).c_str());
        text.Flush(&stream, nullptr);
        EXPECT_EQ(Content(stream), '"' + Item(size) + '"');
    }
    IO::eMemoryStream nothing;
    text.Flush(&nothing, nullptr);
    EXPECT_EQ(nothing.Size(), 0U);
}
