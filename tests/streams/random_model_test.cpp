#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <qzl_io/streams.h>

#include "probe.h"
#include "support/long_tests.h"
#include "support/reports.h"
#include "support/temp_folder.h"

using IO::eSeekDir;
namespace Mode = IO::StreamMode;

namespace {

using eRandom = std::mt19937;

unsigned long long Upto(eRandom& random, unsigned long long n) {
    return std::uniform_int_distribution<unsigned long long>(0, n)(random);
}

// What a stream is: bytes and a position. Operations stay within what streams define.
class eModel {
public:
    void Write(const void* source, std::size_t n) {
        if (bytes.size() < position + n)
            bytes.resize(position + n);
        std::copy_n(static_cast<const unsigned char*>(source), n, bytes.begin() + static_cast<long>(position));
        position += n;
    }
    std::string Read(std::size_t n) {
        const std::size_t there = std::min(n, bytes.size() - position);
        std::string read(bytes.begin() + static_cast<long>(position),
                         bytes.begin() + static_cast<long>(position + there));
        position += there;
        return read;
    }
    std::size_t Remaining() const { return bytes.size() - position; }

    std::vector<unsigned char> bytes;
    std::size_t position = 0;
};

// One random operation on the stream and on the model, with everything that it gives compared.
class eComparison {
public:
    eComparison(IO::eStream& tested, eRandom& source, std::size_t largest)
        : stream(tested), random(source), piece(largest) {}

    void Step() {
        switch (Upto(random, 11)) {
        case 0:
            return WriteBulk();
        case 1:
            return WriteValue<unsigned char>();
        case 2:
            return WriteValue<long long>();
        case 3:
            return WriteText();
        case 4:
            return ReadBulk();
        case 5:
            return ReadValue<unsigned char>(&IO::eStream::GetUint8, &IO::eStream::Uint8);
        case 6:
            return ReadValue<unsigned int>(&IO::eStream::GetUint32, &IO::eStream::Uint32);
        case 7:
            return ReadValue<unsigned long long>(&IO::eStream::GetUint64, &IO::eStream::Uint64);
        case 8:
            return Move();
        case 9:
            return CopyOut();
        case 10:
            return ReadLine();
        default:
            return Cut();
        }
    }

    void Compare() {
        ASSERT_EQ(stream.Position(), model.position);
        ASSERT_EQ(stream.Size(), model.bytes.size());
        ASSERT_EQ(stream.Eos(), model.Remaining() == 0 || stream.Enabled(Mode::Bad));
        ASSERT_TRUE(stream.Disabled(Mode::Bad));
    }

    const eModel& Model() const { return model; }

private:
    std::string RandomBytes() {
        std::string bytes(Upto(random, Upto(random, 4) == 0 ? piece : 20), ' ');
        for (char& byte : bytes)
            byte = static_cast<char>(random());
        return bytes;
    }

    void WriteBulk() {
        const std::string bytes = RandomBytes();
        stream.Write(bytes.data(), bytes.size());
        model.Write(bytes.data(), bytes.size());
    }

    template <class V>
    void WriteValue() {
        const auto value = static_cast<V>(random() * 0x0001000100010003ull);
        stream << value;
        model.Write(&value, sizeof value);
    }

    void WriteText() {
        const std::string text(Upto(random, 300), static_cast<char>('a' + Upto(random, 25)));
        const std::size_t n = text.size();
        const unsigned char prefix[4] = {n < 255 ? static_cast<unsigned char>(n) : static_cast<unsigned char>(255),
                                         static_cast<unsigned char>(n), static_cast<unsigned char>(n >> 8), 0};
        stream << text;
        model.Write(prefix, n < 255 ? 1 : 4);
        model.Write(text.data(), n);
    }

    void ReadBulk() {
        const std::string expected = model.Read(Upto(random, model.Remaining()));
        std::string read(expected.size(), '?');
        stream.Read(read.data(), read.size());
        ASSERT_TRUE(read == expected);
    }

