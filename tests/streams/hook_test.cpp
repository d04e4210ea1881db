// SPDX-License-Identifier: BSL-1.0
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <qzl_base/error.h>
#include <qzl_io/streams.h>

#include "hook_calls.h"
#include "probe.h"
#include "support/reports.h"
#include "support/temp_folder.h"

// The state that hooks of an application's own classes find when they are called, and the time of the call.

using IO::eSeekDir;
namespace Mode = IO::StreamMode;

namespace {

using eLengths = std::vector<long long>;

// A growing stream on the core alone. It uses the heap and bufferEnd, and leaves bufferSize alone.
class eGrowing : public IO::eStream {
public:
    eGrowing() { Allocate(16); }
    ~eGrowing() override { std::free(block); }

    void Overflow() override {
        seen.push_back(Distance(buffer, bufferEnd));
        const auto capacity = static_cast<unsigned long long>(bufferEnd - buffer);
        const unsigned long long position = Position(), size = Size();
        Allocate(2 * capacity);
        ptr = Shifted(buffer, position);
        eos = Shifted(buffer, size);
    }
    using IO::eStream::Dump;

    eLengths seen; // of the buffer, by Overflow

private:
    void Allocate(unsigned long long capacity) {
        block = static_cast<unsigned char*>(std::realloc(block, capacity));
        buffer = ptr = eos = block;
        bufferEnd = buffer + capacity;
        flags = Mode::Write;
    }

    unsigned char* block = nullptr;
};

// A stream over a text, which it makes its buffer by bufferEnd.
class eOverText : public IO::eStream {
public:
    eOverText(const std::string& bytes, unsigned short mode, unsigned long long capacity, unsigned long long size)
        : text(bytes), block(32) {
        buffer = ptr = block.data() + 16;
        bufferEnd = buffer + capacity;
        bufferSize = size;
        eos = Shifted(buffer, text.size());
        flags = mode;
        Fill();
    }

    void Flush() override {
        seen.push_back(Distance(buffer, bufferEnd));
        eStream::Flush();
    }
    void Overflow() override {
        seen.push_back(Distance(buffer, bufferEnd));
        eStream::Overflow();
        seen.push_back(Distance(buffer, bufferEnd));
    }
    void Underflow() override {
        seen.push_back(Distance(buffer, bufferEnd));
        eStream::Underflow();
        seen.push_back(Distance(buffer, bufferEnd));
        Fill();
    }
    using IO::eStream::Dump;

    // Moves the position without calling any hook.
    void Stray(long long n) { MoveTo(Shifted(ptr, static_cast<unsigned long long>(n))); }
    // The bytes before the buffer.
    std::string Guard() const { return {block.begin(), block.begin() + 16}; }

    eLengths seen; // of the buffer, in every hook, before and after the core's hook

private:
    void Fill() {
        if (offset < text.size())
            text.copy(reinterpret_cast<char*>(buffer), static_cast<std::size_t>(bufferEnd - buffer),
                      static_cast<std::size_t>(offset));
    }

    std::string text;
    std::vector<unsigned char> block;
};

const std::string kAlphabet = "abcdefghijklmnopqrstuvwxyz";

} // namespace

TEST(Hooks, AGrowingStreamFindsItsCapacityBeforeTheStartToo) {
    eGrowing stream;
    for (int i = 0; i < 10; ++i)
        stream << i;
    EXPECT_EQ(stream.seen, (eLengths{16, 32}));
    stream.Seek(41, eSeekDir::End);
    EXPECT_EQ(stream.seen, (eLengths{16, 32, 64}));
    EXPECT_EQ(stream.Dump(), "(off:0, ptr:-1, end:128, eos:40, buff:0)");
    stream.Reset();
    EXPECT_EQ(stream.GetInt32(), 0);
    EXPECT_EQ(stream.GetInt32(), 1);
    EXPECT_EQ(stream.seen.size(), 3u);
}

TEST(Hooks, FindTheEndOfTheBufferWhereverThePositionIs) {
    for (const unsigned short mode : {Mode::Read, Mode::Write, static_cast<unsigned short>(Mode::Read | Mode::Write)}) {
        for (const unsigned long long capacity : {16ull, 9ull}) {
            const eReports reports;
            eOverText stream(kAlphabet, mode, capacity, 16);
            stream.Seek(30, eSeekDir::End);
            stream.Seek(0 - 8ull, eSeekDir::Current);
            EXPECT_EQ(stream.GetUint8(), 0);
            stream << 1;
            stream.Enable(Mode::Modified);
            stream.Skip(2);
            EXPECT_FALSE(stream.seen.empty());
            EXPECT_EQ(stream.seen, eLengths(stream.seen.size(), static_cast<long long>(capacity))) << mode;
        }
    }
}

TEST(Hooks, AHandlerThatWritesWithinAHookTouchesNothingBeforeTheStart) {
    eOverText stream(kAlphabet, Mode::Read | Mode::Errors, 9, 16);
    stream.Stray(-4);
    std::vector<std::string> messages;
    auto previous = xError::SetErrorHandler([&](const xError::eReport& report) {
        messages.push_back(report.message);
        if (messages.size() == 1)
            stream << 'X';
    });
    stream.Overflow();
    xError::SetErrorHandler(std::move(previous));
    EXPECT_EQ(messages, (std::vector<std::string>{"Stream.PlaceBuffer: (off:0, ptr:-4, end:9, eos:26, buff:16)",
                                                  "Attempt to write beyond the stream!"}));
    EXPECT_EQ(stream.Guard(), std::string(16, '\0'));
}

