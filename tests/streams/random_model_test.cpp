// SPDX-License-Identifier: BSL-1.0
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <functional>
#include <memory>
#include <random>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include <qzl_io/streams.h>

#include "hook_calls.h"
#include "plain_stream.h"
#include "probe.h"
#include "support/reports.h"
#include "support/rounds.h"
#include "support/temp_folder.h"

using IO::eSeekDir;
namespace Mode = IO::StreamMode;

namespace {

using eRandom = std::mt19937;

unsigned long long Upto(eRandom& random, unsigned long long n) {
    return std::uniform_int_distribution<unsigned long long>(0, n)(random);
}

// An application's own stream on the core alone, over content that it truncates, writes and reads like a file.
class eCoreStream : public IO::eStream {
public:
    eCoreStream(std::string bytes, std::size_t capacity, unsigned short mode)
        : content(std::move(bytes)), block(capacity) {
        buffer = ptr = block.data();
        bufferEnd = buffer + capacity;
        bufferSize = capacity;
        eos = buffer + content.size();
        flags = mode;
        Fill();
    }

    void Trunc() override {
        eStream::Trunc();
        content.resize(Position());
    }
    void Flush() override {
        const long long held = std::min<long long>(Distance(buffer, ptr), static_cast<long long>(block.size()));
        if (Enabled(Mode::Write) && held > 0 && !BeforeStart()) {
            content.resize(std::max(content.size(), static_cast<std::size_t>(offset) + static_cast<std::size_t>(held)));
            std::copy_n(block.begin(), held, content.begin() + static_cast<long long>(offset));
        }
        eStream::Flush();
    }
    void Underflow() override {
        eStream::Underflow();
        Fill();
    }

    const std::string& Stored() const { return content; }

private:
    void Fill() {
        std::fill(block.begin(), block.end(), static_cast<unsigned char>(0));
        if (offset < content.size())
            content.copy(reinterpret_cast<char*>(block.data()), block.size(), static_cast<std::size_t>(offset));
    }

    std::string content;
    std::vector<unsigned char> block;
};

// A stream and its plain twin, operation by operation. After each operation everything visible is compared: the state,
// the reports so far, the calls of hooks (if the stream records them), and values; after a flush the stored content.
// From a position outside the data both are moved back. The comparison ends when the plain steps have no bytes to
// continue with.
class eComparison {
public:
    eComparison(IO::eStream& tested, ePlainStream& twin, eRandom& source, std::size_t largest)
        : stream(tested),
          plain(twin),
          random(source),
          piece(largest),
          memory(dynamic_cast<IO::eMemoryStream*>(&tested)),
          file(dynamic_cast<IO::eFileStreamBase*>(&tested)) {}

    eHookCalls* calls = nullptr;         // of a stream that records them
    std::function<std::string()> stored; // what the stream has stored

    void Run(int steps) {
        for (int step = 0; step < steps && !testing::Test::HasFailure(); ++step) {
            try {
                Step();
            } catch (const ePlainStream::eNoBytes&) {
                return;
            }
            Compare();
        }
    }

private:
    struct eOperation {
        const char* name;
        bool writes;
        void (eComparison::*run)();
    };
    static std::span<const eOperation> Operations();

    void Step() {
        if (plain.Astray())
            return ComeBack();
        const eOperation& operation = Operations()[Upto(random, Operations().size() - 1)];
        if (file && operation.writes && !plain.Has(Mode::Write)) // the file would be shorter than the stream
            return;
        trace += std::string(operation.name) + " ";
        (this->*operation.run)();
    }
    void ComeBack() {
        const unsigned long long to = Upto(random, std::min<unsigned long long>(plain.Size(), 1 << 20));
        trace += "back ";
        Note(to);
        strayed = true;
        plain.Seek(to, eSeekDir::Begin);
        stream.Seek(to, eSeekDir::Begin);
        plain.Disable(Mode::Bad);
        stream.Disable(Mode::Bad);
    }