    template <class V>
    void ReadValue(V (IO::eStream::*get)(), V (IO::eStream::*peek)()) {
        if (model.Remaining() < sizeof(V))
            return;
        V expected;
        std::memcpy(&expected, model.Read(sizeof(V)).data(), sizeof(V));
        ASSERT_EQ((stream.*peek)(), expected);
        ASSERT_EQ((stream.*get)(), expected);
    }

    void Move() {
        const unsigned long long to = Upto(random, model.bytes.size());
        switch (Upto(random, 3)) {
        case 0:
            stream.Seek(to, eSeekDir::Begin);
            break;
        case 1:
            stream.Seek(to - model.position, eSeekDir::Current);
            break;
        case 2:
            stream.Seek(model.bytes.size() - to, eSeekDir::End);
            break;
        default:
            stream.Skip(to - model.position);
        }
        model.position = to;
    }

    void CopyOut() {
        const unsigned long long n = Upto(random, model.Remaining() + 5);
        const std::string expected = model.Read(n == 0 ? model.Remaining() : n);
        IO::eMemoryStream target(1);
        stream.CopyTo(target, n);
        ASSERT_TRUE(Content(target) == expected);
    }

    void ReadLine() {
        const auto delimiter = static_cast<char>(random());
        std::string expected = model.Read(model.Remaining());
        const std::size_t at = expected.find(delimiter);
        model.position -= at == std::string::npos ? 0 : expected.size() - at - 1;
        expected.resize(std::min(at, expected.size()));
        ASSERT_TRUE(stream.GetLine(delimiter) == expected);
    }

    void Cut() {
        if (Upto(random, 20) != 0)
            return;
        stream.Trunc();
        model.bytes.resize(model.position);
    }

    IO::eStream& stream;
    eRandom& random;
    std::size_t piece;
    eModel model;
};

void RunSteps(IO::eStream& stream, eRandom& random, std::size_t piece, int steps, const eModel** model,
              std::unique_ptr<eComparison>* comparison) {
    *comparison = std::make_unique<eComparison>(stream, random, piece);
    for (int step = 0; step < steps; ++step) {
        (*comparison)->Step();
        (*comparison)->Compare();
        if (testing::Test::HasFatalFailure())
            return;
    }
    *model = &(*comparison)->Model();
}

// Any call with any argument: nothing is compared, the sanitizers and the end of the buffer are the judges.
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
    const std::string dump = (stream.*&eFile::Dump)();
    return dump.substr(dump.find("'(")) + (stream.Enabled(Mode::Bad) ? "bad" : "good");
}

int Rounds(int usual) {
    return LongTests() ? usual * 20 : usual;
}

template <class Stream>
void CompareMemoryStreams() {
    for (int round = 0; round < Rounds(60); ++round) {
        eRandom random(static_cast<unsigned>(round));
        Stream stream(1 + static_cast<unsigned long long>(round) % 9,
                      round % 3 == 0 ? 8 + static_cast<unsigned>(round) % 50 : 0);
        const eModel* model = nullptr;
        std::unique_ptr<eComparison> comparison;
        ASSERT_NO_FATAL_FAILURE(RunSteps(stream, random, 2000, 300, &model, &comparison)) << round;
        ASSERT_TRUE(Content(stream) == std::string(model->bytes.begin(), model->bytes.end())) << round;
        if constexpr (requires { stream.Offset(); }) {
            ASSERT_EQ(stream.Offset(), 0u);
        }
    }
}

template <class Stream>
void CompareFileStreams(int mode, unsigned seed) {
    const eTempFolder folder;
    for (int round = 0; round < Rounds(12); ++round) {
        eRandom random(seed + static_cast<unsigned>(round));
        Stream stream(folder.Name("file"), mode);
        const eModel* model = nullptr;
        std::unique_ptr<eComparison> comparison;
        ASSERT_NO_FATAL_FAILURE(RunSteps(stream, random, 150000, 250, &model, &comparison)) << round;
        stream.Flush();
        ASSERT_TRUE(folder.Read("file") == std::string(model->bytes.begin(), model->bytes.end())) << round;
    }
}

