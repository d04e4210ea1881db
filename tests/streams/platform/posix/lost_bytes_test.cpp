// SPDX-License-Identifier: BSL-1.0
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include <qzl_io/streams.h>

#include "support/platform/posix/fault.h"
#include "support/reports.h"
#include "support/rounds.h"
#include "support/temp_folder.h"

// What a file stream tells and does when the system refuses to read, write or close.

namespace Mode = IO::StreamMode;

namespace {

constexpr char kNotWritten[] = "Not all bytes could be written to the file: ";
constexpr char kNoSpace[] = "No space left on device.";

// Whole buffers: nothing is lost by a read that fails where it would have found the end of the file.
constexpr std::size_t kWholeBuffers = 4 * 32'768;

class LostBytes : public testing::Test {
protected:
    void SetUp() override {
        if (!eFault::ReachesLibraries())
            GTEST_SKIP() << "the libraries' calls do not pass through the test program";
    }

    eTempFolder folder;
};

void ExpectFailure(const IO::eStream& stream, int number, const std::string& text) {
    EXPECT_EQ(stream.Failure().number, number);
    EXPECT_EQ(stream.Failure().text, text);
}

} // namespace

// --- Failure ---

TEST_F(LostBytes, EveryRefusedCallIsToldWithTheSystemsNumberAndReason) {
    using eAction = std::function<void(IO::eFileStream&)>;
    const std::string much(kWholeBuffers, 'x');
    const eAction none = [](IO::eFileStream&) {};
    const eAction write = [](IO::eFileStream& stream) { stream << 1; };
    const eAction writeMuch = [&](IO::eFileStream& stream) { stream.Write(much.data(), much.size()); };
    const eAction flush = [](IO::eFileStream& stream) { (stream << 1).Flush(); };
    const eAction truncate = [](IO::eFileStream& stream) { stream.Trunc(); };
    const eAction copy = [&](IO::eFileStream& stream) { IO::eBufferStream(much).CopyTo(stream, 0); };
    const eAction readMuch = [&](IO::eFileStream& stream) {
        std::string read(much.size(), '?');
        stream.Read(read.data(), read.size());
    };
    const eAction readValues = [](IO::eFileStream& stream) {
        for (int i = 0; i < 10'000; ++i)
            stream.GetInt64();
    };
    const eAction readLines = [](IO::eFileStream& stream) { stream.GetLine(); };
    struct eRow {
        const char* function;
        int error;
        int mode;
        const eAction& action;
        std::string text;
    };
    for (const eRow& row : {
             eRow{"openat", EACCES, Mode::Read, none, "The file could not be opened: Permission denied."},
             eRow{"openat", ENOSPC, Mode::Write, none, std::string("The file could not be opened: ") + kNoSpace},
             eRow{"fstat", EIO, Mode::Read, none, "The file could not be opened: Input/output error."},
             eRow{"pwrite", ENOSPC, Mode::Write, flush, std::string(kNotWritten) + kNoSpace},
             eRow{"pwrite", ENOSPC, Mode::Write, write, std::string(kNotWritten) + kNoSpace},
             eRow{"pwrite", EDQUOT, Mode::Write, writeMuch, std::string(kNotWritten) + "Disk quota exceeded."},
             eRow{"pwrite", EIO, Mode::Write, copy, std::string(kNotWritten) + "Input/output error."},
             eRow{"close", EIO, Mode::Write, write, std::string(kNotWritten) + "Input/output error."},
             eRow{"close", EIO, Mode::Read, none, ""},
             eRow{"ftruncate", EIO, Mode::Write, truncate, "The file could not be truncated: Input/output error."},
             eRow{"pread", EIO, Mode::Read, none, "The file could not be read to its end: Input/output error."},
             eRow{"pread", EIO, Mode::Read, readMuch, "The file could not be read to its end: Input/output error."},
             eRow{"pread", EIO, Mode::Read, readValues, "The file could not be read to its end: Input/output error."},
             eRow{"pread", EIO, Mode::Read, readLines, "The file could not be read to its end: Input/output error."},
         }) {
        SCOPED_TRACE(std::string(row.function) + ", " + row.text);
        const eReports reports;
        const std::string name = folder.Write("file", much);
        int struck = 0;
        for (int call = 1;; ++call, ++struck) {
            const eFault fault(row.function, row.error, call);
            IO::eFileStream stream(name, row.mode);
            if (stream.IsOpen()) {
                row.action(stream);
                stream.Close();
            }
            if (!fault.Struck())
                break;
            ExpectFailure(stream, row.text.empty() ? 0 : row.error, row.text);
            EXPECT_EQ(stream.Enabled(Mode::Bad | Mode::Failed), !row.text.empty());
        }
        EXPECT_GT(struck, 0);
        EXPECT_TRUE(reports.errors().empty());
    }
}

TEST(FullDisk, IsToldWithItsNumber) {
    IO::eFileStream stream(eFileName("/dev/full"), Mode::Write);
    stream << 1;
    EXPECT_FALSE(stream.Failure()) << "the byte is still in the buffer";
    stream.Flush();
    ExpectFailure(stream, ENOSPC, std::string(kNotWritten) + kNoSpace);
}

TEST_F(LostBytes, AFlushThatIsRepeatedBringsWhatTheFirstOneCouldNot) {
    IO::eFileStream stream(folder.Name("file"), Mode::Write);
    stream << 0x64636261;
    {
        const eFault fault("pwrite", ENOSPC);
        stream.Flush();
        EXPECT_TRUE(stream.Failure());
    }
    stream.Disable(Mode::Bad);
    stream.Flush();
    EXPECT_FALSE(stream.Failure());
    EXPECT_EQ(folder.Read("file"), "abcd");
}

// --- Bytes that were never read ---

namespace {

// A stream to a file, and the bytes that the file should have. Bytes change only where they are written.
class eModelledFile {
public:
    eModelledFile(const std::string& file, std::string old, int mode)
        : bytes(std::move(old)), stream(eFileName(file), mode) {}

    void Wrote(unsigned long long at, const std::string& written) {
        bytes.resize(std::max<std::size_t>(bytes.size(), at + written.size()));
        bytes.replace(at, written.size(), written);
    }

    std::string bytes;
    IO::eFileStream stream;
};

class eScript {
public:
    eScript(eModelledFile& modelled, const std::string& otherFile, const std::string& otherBytes, unsigned seed)
        : model(modelled),
          stream(modelled.stream),
          other(eFileName(otherFile), Mode::Read),
          content(otherBytes),
          random(seed) {}

    void Step() {
        const unsigned long long at = stream.Position();
        switch (Number(7)) {
        case 0:
            stream.Seek(Number(stream.Size() + 1), IO::eSeekDir::Begin);
            break;
        case 1:
            if (stream.Remaining() > 1000)
                stream.Seek(Number(1000), IO::eSeekDir::Current);
            break;
        case 2:
            for (unsigned long long i = Number(100); i > 0 && stream.Remaining() >= 8; --i)
                stream.GetInt64();
            break;
        case 3: {
            std::string read(std::min<std::size_t>(Number(80'000), stream.Remaining()), '?');
            stream.Read(read.data(), read.size());
            break;
        }
        case 4:
            stream << 0x64636261;
            model.Wrote(at, "abcd");
            break;
        case 5: {
            const std::string text(Number(70'000), 'w');
            stream.Write(text.data(), text.size());
            model.Wrote(at, text);
            break;
        }
        case 6: {
            const unsigned long long from = other.Position();
            other.CopyTo(stream, Number(70'000) + 1);
            EXPECT_EQ(stream.Position() - at, other.Position() - from);
            model.Wrote(at, content.substr(from, other.Position() - from));
            other.Disable(Mode::Bad);
            other.Seek(Number(content.size()), IO::eSeekDir::Begin);
            break;
        }
        }
    }

private:
    unsigned long long Number(unsigned long long below) { return random() % below; }

    eModelledFile& model;
    IO::eFileStream& stream;
    IO::eFileStream other;
    const std::string& content;
    std::mt19937 random;
};

std::string Letters(std::size_t n, int start) {
    std::string text(n, ' ');
    for (std::size_t i = 0; i < n; ++i)
        text[i] = static_cast<char>(start + static_cast<int>(i % 10));
    return text;
}

} // namespace

TEST_F(LostBytes, RefusedReadsNeverChangeBytesThatAreNotWritten) {
    const std::string old = Letters(150'000, '0'), others = Letters(200'000, 'K');
    const std::string otherName = folder.Write("other", others);
    for (eRounds rounds(200, 5000); rounds.Next() && !HasFailure();) {
        const unsigned round = rounds.Current();
        SCOPED_TRACE(round);
        const int mode = round % 2 == 0 ? Mode::Write : Mode::Read | Mode::Write;
        const int times = round % 3 == 0 ? 1 : round % 3 == 1 ? 3 : eFault::kAlways;
        eModelledFile model(folder.Write("file", old), old, mode);
        {
            eScript script(model, otherName, others, round);
            const eFault fault("pread", EIO, static_cast<int>(1 + round % 7), times);
            for (int step = 0; step < 12; ++step)
                script.Step();
            model.stream.Close();
            EXPECT_TRUE(!fault.Struck() || model.stream.Failure().number == 0 || model.stream.Enabled(Mode::Bad));
        }
        EXPECT_TRUE(folder.Read("file") == model.bytes);
    }
}

TEST_F(LostBytes, AValueIsWrittenWhereTheFileCannotBeRead) {
    const std::string old = Letters(100'000, '0');
    for (const unsigned long long at : {0u, 7u, 40'000u, 99'996u}) {
        IO::eFileStream stream(folder.Write("file", old), Mode::Read | Mode::Write);
        {
            const eFault fault("pread", EIO, 1, eFault::kAlways);
            stream.Seek(50'000, IO::eSeekDir::Begin);
            stream.Seek(at, IO::eSeekDir::Begin);
            stream.GetChar();
            stream.Seek(at, IO::eSeekDir::Begin);
            stream << 0x64636261;
            EXPECT_EQ(stream.Position(), at + 4);
            stream.Flush();
            EXPECT_EQ(folder.Read("file"), old.substr(0, at) + "abcd" + old.substr(at + 4));
        }
        stream.Seek(at + 2, IO::eSeekDir::Begin);
        EXPECT_EQ(stream.GetChar(), 'c') << "what can be read again is read";
    }
}

TEST_F(LostBytes, AFileThatWasShortForAMomentKeepsWhatAnotherProgramWroteMeanwhile) {
    const std::string news = Letters(100'000, 'n');
    IO::eFileStream stream(folder.Write("file", Letters(100'000, '0')), Mode::Read | Mode::Write);
    folder.Write("file", "short");
    stream.Seek(60'000, IO::eSeekDir::Begin);
    stream.GetInt32();
    ExpectFailure(stream, 0, "The file is shorter than when it was opened.");
    folder.Write("file", news);
    stream << 0x64636261;
    stream.Close();
    EXPECT_TRUE(folder.Read("file") == news.substr(0, 60'004) + "abcd" + news.substr(60'008));
}

// The stream's new buffer stands where the heap has had other data.
TEST_F(LostBytes, AStreamThatLeavesASharedBufferWritesNothingElseOfTheHeap) {
    IO::eFileStream stream(folder.Write("file", Letters(100, 'f')), Mode::Read | Mode::Write);
    folder.Write("file", "short");
    stream.Fresh();
    IO::eFileStream copy(stream);
    std::vector<std::string> others(200, std::string(33'000, 'S'));
    for (std::size_t freed = 0; freed < others.size(); freed += 2)
        std::string().swap(others[freed]);
    stream.Seek(0, IO::eSeekDir::End);
    stream.Seek(5100, IO::eSeekDir::Begin);
    stream << '!';
    stream.Close();
    const std::string content = folder.Read("file");
    EXPECT_EQ(content.size(), 5101u);
    EXPECT_EQ(content.find('S'), content.npos);
}

TEST_F(LostBytes, ACopyOfAFileThatCannotBeReadEndsWithWhatArrived) {
    const std::string content = Letters(kWholeBuffers, '0');
    const std::string name = folder.Write("file", content);
    for (int call = 1;; ++call) {
        SCOPED_TRACE(call);
        const eReports reports;
        IO::eMemoryStream memory;
        const eFault fault("pread", EIO, call, eFault::kAlways);
        IO::eFileStream source(name, Mode::Read | Mode::Errors);
        source.CopyTo(memory, 0);
        EXPECT_EQ(source.Position(), memory.Size());
        EXPECT_TRUE(std::string(reinterpret_cast<const char*>(memory.Buffer()), memory.Size()) ==
                    content.substr(0, memory.Size()));
        EXPECT_TRUE(reports.errors().empty());
        if (!fault.Struck()) {
            EXPECT_EQ(memory.Size(), content.size());
            break;
        }
        ExpectFailure(source, EIO, "The file could not be read to its end: Input/output error.");
    }
}

TEST_F(LostBytes, AReadIsRefusedWithoutAReportHoweverOftenItIsTried) {
    const eReports reports;
    IO::eFileStream stream(folder.Write("file", Letters(100'000, '0')), Mode::Read | Mode::Errors);
    const eFault fault("pread", EIO, 1, eFault::kAlways);
    std::string read(60'000, '?');
    for (int i = 0; i < 3; ++i) {
        stream.Read(read.data(), read.size());
        EXPECT_EQ(stream.Position(), 32768u);
    }
    int value = -77;
    EXPECT_FALSE(stream.TryGet(value));
    EXPECT_EQ(value, -77);
    EXPECT_EQ(stream.GetInt32(), 0);
    EXPECT_EQ(stream.Position(), 32772u);
    EXPECT_TRUE(reports.errors().empty());
}