    void Compare() {
        ASSERT_EQ(stream.Position(), plain.Position()) << trace;
        ASSERT_EQ(stream.Size(), plain.Size()) << trace;
        ASSERT_EQ(stream.Eos(), plain.Eos()) << trace;
        ASSERT_EQ(eInside::FlagsOf(stream), plain.Flags()) << trace;
        ASSERT_EQ(eInside::DumpOf(stream), plain.Dump()) << trace;
        const std::size_t count = plain.Reports().size();
        ASSERT_EQ(reports.errors().size(), count) << trace;
        for (; compared < count; ++compared)
            ASSERT_EQ(reports.errors()[compared].message, plain.Reports()[compared]) << trace;
        if (calls) {
            ASSERT_EQ(calls->Text(), plain.Calls().Text()) << trace;
            calls->Clear();
        }
        plain.Calls().Clear();
    }
    void Note(unsigned long long n) { trace += std::to_string(n) + " -> " + plain.Dump() + "\n"; }

    std::size_t Length() { return Upto(random, Upto(random, 4) == 0 ? piece : 20); }
    std::string RandomBytes(std::size_t n) {
        std::string bytes(n, ' ');
        for (char& byte : bytes)
            byte = static_cast<char>(random() % 7 == 0 ? '\n' : random());
        return bytes;
    }
    // A place mostly within the data, sometimes near the end, rarely before the start.
    unsigned long long Place() {
        const unsigned long long size = plain.Size();
        if (Upto(random, 3) > 0)
            return Upto(random, size);
        const auto near = static_cast<long long>(size + Upto(random, 4)) - 2;
        return near < 0 && Upto(random, 9) > 0 ? 0 : static_cast<unsigned long long>(near);
    }

    void ReadBytes() {
        const std::size_t n = Length();
        Note(n);
        const std::string expected = plain.Read(n);
        std::string read(n, '?');
        stream.Read(read.data(), n);
        read.resize(expected.size());
        ASSERT_TRUE(read == expected) << trace;
    }
    void WriteBytes() {
        const std::string bytes = RandomBytes(Length());
        Note(bytes.size());
        plain.Write(bytes);
        stream.Write(bytes.data(), bytes.size());
    }
    void CopyOut() {
        const unsigned long long n = Upto(random, 1) * Length();
        Note(n);
        const std::string expected = plain.CopyTo(n);
        IO::eMemoryStream target(1);
        stream.CopyTo(target, n);
        ASSERT_TRUE(Content(target) == expected) << trace;
    }

    void SeekFromStart() {
        const unsigned long long to = Place();
        Note(to);
        plain.Seek(to, eSeekDir::Begin);
        stream.Seek(to, eSeekDir::Begin);
    }
    void SeekOn() {
        const unsigned long long by = Place() - plain.Position();
        Note(by);
        plain.Seek(by, eSeekDir::Current);
        stream.Seek(by, eSeekDir::Current);
    }
    void SeekFromEnd() {
        const unsigned long long back = plain.Size() - Place();
        Note(back);
        plain.Seek(back, eSeekDir::End);
        stream.Seek(back, eSeekDir::End);
    }
    void SkipOn() {
        const unsigned long long by = Place() - plain.Position();
        Note(by);
        plain.Skip(by);
        stream.Skip(by);
    }
    void Reset() {
        Note(0);
        plain.Seek(0, eSeekDir::Begin);
        stream.Reset();
    }
    void Clear() {
        if (Upto(random, 4) > 0)
            return;
        Note(0);
        plain.Clear();
        stream.Clear();
        CompareStored();
    }