// What a random copy leaves of its two streams and their files, which are one file in every fourth round.
template <class Stream>
std::string CopiedBetweenFiles(int round) {
    const eTempFolder folder;
    eRandom random(static_cast<unsigned>(round));
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

// The library's own classes have quicker ways than classes derived from them, whose hooks have to be called.

TEST(RandomModel, MemoryStreamsOfAnySizeAndStep) {
    CompareMemoryStreams<eMemory>();
    CompareMemoryStreams<IO::eMemoryStream>();
    CompareMemoryStreams<IO::eMemoryStream_t>();
}

TEST(RandomModel, FileStreamsForReadingAndWriting) {
    CompareFileStreams<eFile>(Mode::Read | Mode::Write | Mode::Create, 0);
    CompareFileStreams<IO::eFileStream>(Mode::Read | Mode::Write | Mode::Create, 500);
}

TEST(RandomModel, FileStreamsForWritingAlone) {
    CompareFileStreams<eFile>(Mode::Write | Mode::Create, 1000);
    CompareFileStreams<IO::eFileStream>(Mode::Write | Mode::Create, 1500);
}

TEST(RandomModel, CopiesBetweenFileStreamsEndAsThoseOfDerivedOnesDo) {
    for (int round = 0; round < Rounds(60); ++round)
        ASSERT_TRUE(CopiedBetweenFiles<IO::eFileStream>(round) == CopiedBetweenFiles<eFile>(round)) << round;
}

TEST(RandomModel, AnyCallsStayWithinMemoryWhenReportsReturn) {
    const eTempFolder folder;
    const eReports reports;
    std::vector<unsigned char> block(70000, 0x5A);
    for (int round = 0; round < Rounds(400); ++round) {
        eRandom random(static_cast<unsigned>(round));
        const unsigned long long size = static_cast<unsigned long long>(round / 8) % 5;
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
    for (int round = 0; round < Rounds(400); ++round) {
        eRandom random(static_cast<unsigned>(round));
        const unsigned long long size = static_cast<unsigned long long>(round / 2) % 5;
        std::vector<unsigned char> bytes(size);
        eMemory memory(size, round % 3 == 0 ? 3 : 0);
        eView view(bytes.data(), size, size);
        IO::eStream& stream = round % 2 == 0 ? static_cast<IO::eStream&>(memory) : view;
        for (int step = 0; step < 60 && memory.BufferSize() < (1ull << 24); ++step) {
            try {
                AnyCall(stream, random, block);
            } catch (const xError::eException&) {
                EXPECT_FALSE(reports.errors().empty());
            }
        }
    }
}

TEST(RandomModel, ReportsThatThrowLeaveAStreamAsThoseThatReturnDo) {
    std::vector<unsigned char> block(3000, 0x5A);
    int thrown = 0;
    for (int round = 0; round < Rounds(400); ++round) {
        const unsigned long long size = static_cast<unsigned long long>(round / 2) % 7;
        std::vector<unsigned char> bytes(size, 1), sameBytes(size, 1);
        eMemory memory(size, round % 3 == 0 ? 3 : 0), sameMemory(size, round % 3 == 0 ? 3 : 0);
        eView view(bytes.data(), size, size / 2), sameView(sameBytes.data(), size, size / 2);
        IO::eStream& stream = round % 2 == 0 ? static_cast<IO::eStream&>(memory) : view;
        IO::eStream& same = round % 2 == 0 ? static_cast<IO::eStream&>(sameMemory) : sameView;
        eRandom random(static_cast<unsigned>(round)), sameRandom(static_cast<unsigned>(round));
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