TEST(Hooks, ACapacityComesBackAsItWasWhateverBufferSizeSays) {
    for (const unsigned long long size : {0ull, 5ull, 16ull, 100ull}) {
        const eReports reports;
        eOverText stream(kAlphabet, Mode::Read, 9, size);
        stream.Seek(30, eSeekDir::End);
        const std::string rest = ", buff:" + std::to_string(size) + ")";
        EXPECT_EQ(stream.Dump(), "(off:-4, ptr:0, end:9, eos:30" + rest);
        EXPECT_EQ(stream.GetUint8(), 0) << "nothing can be touched there";
        stream.Reset();
        EXPECT_EQ(stream.Dump(), "(off:0, ptr:0, end:9, eos:26" + rest);
        std::string read(26, '?');
        stream.Read(read.data(), 26);
        EXPECT_EQ(read, kAlphabet);
    }
}

TEST(Hooks, ACopyMadeBeforeTheStartComesBackToo) {
    const eReports reports;
    eOverText stream(kAlphabet, Mode::Write, 9, 0);
    stream.Seek(27, eSeekDir::End);
    eOverText copy(stream);
    EXPECT_EQ(copy.Dump(), stream.Dump());
    EXPECT_EQ(copy.GetUint8(), 0);
    copy.Reset();
    EXPECT_EQ(copy.Dump(), "(off:0, ptr:0, end:9, eos:26, buff:0)");
    eOverText moved(std::move(stream));
    moved.Reset();
    EXPECT_EQ(moved.Dump(), "(off:0, ptr:0, end:9, eos:26, buff:0)");
    EXPECT_EQ(stream.Dump(), "(off:0, ptr:0, end:0, eos:0, buff:0)");
}

TEST(Hooks, OfAFileStreamAreCalledWhenItsOperationsNeedThem) {
    const eTempFolder folder;
    eNoting<IO::eFileStream> stream;
    const std::string bytes(40000, 'y');
    struct eRow {
        const char* operation;
        std::function<void()> run;
        const char* calls;
    };
    const eRow rows[] = {
        {"Open", [&] { stream.Open(folder.Write("file", std::string(100, 'z')), 3); }, "U0 "},
        {"Seek within the buffer", [&] { stream.Seek(5, eSeekDir::Begin); }, ""},
        {"<<, 4 bytes", [&] { stream << 1; }, ""},
        {"Reset", [&] { stream.Reset(); }, "F9 "},
        {"Write past the buffer", [&] { stream.Write(bytes.data(), bytes.size()); }, "O32768 F32768 U32768 "},
        {"Skip back within it", [&] { stream.Skip(0 - 10ull); }, "S40000 F40000 "},
        {"a value among the data", [&] { stream.GetInt32(); }, ""},
        {"Seek before the buffer", [&] { stream.Seek(100, eSeekDir::Begin); }, "F39994 O100 U100 "},
        {"<< there", [&] { stream << 1; }, ""},
        {"Clear", [&] { stream.Clear(); }, "F104 O0 U0 T0 F0 "},
        {"Close", [&] { stream.Close(); }, "F0 "},
        {"Close again", [&] { stream.Close(); }, ""},
    };
    for (const eRow& row : rows) {
        stream.calls.Clear();
        row.run();
        EXPECT_EQ(stream.calls.Text(), row.calls) << row.operation;
    }
    EXPECT_EQ(folder.Read("file"), "");
}

TEST(Hooks, OfAMemoryStreamAreCalledWhenItsOperationsNeedThem) {
    eNoting<IO::eMemoryStream> stream(16, 3);
    const std::string bytes(30, 'y');
    struct eRow {
        const char* operation;
        std::function<void()> run;
        const char* calls;
    };
    const eRow rows[] = {
        {"<<", [&] { stream << 1ll; }, ""},
        {"<< to the buffer's end", [&] { stream << 2ll; }, "O8 "},
        {"<< wider than the room", [&] { stream << 3ll; }, "O16 O16 "},
        {"Write", [&] { stream.Write(bytes.data(), bytes.size()); }, "O25 O28 O31 O34 O37 O40 O43 O46 O49 O52 "},
        {"ResizeBuffer", [&] { stream.ResizeBuffer(100, false); }, ""},
        {"ShiftLeft", [&] { stream.ShiftLeft(4); }, "F54 T50 "},
        {"Skip", [&] { stream.Skip(0 - 4ull); }, "S50 F50 "},
        {"Seek beyond", [&] { stream.Disable(Mode::Errors), stream.Seek(200, eSeekDir::Begin); }, "F46 O200 "},
        {"Clear", [&] { stream.Clear(); }, "F200 T0 "},
    };
    for (const eRow& row : rows) {
        stream.calls.Clear();
        row.run();
        EXPECT_EQ(stream.calls.Text(), row.calls) << row.operation;
    }
}