    void CallTrunc() {
        if (Upto(random, 4) > 0)
            return;
        Note(0);
        plain.Trunc();
        stream.Trunc();
        CompareStored();
    }
    void CallFlush() {
        Note(0);
        plain.Flush();
        stream.Flush();
        CompareStored();
    }
    void CallOverflow() {
        if (memory && plain.Size() < Upto(random, 1000)) // which would otherwise only grow
            return;
        Note(0);
        plain.Overflow();
        stream.Overflow();
    }
    void CallUnderflow() {
        Note(0);
        plain.Underflow();
        stream.Underflow();
    }
    // After a stream has been outside its data, the content of the file past the data is unspecified.
    void CompareStored() {
        std::string actual = stored(), expected = plain.Stored();
        if (file && strayed) {
            actual.resize(plain.Size());
            expected.resize(plain.Size());
        }
        ASSERT_TRUE(actual == expected) << trace;
    }

    template <class V>
    void PutValue() {
        const auto value = static_cast<V>(random() * 0x0001000100010003ull);
        Note(sizeof value);
        plain.Place({reinterpret_cast<const char*>(&value), sizeof value});
        stream << value;
    }
    void PutBytes() {
        const auto value = static_cast<unsigned int>(random());
        const auto n = 1 + Upto(random, 3);
        Note(n);
        plain.Place({reinterpret_cast<const char*>(&value), n});
        stream.Bytes(static_cast<int>(n), value);
    }
    template <class V>
    void GetValue() {
        Note(sizeof(V));
        const bool there = plain.Holds(sizeof(V));
        const std::string expected = plain.Take(sizeof(V));
        V value = 0;
        stream >> value;
        ASSERT_TRUE(!there || std::memcmp(&value, expected.data(), sizeof(V)) == 0) << trace;
    }
    void PeekValue() {
        Note(8);
        const bool there = plain.Holds(8);
        const std::string expected = plain.Look(8);
        const unsigned long long value = stream.Uint64();
        ASSERT_TRUE(!there || std::memcmp(&value, expected.data(), 8) == 0) << trace;
    }
    void PutText() {
        const std::string text(Upto(random, 3) == 0 ? Upto(random, 600) : Upto(random, 20), 'x');
        Note(text.size());
        plain.PutText(text);
        stream << text;
    }
    void GetText() {
        Note(0);
        const bool there = plain.Holds(1);
        const std::string expected = plain.GetText();
        const std::string text = stream.GetString();
        ASSERT_TRUE(!there || text == expected) << trace;
    }
    void GetLine() {
        Note(0);
        const std::string expected = plain.GetLine('\n');
        ASSERT_EQ(stream.GetLine('\n'), expected) << trace;
    }

    // For file streams only.
    void GetFileLine() {
        if (!file)
            return;
        Note(0);
        const std::string expected = static_cast<ePlainFile&>(plain).GetLine();
        ASSERT_EQ(file->GetLine(), expected) << trace;
    }

    // For memory streams only.
    void Resize() {
        if (!memory)
            return;
        const unsigned long long size = Upto(random, 2 * plain.Size() + 20);
        const bool extend = Upto(random, 1) == 1;
        Note(size);
        static_cast<ePlainMemory&>(plain).ResizeBuffer(size, extend);
        memory->ResizeBuffer(size, extend);
    }
    void ShiftLeft() {
        if (!memory)
            return;
        const unsigned long long n = Upto(random, plain.Size() + 1);
        Note(n);
        const bool expected = static_cast<ePlainMemory&>(plain).ShiftLeft(n);
        ASSERT_EQ(memory->ShiftLeft(n), expected) << trace;
        CompareStored();
    }

    IO::eStream& stream;
    ePlainStream& plain;
    eRandom& random;
    std::size_t piece;
    IO::eMemoryStream* memory; // null for others
    IO::eFileStreamBase* file; // null for others
    const eReports reports;
    std::size_t compared = 0;
    bool strayed = false;
    std::string trace;
};

std::span<const eComparison::eOperation> eComparison::Operations() {
    static const eOperation operations[] = {
        {"Read", false, &eComparison::ReadBytes},
        {"Write", true, &eComparison::WriteBytes},
        {"Write", true, &eComparison::WriteBytes},
        {"CopyTo", false, &eComparison::CopyOut},
        {"Seek", false, &eComparison::SeekFromStart},
        {"Seek on", false, &eComparison::SeekOn},
        {"Seek back", false, &eComparison::SeekFromEnd},
        {"Skip", false, &eComparison::SkipOn},
        {"Reset", false, &eComparison::Reset},
        {"Clear", true, &eComparison::Clear},
        {"Trunc", true, &eComparison::CallTrunc},
        {"Flush", false, &eComparison::CallFlush},
        {"Overflow", false, &eComparison::CallOverflow},
        {"Underflow", false, &eComparison::CallUnderflow},
        {"put 1 byte", true, &eComparison::PutValue<unsigned char>},
        {"put 2 bytes", true, &eComparison::PutValue<unsigned short>},
        {"put 4 bytes", true, &eComparison::PutValue<int>},
        {"put 8 bytes", true, &eComparison::PutValue<long long>},
        {"Bytes", true, &eComparison::PutBytes},
        {"get 1 byte", false, &eComparison::GetValue<unsigned char>},
        {"get 2 bytes", false, &eComparison::GetValue<short>},
        {"get 4 bytes", false, &eComparison::GetValue<unsigned int>},
        {"get 8 bytes", false, &eComparison::GetValue<unsigned long long>},
        {"look at 8 bytes", false, &eComparison::PeekValue},
        {"put a text", true, &eComparison::PutText},
        {"get a text", false, &eComparison::GetText},
        {"GetLine", false, &eComparison::GetLine},
        {"GetLine of a file", false, &eComparison::GetFileLine},
        {"ResizeBuffer", false, &eComparison::Resize},
        {"ShiftLeft", false, &eComparison::ShiftLeft},
    };
    return operations;
}

// Makes any call with any argument. Nothing is compared: the sanitizers and the end of the buffer decide.
void AnyCall(IO::eStream& stream, eRandom& random, std::vector<unsigned char>& block) {
    const unsigned long long wild[] = {0,        1,          2,          7,          300,          40000,
                                       0 - 1ull, 0 - 300ull, 1ull << 63, ~0ull >> 1, stream.Size()};
    const unsigned long long n = wild[Upto(random, std::size(wild) - 1)];
    const unsigned long long length = Upto(random, block.size());
    std::string text;
    std::wstring wide;
    eStrings list;
    IO::eMemoryStream other(3);
    switch (Upto(random, 29)) {
    case 0:
        stream.Read(block.data(), length);
        break;
    case 1:
        stream.Write(block.data(), length);
        break;
    case 2:
        stream.Seek(n, eSeekDir::Begin);
        break;
    case 3:
        stream.Seek(n, eSeekDir::Current);
        break;
    case 4:
        stream.Seek(n, eSeekDir::End);
        break;
    case 5:
        stream.Skip(n);
        break;
    case 6:
        stream.Reset();
        break;
    case 7:
        stream.Clear();
        break;
    case 8:
        stream.Trunc();
        break;
    case 9:
        stream.Flush();
        break;
    case 10:
        stream.Overflow();
        break;
    case 11:
        stream.Underflow();
        break;
    case 12:
        stream.CopyTo(other, length);
        break;
    case 13:
        stream.CopyFrom(other.Write(block.data(), length).Reset(), 0);
        break;
    case 14:
        stream.CopyTo(stream, length);
        break;
    case 15:
        stream << static_cast<char>(n);
        break;
    case 16:
        stream << n;
        break;
    case 17:
        stream << std::string(length % 400, 'x');
        break;
    case 18:
        stream << std::wstring(length % 400, L'x');
        break;
    case 19:
        stream.GetUint8();
        break;
    case 20:
        stream.GetUint64();
        break;
    case 21:
        stream.Uint16();
        break;
    case 22:
        stream.GetBytes(static_cast<int>(length % 6));
        break;
    case 23:
        stream.Bytes(static_cast<int>(length % 6), 5u);
        break;
    case 24:
        stream >> text;
        break;
    case 25:
        stream >> wide;
        break;
    case 26:
        stream >> list;
        break;
    case 27:
        stream.GetLine(static_cast<char>(n));
        break;
    case 28:
        if (stream.Buffer())
            stream.Write(stream.Buffer(), length);
        break;
    default:
        stream.Enable(static_cast<unsigned short>(n & Mode::Read));
        break;
    }
}

// The state as text, without the file's name; the class need not be a probe.
std::string StateOf(const IO::eFileStream& stream) {
    const std::string dump = eInside::DumpOf(stream);
    return dump.substr(dump.find("'(")) + (stream.Enabled(Mode::Bad) ? "bad" : "good");
}

constexpr unsigned kSeconds = 5; // for each test

template <class Stream>
eHookCalls* CallsOf(Stream& stream) {
    if constexpr (requires { stream.calls; })
        return &stream.calls;
    else
        return nullptr;
}

template <class Stream>
void CompareMemoryStreams() {
    for (eRounds rounds(300, 6000, kSeconds); rounds.Next() && !testing::Test::HasFailure();) {
        const unsigned round = rounds.Current();
        eRandom random(round);
        const unsigned long long size = 1 + round % 41;
        const unsigned long long growBy = round % 3 == 0 ? 1 + round % 50 : 0;
        Stream stream(size, growBy);
        ePlainMemory plain(size, growBy);
        eComparison comparison(stream, plain, random, 2000);
        comparison.calls = CallsOf(stream);
        comparison.stored = [&] {
            const unsigned long long held = std::min(stream.Size(), eInside::BufferSizeOf(stream));
            return std::string(stream.Buffer(), stream.Buffer() + held);
        };
        comparison.Run(100);
    }
}

template <class Stream>
void CompareViews() {
    for (eRounds rounds(1000, 20000, kSeconds); rounds.Next() && !testing::Test::HasFailure();) {
        const unsigned round = rounds.Current();
        eRandom random(round);
        std::string bytes(1 + Upto(random, 40), 'v');
        const unsigned long long used = Upto(random, bytes.size());
        ePlainView plain(bytes, used);
        Stream stream(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size(), used);
        eComparison comparison(stream, plain, random, 60);
        comparison.calls = CallsOf(stream);
        comparison.stored = [&] { return bytes; };
        comparison.Run(60);
    }
}

unsigned short AnyMode(eRandom& random) {
    constexpr unsigned short kModes[] = {0x001, 0x002, 0x003, 0x201, 0x202, 0x203, 0x206, 0x207};
    return kModes[Upto(random, std::size(kModes) - 1)];
}

std::string RandomContent(eRandom& random, std::size_t n) {
    std::string bytes(n, ' ');
    for (char& byte : bytes)
        byte = static_cast<char>(random() % 20 == 0 ? '\n' : random());
    return bytes;
}

template <class Stream>
void CompareFileStreams() {
    const eTempFolder folder;
    for (eRounds rounds(60, 1200, kSeconds); rounds.Next() && !testing::Test::HasFailure();) {
        const unsigned round = rounds.Current();
        eRandom random(round);
        const unsigned short mode = AnyMode(random);
        const std::string bytes = RandomContent(random, Upto(random, round % 2 == 0 ? 300 : 100000));
        const std::string name = folder.Write("file", bytes);
        Stream stream;
        stream.Open(name, mode);
        ePlainFile plain(name, bytes, mode);
        eComparison comparison(stream, plain, random, round % 4 == 0 ? 150000 : 3000);
        comparison.calls = CallsOf(stream);
        comparison.stored = [&] { return folder.Read("file"); };
        comparison.Run(100);
    }
}

// The state in which a random copy leaves its two streams and their files, which are one file in every fourth round.
template <class Stream>
std::string CopiedBetweenFiles(unsigned round) {
    const eTempFolder folder;
    eRandom random(round);
    std::string bytes(Upto(random, 400000), ' ');
    for (char& byte : bytes)
        byte = static_cast<char>(random());
    const std::string source = folder.Write("source", bytes);
    const std::string target = round % 4 == 0 ? source : folder.Write("target", bytes.substr(bytes.size() / 2));
    Stream from(source, round % 2 == 0 ? Mode::Read | Mode::Write : Mode::Read + 0);
    Stream to(target, round % 3 == 0 ? Mode::Read | Mode::Write : Mode::Write + 0);
    from.Seek(Upto(random, from.Size()), eSeekDir::Begin);
    to.Seek(Upto(random, to.Size()), eSeekDir::Begin);
    to.Write(bytes.data(), Upto(random, std::min<std::size_t>(bytes.size(), 40000)));
    from.CopyTo(to, Upto(random, 300000));
    const std::string states = StateOf(from) + StateOf(to);
    to.Close();
    return states + folder.Read(std::filesystem::path(source).filename().string()) +
           folder.Read(std::filesystem::path(target).filename().string());
}

} // namespace

// The library's own classes have faster paths than classes derived from them, whose hooks are called as the plain steps
// call them.

TEST(RandomModel, MemoryStreamsDoWhatThePlainStepsDo) {
    CompareMemoryStreams<IO::eMemoryStream>();
    CompareMemoryStreams<IO::eMemoryStream_t>();
    CompareMemoryStreams<eNoting<IO::eMemoryStream>>();
}

TEST(RandomModel, BufferStreamsDoWhatThePlainStepsDo) {
    CompareViews<IO::eBufferStream>();
    CompareViews<eNoting<IO::eBufferStream>>();
}

TEST(RandomModel, FileStreamsInAnyModeDoWhatThePlainStepsDo) {
    CompareFileStreams<IO::eFileStream>();
    CompareFileStreams<eNoting<IO::eFileStream>>();
}

TEST(RandomModel, AnApplicationsStreamsHaveTheirHooksCalledAsThePlainStepsCallThem) {
    for (eRounds rounds(2000, 40000, kSeconds); rounds.Next() && !HasFailure();) {
        const unsigned round = rounds.Current();
        eRandom random(round);
        const unsigned short mode = round % 9 == 0 ? Mode::Errors : AnyMode(random);
        const std::string bytes = RandomContent(random, Upto(random, 90));
        const std::size_t capacity = 12 + Upto(random, 30);
        eNoting<eCoreStream> stream(bytes, capacity, mode);
        ePlainCore plain(bytes, capacity, mode);
        eComparison comparison(stream, plain, random, 200);
        comparison.calls = CallsOf(stream);
        comparison.stored = [&] { return stream.Stored(); };
        comparison.Run(60);
    }
}

TEST(RandomModel, CopiesBetweenFileStreamsEndAsThoseOfDerivedOnesDo) {
    for (eRounds rounds(60, 1200, kSeconds); rounds.Next();) {
        const unsigned round = rounds.Current();
        ASSERT_TRUE(CopiedBetweenFiles<IO::eFileStream>(round) == CopiedBetweenFiles<eFile>(round)) << round;
    }
}

TEST(RandomModel, AnyCallsStayWithinMemoryWhenReportsReturn) {
    const eTempFolder folder;
    const eReports reports;
    std::vector<unsigned char> block(70000, 0x5A);
    for (eRounds rounds(400, 8000, kSeconds); rounds.Next();) {
        const unsigned round = rounds.Current();
        eRandom random(round);
        const unsigned long long size = round / 8 % 5;
        std::vector<unsigned char> bytes(size);
        std::unique_ptr<IO::eStream> stream;
        const std::string name = folder.Name("file");
        switch (round % 8) {
        case 0:
            stream = std::make_unique<eMemory>(size, 0);
            break;
        case 1:
            stream = std::make_unique<eMemory>(size, 3);
            break;
        case 2:
            stream = std::make_unique<eView>(bytes.data(), size, size / 2);
            break;
        case 3:
            stream = std::make_unique<eView>(bytes.data(), size, size + 5);
            break;
        case 4:
            folder.Write("file", std::string(size, 'x'));
            stream = std::make_unique<eFile>(name, Mode::Read + 0x200);
            break;
        case 5:
            folder.Write("file", std::string(80000, 'x'));
            stream = std::make_unique<eFile>(name, Mode::Read + 0);
            break;
        case 6:
            stream = std::make_unique<eFile>(name, Mode::Read | Mode::Write);
            break;
        default:
            stream = std::make_unique<eFile>(name, Mode::Write | Mode::Errors);
            break;
        }
        for (int step = 0; step < 60 && stream->Size() < (1ull << 24); ++step)
            AnyCall(*stream, random, block);
    }
    EXPECT_FALSE(reports.errors().empty());
}

TEST(RandomModel, AnyCallsStayWithinMemoryWhenReportsThrow) {
    const eReports reports(eReports::Throws);
    std::vector<unsigned char> block(3000, 0x5A);
    int thrown = 0;
    for (eRounds rounds(400, 8000, kSeconds); rounds.Next();) {
        const unsigned round = rounds.Current();
        eRandom random(round);
        const unsigned long long size = round / 2 % 5;
        std::vector<unsigned char> bytes(size);
        eMemory memory(size, round % 3 == 0 ? 3 : 0);
        eView view(bytes.data(), size, size);
        IO::eStream& stream = round % 2 == 0 ? static_cast<IO::eStream&>(memory) : view;
        for (int step = 0; step < 60 && memory.BufferSize() < (1ull << 24); ++step) {
            try {
                AnyCall(stream, random, block);
            } catch (const xError::eException&) {
                ++thrown;
            }
        }
    }
    EXPECT_GT(thrown, 1000);
}

TEST(RandomModel, ReportsThatThrowLeaveAStreamAsThoseThatReturnDo) {
    std::vector<unsigned char> block(3000, 0x5A);
    int thrown = 0;
    for (eRounds rounds(400, 8000, kSeconds); rounds.Next();) {
        const unsigned round = rounds.Current();
        const unsigned long long size = round / 2 % 7;
        std::vector<unsigned char> bytes(size, 1), sameBytes(size, 1);
        eMemory memory(size, round % 3 == 0 ? 3 : 0), sameMemory(size, round % 3 == 0 ? 3 : 0);
        eView view(bytes.data(), size, size / 2), sameView(sameBytes.data(), size, size / 2);
        IO::eStream& stream = round % 2 == 0 ? static_cast<IO::eStream&>(memory) : view;
        IO::eStream& same = round % 2 == 0 ? static_cast<IO::eStream&>(sameMemory) : sameView;
        eRandom random(round), sameRandom(round);
        for (int step = 0; step < 60 && memory.BufferSize() < (1ull << 20); ++step) {
            {
                const eReports reports;
                AnyCall(same, sameRandom, block);
            }
            try {
                const eReports reports(eReports::Throws);
                AnyCall(stream, random, block);
            } catch (const xError::eException&) {
                ++thrown;
            }
            ASSERT_EQ(memory.Dump() + view.Dump(), sameMemory.Dump() + sameView.Dump()) << round << ", " << step;
            ASSERT_EQ(memory.Flags() + view.Flags(), sameMemory.Flags() + sameView.Flags()) << round << ", " << step;
            ASSERT_TRUE(bytes == sameBytes) << round << ", " << step;
            const auto room = memory.Buffer() ? memory.BufferSize() : 0;
            ASSERT_TRUE(room == 0 || std::memcmp(memory.Buffer(), sameMemory.Buffer(), room) == 0);
        }
    }
    EXPECT_GT(thrown, 1000);
}
