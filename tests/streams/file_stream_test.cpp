// SPDX-License-Identifier: BSL-1.0
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <qzl_base/error.h>
#include <qzl_io/streams.h>

#include "probe.h"
#include "support/reports.h"
#include "support/temp_folder.h"

using IO::eSeekDir;
namespace Mode = IO::StreamMode;
using namespace std::string_literals;

namespace {

constexpr int kReadWrite = Mode::Read | Mode::Write;
constexpr int kNew = Mode::Read | Mode::Write | Mode::Create;

std::string Pattern(std::size_t size) {
    std::string text(size, ' ');
    for (std::size_t i = 0; i < size; ++i)
        text[i] = static_cast<char>('a' + (i * 7 + i / 26) % 26);
    return text;
}

IO::eFileStream& Mark(IO::eFileStream& stream) {
    stream.Write("!", 1);
    return stream;
}
IO::eFileStreamW& MarkW(IO::eFileStreamW& stream) {
    stream.Write("!", 1);
    return stream;
}

// For a file that is missing until the third report.
template <class Stream, class Name>
void ExpectOpenErrorsUntilItOpens(const eTempFolder& folder, const std::string& title) {
    const std::string name = folder.Name(title);
    int reports = 0;
    auto previous = xError::SetErrorHandler([&](const xError::eReport& report) {
        EXPECT_EQ(report.message, name + " - open error!");
        EXPECT_EQ(report.file, "internal/src/bios/qzl_io/stream_file");
        if (++reports == 3)
            folder.Write(title, "abc");
    });
    Stream stream(Name(typename Name::eText(name.begin(), name.end())), Mode::Read | Mode::Errors);
    xError::SetErrorHandler(std::move(previous));
    EXPECT_EQ(reports, 3);
    EXPECT_TRUE(stream.IsOpen());
    EXPECT_TRUE(stream.Disabled(Mode::Failed));
    EXPECT_EQ(stream.GetChar(), 'a');
}

// Records what the base class asks of classes that name files.
class eRecordingFile : public IO::eFileStreamBase {
public:
    mutable std::vector<int> asked;

protected:
    int CreateHandle(int openFlags) const override {
        asked.push_back(openFlags);
        return -1;
    }
    void CreateHandleError() const override {}
};

} // namespace

TEST(FileStream, AMissingFileIsNotOpenAndNotReported) {
    const eTempFolder folder;
    const eReports reports;
    eFile stream(folder.Name("missing"), Mode::Read);
    EXPECT_FALSE(stream.IsOpen());
    EXPECT_TRUE(stream.Eos());
    EXPECT_TRUE(stream.Enabled(Mode::Failed));
    EXPECT_EQ(stream.Handle(), -1);
    EXPECT_EQ(stream.Buffer(), nullptr);
    EXPECT_TRUE(reports.errors().empty());
}

TEST(FileStream, AnEmptyNameIsNotOpened) {
    EXPECT_FALSE(IO::eFileStream().IsOpen());
    EXPECT_FALSE(IO::eFileStream("", Mode::Read | Mode::Errors).IsOpen());
    EXPECT_FALSE(IO::eFileStreamW(L"", Mode::Read | Mode::Errors).IsOpen());
    EXPECT_EQ(eFile().Handle(), -1);
}

TEST(FileStream, AFolderIsNotAFile) {
    const eTempFolder folder;
    for (const int mode : {Mode::Read + 0, kReadWrite, kNew})
        EXPECT_FALSE(IO::eFileStream(folder.Path().generic_string(), mode).IsOpen()) << mode;
}

TEST(FileStream, TheModeBecomesTheRunTimesOpenFlags) {
    struct eRow {
        int mode, flags;
    };
    for (const eRow& row : {eRow{0, 0x8000}, eRow{1, 0x8000}, eRow{4, 0x8000}, eRow{5, 0x8000}, eRow{2, 0x8102},
                            eRow{3, 0x8102}, eRow{6, 0x8302}, eRow{7, 0x8302}}) {
        eRecordingFile stream;
        stream.Open(row.mode);
        EXPECT_EQ(stream.asked, std::vector<int>{row.flags}) << row.mode;
        EXPECT_FALSE(stream.IsOpen());
    }
}

TEST(FileStream, WriteCreatesAndCreateCuts) {
    const eTempFolder folder;
    { IO::eFileStream stream(folder.Name("new"), Mode::Write); }
    EXPECT_TRUE(folder.Exists("new"));
    folder.Write("old", "0123456789");
    { IO::eFileStream stream(folder.Name("old"), Mode::Write); }
    EXPECT_EQ(folder.Read("old"), "0123456789");
    { IO::eFileStream stream(folder.Name("old"), Mode::Write | Mode::Create); }
    EXPECT_EQ(folder.Read("old"), "");
    { IO::eFileStream stream(folder.Name("old"), 518); }
    EXPECT_EQ(folder.Read("old"), "");
}

TEST(FileStream, TheModeIsTheFlagWordAndAFailureAddsOneBit) {
    struct eRow {
        const char* name;
        int mode;
        unsigned short flags;
        bool open;
        std::string content;
    };
    const eRow rows[] = {
        {"there", 0x0000, 0x0000, false, "0123456789"},
        {"there", 0x0001, 0x0001, true, "0123456789"},
        {"there", 0x0005, 0x0005, true, "0123456789"},
        {"there", 0x0002, 0x0002, true, "0123456789"},
        {"there", 0x0003, 0x0003, true, "0123456789"},
        {"there", 0x0203, 0x0203, true, "0123456789"},
        {"there", 0x0007, 0x0007, true, ""},
        {"there", 0x0206, 0x0206, true, ""},
        {"missing", 0x0000, 0x2000, false, ""},
        {"missing", 0x0001, 0x2001, false, ""},
        {"missing", 0x0005, 0x2005, false, ""},
        {"missing/file", 0x0003, 0x2003, false, ""},
        {"missing/file", 0x0006, 0x2006, false, ""},
        {"missing/file", 0x0007, 0x2007, false, ""},
    };
    for (const eRow& row : rows) {
        const eTempFolder folder;
        folder.Write("there", "0123456789");
        eFile stream(folder.Name(row.name), row.mode);
        EXPECT_EQ(stream.Flags(), row.flags) << row.name << ", " << row.mode;
        EXPECT_EQ(stream.IsOpen(), row.open) << row.name << ", " << row.mode;
        EXPECT_EQ(stream.Size(), row.content.size()) << row.name << ", " << row.mode;
        EXPECT_EQ(stream.Eos(), row.content.empty()) << row.name << ", " << row.mode;
        EXPECT_FALSE(folder.Exists("missing"));
        if (!row.content.empty()) {
            EXPECT_EQ(stream.GetChar(), '0') << row.mode;
        }
        stream.Close();
        EXPECT_EQ(stream.Flags(), row.flags) << row.name << ", " << row.mode;
        if (row.name == std::string("there")) {
            EXPECT_EQ(folder.Read("there"), row.content) << row.mode;
        }
    }
}

TEST(FileStream, AnOpenErrorIsReportedAndTriedAgain) {
    const eTempFolder folder;
    ExpectOpenErrorsUntilItOpens<IO::eFileStream, eFileName>(folder, "narrow %1% of %2%");
    ExpectOpenErrorsUntilItOpens<IO::eFileStreamW, eFileNameW>(folder, "wide %1% of %2%");
}

TEST(FileStream, AnOpenErrorThatThrowsLeavesTheStreamFailed) {
    const eTempFolder folder;
    const eReports reports(eReports::Throws);
    eFileW stream;
    EXPECT_THROW(stream.Open(folder.NameW(L"missing"), Mode::Read | Mode::Errors), xError::eException);
    EXPECT_FALSE(stream.IsOpen());
    EXPECT_EQ(reports.errors()[0].message, folder.Name("missing") + " - open error!");
    EXPECT_THROW(delete IO::GetStream(eFileName(folder.Name("missing")), 0x0201), xError::eException);
    EXPECT_NE(reports.errors()[0].line, reports.errors()[1].line) << "each check has its own line";
}

TEST(FileStream, AFlagThatAHandlerClearsStaysClearWhenOpeningSucceeds) {
    const eTempFolder folder;
    eFile stream;
    const xError::eErrorHandlerGuard handler([&](const xError::eReport&) {
        stream.Disable(Mode::Errors);
        folder.Write("file", "abc");
    });
    stream.Open(folder.Name("file"), Mode::Read | Mode::Errors);
    EXPECT_TRUE(stream.IsOpen());
    EXPECT_EQ(stream.Flags(), Mode::Read);
}

TEST(FileStream, TheBufferHas32768BytesOrAShortReadOnlyFilesLength) {
    const eTempFolder folder;
    struct eRow {
        std::size_t length;
        int mode;
        unsigned long long capacity;
    };
    for (const eRow& row : {eRow{10, 1, 10}, eRow{32767, 1, 32767}, eRow{32768, 1, 32768}, eRow{50000, 1, 32768},
                            eRow{10, 3, 32768}, eRow{0, 2, 32768}, eRow{0, 1, 0}}) {
        folder.Write("file", Pattern(row.length));
        eFile stream(folder.Name("file"), row.mode);
        EXPECT_EQ(stream.BufferSize(), row.capacity) << row.length;
        EXPECT_EQ(stream.Size(), row.length);
        EXPECT_EQ(stream.Position(), 0u);
        EXPECT_EQ(stream.Buffer() == nullptr, row.capacity == 0);
        EXPECT_EQ(stream.Eos(), row.length == 0);
    }
}

TEST(FileStream, AnEmptyReadOnlyFileReadsAsNothing) {
    const eTempFolder folder;
    const eReports reports;
    eFile stream(folder.Write("empty", ""), Mode::Read | Mode::Errors);
    EXPECT_TRUE(stream.IsOpen());
    EXPECT_EQ(stream.GetInt64(), 0);
    stream << 1;
    char bytes[4];
    stream.Read(bytes, 4);
    EXPECT_EQ(stream.GetLine(), "");
    EXPECT_EQ(stream.GetLine('\n'), "");
    stream.Seek(0, eSeekDir::Begin);
    stream.Fresh();
    ASSERT_EQ(reports.errors().size(), 3u);
    EXPECT_EQ(reports.errors()[0].message, "Attempt to read beyond the stream!");
    EXPECT_EQ(reports.errors()[1].message, "Attempt to write beyond the stream!");
    EXPECT_EQ(reports.errors()[2].message, "Attempt to read beyond the stream!");
}

TEST(FileStream, WhatIsWrittenIsInTheFileAfterClosing) {
    const eTempFolder folder;
    for (const std::size_t size : {0u, 1u, 32767u, 32768u, 32769u, 40000u, 65536u, 65537u, 200000u}) {
        const std::string text = Pattern(size);
        eFile stream(folder.Name("file"), kNew);
        stream.Write(text.data(), text.size());
        EXPECT_EQ(stream.Position(), size);
        EXPECT_EQ(stream.Size(), size);
        stream.Close();
        EXPECT_EQ(stream.Handle(), -1);
        EXPECT_TRUE(stream.IsOpen()) << "the flags stay";
        EXPECT_EQ(stream.Buffer(), nullptr);
        EXPECT_EQ(folder.Read("file"), text) << size;
    }
}

TEST(FileStream, BigTransfersLeaveTheStreamWhereSmallOnesDo) {
    const eTempFolder folder;
    const std::string text = Pattern(300000);
    for (const std::size_t before : {0u, 1u, 32767u, 32768u, 40000u})
        for (const std::size_t size : {32767u, 32768u, 32769u, 65536u, 65537u, 98304u, 200000u}) {
            IO::eFileStream big(folder.Name("big"), kNew), small(folder.Name("small"), kNew);
            for (IO::eFileStream* stream : {&big, &small})
                stream->Write(text.data(), before);
            big.Write(text.data() + before, size);
            for (std::size_t i = 0; i < size; ++i)
                small.Write(text.data() + before + i, 1);
            const auto state = [](const IO::eFileStream& stream) {
                const std::string dump = eInside::DumpOf(stream);
                return dump.substr(dump.find("'(")) + (stream.Eos() ? " at the end" : "");
            };
            EXPECT_EQ(state(big), state(small)) << before << ", " << size;
            big.Reset();
            small.Reset();
            std::string fromBig(before + size, ' '), fromSmall(before + size, ' ');
            big.Read(fromBig.data(), before);
            small.Read(fromSmall.data(), before);
            big.Read(fromBig.data() + before, size);
            for (std::size_t i = 0; i < size; ++i)
                small.Read(fromSmall.data() + before + i, 1);
            EXPECT_EQ(state(big), state(small)) << before << ", " << size;
            EXPECT_EQ(fromBig, text.substr(0, before + size));
            EXPECT_EQ(fromSmall, fromBig);
            EXPECT_EQ(std::string(big.Buffer(), big.Buffer() + 100), std::string(small.Buffer(), small.Buffer() + 100));
        }
}

TEST(FileStream, BigWritesInTheMiddleKeepTheBytesAround) {
    const eTempFolder folder;
    std::string expected = Pattern(200000);
    folder.Write("file", expected);
    for (const int mode : {kReadWrite, Mode::Write + 0})
        for (const std::size_t at : {0u, 5u, 32768u, 60000u}) {
            const std::string middle(90000, 'X');
            IO::eFileStream stream(folder.Name("file"), mode);
            stream.Seek(at, eSeekDir::Begin);
            stream.Write("first", 5);
            stream.Write(middle.data(), middle.size());
            stream << 'l';
            expected.replace(at, 90006, "first" + middle + "l");
            EXPECT_EQ(stream.Position(), at + 90006);
            EXPECT_EQ(stream.Size(), 200000u);
            stream.Close();
            EXPECT_TRUE(folder.Read("file") == expected) << at;
        }
}

TEST(FileStream, AWriterThatSkipsWithinTheFileKeepsWhatItPassesOver) {
    const eTempFolder folder;
    std::string expected = Pattern(100000);
    IO::eFileStream stream(folder.Write("file", expected), Mode::Write);
    stream.Seek(50000, eSeekDir::Begin);
    stream.Skip(10);
    stream << 'X';
    stream.Close();
    expected[50010] = 'X';
    EXPECT_TRUE(folder.Read("file") == expected);
}

TEST(FileStream, ValuesCrossTheEdgesOfTheBuffer) {
    const eTempFolder folder;
    for (unsigned long long shift = 0; shift < 9; ++shift) {
        eFile stream(folder.Name("file"), kNew);
        for (unsigned long long i = 0; i < shift; ++i)
            stream << 'x';
        for (int i = 0; i < 20000; ++i)
            stream << static_cast<long long>(i) * 0x0001000100010001;
        stream.Seek(shift, eSeekDir::Begin);
        for (int i = 0; i < 20000; ++i)
            ASSERT_EQ(stream.GetInt64(), static_cast<long long>(i) * 0x0001000100010001) << shift;
        EXPECT_EQ(stream.Position(), stream.Size());
        EXPECT_TRUE(stream.Disabled(Mode::Bad));
    }
}

TEST(FileStream, ValuesAtTheEndOfAShortFileGetZerosForWhatIsMissing) {
    const eTempFolder folder;
    const eReports reports;
    for (std::size_t size = 1; size <= 9; ++size) {
        const std::string text(size, '\x11');
        eFile stream(folder.Write("file", text), Mode::Read);
        const unsigned long long expected = 0x1111111111111111u >> (size < 8 ? 8 * (8 - size) : 0);
        EXPECT_EQ(stream.Uint64(), expected) << size;
        EXPECT_EQ(stream.GetUint64(), expected) << size;
        EXPECT_EQ(stream.Position(), 8u);
        EXPECT_EQ(stream.Size(), size);
        stream.GetUint64();
        stream << 0x2222222222222222ll;
        stream.Close();
        EXPECT_EQ(folder.Read("file"), text);
    }
}

TEST(FileStream, FlushWritesFromTheBuffersStartToThePosition) {
    const eTempFolder folder;
    eFile stream(folder.Name("file"), kNew);
    stream.Write("0123456789", 10);
    stream.Seek(4, eSeekDir::Begin);
    folder.Write("file", "..........");
    stream.Flush();
    EXPECT_EQ(folder.Read("file"), "0123......");
    EXPECT_TRUE(stream.Disabled(Mode::Modified));
    folder.Write("file", "..........");
    stream.Flush();
    EXPECT_EQ(folder.Read("file"), "0123......") << "a second flush writes the same bytes again";
    EXPECT_EQ(stream.Position(), 4u);
    folder.Write("file", "..........");
    stream.Close();
    EXPECT_EQ(folder.Read("file"), "0123......") << "and so does closing";
}

TEST(FileStream, AReadOnlyStreamNeverWrites) {
    const eTempFolder folder;
    const std::string text = Pattern(100000);
    eFile stream(folder.Write("file", text), Mode::Read);
    stream.Write(std::string(70000, '#').data(), 70000);
    stream << 1;
    stream.Flush();
    stream.Trunc();
    stream.Close();
    EXPECT_TRUE(folder.Read("file") == text);
}

TEST(FileStream, TruncAndClearCutTheFile) {
    const eTempFolder folder;
    eFile stream(folder.Write("file", "0123456789"), kReadWrite);
    stream.Seek(6, eSeekDir::Begin);
    stream.Trunc();
    EXPECT_EQ(folder.Read("file"), "012345");
    EXPECT_EQ(stream.Size(), 6u);
    EXPECT_EQ(stream.Position(), 6u);
    stream.Clear();
    EXPECT_EQ(folder.Read("file"), "");
    EXPECT_EQ(stream.Size(), 0u);
    stream << 'x';
    stream.Trunc();
    EXPECT_EQ(folder.Read("file"), "x");
}

TEST(FileStream, FreshReadsWhatOthersHaveWritten) {
    const eTempFolder folder;
    eFile stream(folder.Write("file", "0123456789"), Mode::Read);
    folder.Write("file", "abcdefghij");
    EXPECT_EQ(stream.GetChar(), '0');
    stream.Fresh();
    EXPECT_EQ(stream.GetChar(), 'b');
}

TEST(FileStream, UnflushedBytesSurviveARefillWhoeverAsksForIt) {
    const eTempFolder folder;
    const std::string text = Pattern(100000);
    const std::vector<std::function<void(eFile&)>> refills = {
        [](eFile& stream) { stream.Underflow(); },
        [](eFile& stream) { stream.Fresh(); },
        [](eFile& stream) {
            std::string target(90000, ' ');
            stream.Read(target.data(), target.size());
        },
        [](eFile& stream) {
            IO::eMemoryStream target;
            stream.CopyTo(target, 90000);
        },
        [](eFile& stream) { stream.GetLine(); },
        [](eFile& stream) { stream.GetLine('#'); },
        [](eFile& stream) { stream.GetLineLength(); },
        [](eFile& stream) { stream.Seek(90000, eSeekDir::Begin); },
        [](eFile& stream) { stream.Skip(40000); },
    };
    for (std::size_t i = 0; i < refills.size(); ++i) {
        eFile stream(folder.Write("file", text), kReadWrite);
        stream.Seek(3, eSeekDir::Begin);
        stream.Write("XYZ", 3);
        refills[i](stream);
        EXPECT_EQ(folder.Read("file").substr(0, 9), text.substr(0, 3) + "XYZ" + text.substr(6, 3)) << i;
        stream.Close();
        EXPECT_TRUE(folder.Read("file") == text.substr(0, 3) + "XYZ" + text.substr(6)) << i;
    }
}

TEST(FileStream, UnflushedBytesSurviveATransferPastTheBuffer) {
    const eTempFolder folder;
    const std::string text = Pattern(200000);
    const std::vector<std::function<void(IO::eFileStream&)>> transfers = {
        [](IO::eFileStream& stream) {
            std::string target(150000, ' ');
            stream.Read(target.data(), target.size());
        },
        [](IO::eFileStream& stream) {
            IO::eMemoryStream target;
            stream.CopyTo(target, 150000);
        },
        [&](IO::eFileStream& stream) {
            stream.Write(text.data() + 6, 32768 - 6);
            stream.Write(text.data() + 32768, 150000);
        },
        [&](IO::eFileStream& stream) {
            IO::eMemoryStream target;
            stream.Write(text.data() + 6, 32768 - 6);
            stream.CopyTo(target, 150000);
        },
    };
    for (std::size_t i = 0; i < transfers.size(); ++i) {
        IO::eFileStream stream(folder.Write("file", text), kReadWrite);
        stream.Seek(3, eSeekDir::Begin);
        stream.Write("XYZ", 3);
        transfers[i](stream);
        stream.Close();
        EXPECT_TRUE(folder.Read("file") == text.substr(0, 3) + "XYZ" + text.substr(6)) << i;
    }
}

TEST(FileStream, AWideNamedStreamTransfersPastItsBuffer) {
    const eTempFolder folder;
    const std::string text = Pattern(200000);
    IO::eFileStreamW stream(folder.NameW(L"file"), kNew);
    stream.Write("first", 5);
    stream.Write(text.data(), text.size());
    stream << 'l';
    EXPECT_EQ(stream.Position(), text.size() + 6);
    stream.Seek(3, eSeekDir::Begin);
    std::string read(text.size() + 3, ' ');
    stream.Read(read.data(), read.size());
    EXPECT_TRUE(read == "st" + text + "l");
    EXPECT_TRUE(stream.Eos());
    EXPECT_TRUE(stream.Disabled(Mode::Bad));
    stream.Close();
    EXPECT_TRUE(folder.Read("file") == "first" + text + "l");
}

TEST(FileStream, ASubclassHasItsHooksCalledHoweverMuchIsRead) {
    struct eUpper : IO::eFileStream {
        using IO::eFileStream::eFileStream;
        void Underflow() override {
            IO::eFileStream::Underflow();
            for (unsigned long long i = 0; i < Capacity(); ++i)
                buffer[i] = static_cast<unsigned char>(buffer[i] & ~0x20);
        }
    };
    const eTempFolder folder;
    eUpper stream;
    stream.Open(folder.Write("file", Pattern(200000)), Mode::Read);
    std::string read(200000, ' '), expected = Pattern(200000);
    stream.Read(read.data(), read.size());
    std::transform(expected.begin(), expected.end(), expected.begin(),
                   [](char c) { return static_cast<char>(c & ~0x20); });
    EXPECT_TRUE(read == expected);
}

TEST(FileStream, ThatIsNotOpenRefillsNothing) {
    struct eLent : IO::eFileStream {
        eLent() {
            UseBuffer(bytes, 4, 4);
            Enable(Mode::Read);
        }
        ~eLent() override { UseBuffer(nullptr, 0, 0); }
        unsigned char bytes[5] = "abcd";
    };
    eLent stream;
    stream.Underflow();
    EXPECT_EQ(stream.GetChar(), 'a');
    EXPECT_TRUE(stream.Disabled(Mode::Bad));
    EXPECT_TRUE(stream.Failure().text.empty());
}

TEST(FileStream, WithoutWriteNothingReachesAFileThatIsOpenForWriting) {
    const eTempFolder folder;
    const std::string text = Pattern(200000);
    IO::eFileStream stream(folder.Write("file", text), kReadWrite);
    stream.Disable(Mode::Write);
    stream.Write(std::string(150000, '#').data(), 150000);
    stream.Close();
    EXPECT_TRUE(folder.Read("file") == text);
}

TEST(FileStream, ASeekBeforeTheStartIsReportedAndNothingIsTouchedThere) {
    const eTempFolder folder;
    const eReports reports;
    eFile stream(folder.Write("file", "0123456789"), kReadWrite | Mode::Errors);
    stream.Seek(13, eSeekDir::End);
    ASSERT_EQ(reports.errors().size(), 1u);
    EXPECT_EQ(reports.errors()[0].message, "Stream.PlaceBuffer: FileStream '" + folder.Name("file") +
                                               "'(off:0, ptr:-3, end:32768, eos:10, buff:32768)");
    EXPECT_EQ(stream.Position(), 0 - 3ull);
    EXPECT_EQ(stream.Size(), 10u);
    EXPECT_EQ(stream.GetUint64(), 0u);
    stream << 0x1111111111111111ull;
    stream.Write("abc", 3);
    char bytes[3] = {'z', 'z', 'z'};
    stream.Read(bytes, 3);
    EXPECT_EQ(bytes[0], 'z');
    EXPECT_EQ(reports.errors().size(), 5u);
    EXPECT_EQ(stream.Position(), 0 - 3ull);
    stream.Trunc();
    EXPECT_EQ(reports.errors().size(), 6u);
    EXPECT_EQ(stream.Size(), 10u);
    stream.Seek(0, eSeekDir::Begin);
    EXPECT_EQ(stream.GetChar(), '0');
    stream.Close();
    EXPECT_EQ(folder.Read("file"), "0123456789");
}

TEST(FileStream, BeforeTheStartThereAreNoLines) {
    const eTempFolder folder;
    const eReports reports;
    eFile stream(folder.Write("file", "0123456789"), kReadWrite | Mode::Errors);
    stream.Seek(13, eSeekDir::End);
    ASSERT_EQ(reports.errors().size(), 1u);
    EXPECT_EQ(stream.GetLine(), "");
    EXPECT_EQ(stream.GetLineLength(), 0u);
    ASSERT_EQ(reports.errors().size(), 3u);
    EXPECT_EQ(reports.errors()[1].message, "Attempt to read beyond the stream!");
    EXPECT_EQ(reports.errors()[2].message, "Attempt to read beyond the stream!");
    EXPECT_EQ(stream.Position(), 0 - 3ull);
}

TEST(FileStream, APositionBeyondTheEndBecomesDataOnceWritten) {
    const eTempFolder folder;
    const eReports reports;
    eFile stream(folder.Write("file", "abc"), kReadWrite | Mode::Errors);
    stream.Seek(100000, eSeekDir::Begin);
    ASSERT_EQ(reports.errors().size(), 3u);
    EXPECT_EQ(reports.errors()[0].message, "Invalid seek location!");
    EXPECT_EQ(reports.errors()[1].message.substr(0, 31), "Stream.PlaceBuffer: FileStream ");
    EXPECT_EQ(reports.errors()[2].message, "Invalid read location!");
    stream << 'x';
    stream.Close();
    EXPECT_TRUE(folder.Read("file") == "abc" + std::string(99997, '\0') + "x");
}

template <class Stream>
std::vector<std::string> MessagesOfALateWrite(std::size_t n, const std::string& name) {
    const eReports reports;
    Stream stream(name, kReadWrite | Mode::Errors);
    stream.Seek(32768, eSeekDir::Begin);
    const std::string bytes(n, 'x');
    stream.Write(bytes.data(), n);
    stream.Close();
    return MessagesOf(reports.errors());
}

TEST(FileStream, AWritePastTheDataToTheEndOfTheBufferIsReportedWhateverItsSize) {
    const eTempFolder folder;
    const std::vector<std::string> expected = {
        "Invalid seek location!",
        "Stream.PlaceBuffer: FileStream '" + folder.Name("file") + "'(off:0, ptr:32768, end:32768, eos:2, buff:32768)",
        "Invalid read location!",
    };
    for (const std::size_t n : {1u, 32767u, 32768u, 32769u, 65536u, 200000u}) {
        const std::string name = folder.Write("file", "ab");
        EXPECT_EQ(MessagesOfALateWrite<IO::eFileStream>(n, name), expected) << n;
        EXPECT_TRUE(folder.Read("file") == "ab" + std::string(32766, '\0') + std::string(n, 'x')) << n;
        folder.Write("file", "ab");
        EXPECT_EQ(MessagesOfALateWrite<eFile>(n, name), expected) << n;
    }
}

TEST(FileStream, ACopyPastTheDataToTheEndOfTheBufferIsReportedToo) {
    const eTempFolder folder;
    const eReports reports;
    IO::eFileStream source(folder.Write("source", std::string(200000, 'x')), Mode::Read);
    IO::eFileStream target(folder.Write("file", "ab"), kReadWrite | Mode::Errors);
    source.Seek(32768, eSeekDir::Begin);
    target.Seek(32768, eSeekDir::Begin);
    source.CopyTo(target, 0);
    EXPECT_EQ(reports.errors().size(), 3u);
    target.Close();
    EXPECT_TRUE(folder.Read("file") == "ab" + std::string(32766, '\0') + std::string(200000 - 32768, 'x'));
}

template <class Stream, class Name>
void ExpectOpenedAgainByItsMode(const eTempFolder& folder, const Name& name) {
    Stream stream(name, Mode::Write | Mode::Create);
    stream.Write("abc", 3);
    stream.Open(Mode::Read);
    EXPECT_EQ(stream.Size(), 3u);
    EXPECT_EQ(stream.GetChar(), 'a');
    stream.Open(Mode::Write | Mode::Create);
    EXPECT_EQ(stream.Size(), 0u);
    stream.Open(name, Mode::Read);
    EXPECT_TRUE(stream.IsOpen());
    stream.Close();
    EXPECT_EQ(folder.Read("file"), "");
}

TEST(FileStream, OpensItsNameAgainInAnotherMode) {
    const eTempFolder folder;
    ExpectOpenedAgainByItsMode<IO::eFileStream>(folder, eFileName(folder.Name("file")));
    ExpectOpenedAgainByItsMode<IO::eFileStreamW>(folder, eFileNameW(folder.NameW(L"file")));
}

TEST(FileStream, OpeningAgainClosesWhatWasOpen) {
    const eTempFolder folder;
    eFile stream(folder.Name("first"), kNew);
    stream.Write(Pattern(40000).data(), 40000);
    stream << 'x';
    stream.Open(folder.Write("second", "0123"), Mode::Read);
    EXPECT_EQ(folder.Read("first"), Pattern(40000) + "x");
    EXPECT_EQ(stream.Position(), 0u);
    EXPECT_EQ(stream.Size(), 4u);
    EXPECT_EQ(stream.GetChar(), '0');
    stream.Open(folder.Name("missing"), Mode::Read);
    EXPECT_FALSE(stream.IsOpen());
    EXPECT_EQ(stream.Handle(), -1);
}

TEST(FileStream, AClosedStreamTouchesNothing) {
    const eTempFolder folder;
    const eReports reports;
    eFile stream(folder.Write("file", "0123456789"), kReadWrite | Mode::Errors);
    stream.Seek(4, eSeekDir::Begin);
    stream.Close();
    EXPECT_EQ(stream.Dump(), "FileStream '" + folder.Name("file") + "'(off:0, ptr:0, end:0, eos:0, buff:32768)");
    stream.Close();
    EXPECT_EQ(stream.GetInt32(), 0);
    stream << 1;
    stream.Write("x", 1);
    stream.Flush();
    stream.Fresh();
    stream.Trunc();
    EXPECT_EQ(reports.errors().size(), 3u);
    EXPECT_EQ(folder.Read("file"), "0123456789");
}

TEST(FileStream, CopiesBetweenFilesOfAnySizeAndPhase) {
    const eTempFolder folder;
    const std::string text = Pattern(200000);
    folder.Write("source", text);
    for (const int mode : {Mode::Read + 0, kReadWrite})
        for (const std::size_t from : {0u, 1u, 32768u, 100000u})
            for (const std::size_t before : {0u, 3u, 32768u})
                for (const std::size_t n : {0u, 1u, 32768u, 65536u, 70000u}) {
                    eFile source(folder.Name("source"), mode);
                    eFile target(folder.Name("target"), kNew);
                    source.Seek(from, eSeekDir::Begin);
                    target.Write(text.data(), before);
                    source.CopyTo(target, n);
                    const std::string copied = text.substr(from, n == 0 ? std::string::npos : n);
                    EXPECT_EQ(source.Position(), from + copied.size());
                    EXPECT_EQ(target.Position(), before + copied.size());
                    EXPECT_TRUE(source.Disabled(Mode::Bad));
                    if (!source.Eos()) {
                        EXPECT_EQ(source.GetChar(), text[from + copied.size()]);
                    }
                    target.Close();
                    EXPECT_TRUE(folder.Read("target") == text.substr(0, before) + copied)
                        << from << "," << before << "," << n;
                }
}

TEST(FileStream, CopiesIntoMemoryAndStopsWhereThereIsNoRoom) {
    const eTempFolder folder;
    const eReports reports;
    const std::string text = Pattern(200000);
    IO::eFileStream source(folder.Write("source", text), Mode::Read | Mode::Errors);
    IO::eMemoryStream memory(7);
    source.CopyTo(memory, 150000);
    EXPECT_TRUE(Content(memory) == text.substr(0, 150000));
    source.Reset();
    std::vector<unsigned char> bytes(70000);
    IO::eBufferStream view(bytes.data(), bytes.size(), bytes.size());
    source.CopyTo(view, 0);
    EXPECT_TRUE(std::string(bytes.begin(), bytes.end()) == text.substr(0, 70000));
    ASSERT_EQ(reports.errors().size(), 1u);
    EXPECT_EQ(reports.errors()[0].message, "Attempt to write beyond the stream!");
}

TEST(FileStream, FilesBeyond4GiB) {
    const eTempFolder folder;
    constexpr unsigned long long kFar = (5ull << 30) + 12345;
    {
        const eReports reports;
        eFile stream(folder.Name("file"), kNew);
        stream.Seek(kFar, eSeekDir::Begin);
        stream << 0x1122334455667788ll;
        EXPECT_EQ(stream.Position(), kFar + 8);
        EXPECT_EQ(stream.Size(), kFar + 8);
    }
    eFile stream(folder.Name("file"), Mode::Read);
    EXPECT_EQ(stream.Size(), kFar + 8);
    EXPECT_EQ(stream.GetInt64(), 0);
    stream.Seek(8, eSeekDir::End);
    EXPECT_EQ(stream.GetInt64(), 0x1122334455667788);
    stream.Seek(kFar - 4, eSeekDir::Begin);
    EXPECT_EQ(stream.GetInt64(), 0x5566778800000000);
    EXPECT_TRUE(stream.Disabled(Mode::Bad));
}

TEST(FileStream, DumpNamesTheFileWithForwardSlashes) {
    const eTempFolder folder;
    folder.Write("file", "0123456789");
    std::string backward = folder.Name("file");
    std::replace(backward.begin(), backward.end(), '/', '\\');
    eFile narrow(eFileName(backward), Mode::Read | Mode::Write);
    EXPECT_EQ(narrow.Dump(), "FileStream '" + folder.Name("file") + "'(off:0, ptr:0, end:32768, eos:10, buff:32768)");
    std::wstring wide = folder.NameW(L"file");
    std::replace(wide.begin(), wide.end(), L'/', L'\\');
    EXPECT_EQ(eFileW(eFileNameW(wide), Mode::Read).Dump(),
              "FileStream '" + folder.Name("file") + "'(off:0, ptr:0, end:10, eos:10, buff:10)");
}

TEST(FileStream, GetStreamOpensWhatBackSlashesName) {
    const eTempFolder folder;
    folder.Write("file", "0123456789");
    std::string backward = folder.Name("file");
    std::replace(backward.begin(), backward.end(), '/', '\\');
    eMemory encoded;
    encoded << backward.c_str();
    encoded.Reset();
    eFileName name;
    encoded >> name;
    const std::unique_ptr<IO::eStream> stream(IO::GetStream(name, 1));
    ASSERT_TRUE(stream->IsOpen());
    EXPECT_EQ(stream->GetChar(), '0');
    const std::unique_ptr<IO::eStream> wide(IO::GetStream(eFileNameW(folder.NameW(L"file")), 1));
    EXPECT_EQ(wide->GetChar(), '0');
    const std::unique_ptr<IO::eStream> missing(IO::GetStream(eFileName(folder.Name("missing")), 1));
    ASSERT_NE(missing, nullptr);
    EXPECT_FALSE(missing->IsOpen());
}

TEST(FileStream, WideNamesReachTheirFiles) {
    const eTempFolder folder;
    const std::wstring name = folder.NameW(L"\x17Elu\x165 \x65E5\x672C \U0001F600");
    {
        eFileW stream(name, kNew);
        ASSERT_TRUE(stream.IsOpen());
        stream << 'x';
    }
    EXPECT_TRUE(std::filesystem::exists(folder.Path() / u8"\u017Elu\u0165 \u65E5\u672C \U0001F600"));
    EXPECT_EQ(eFileW(name, Mode::Read).GetChar(), 'x');
}

TEST(FileStream, WriteStrWritesCharactersAlone) {
    const eTempFolder folder;
    {
        eFile stream(folder.Name("file"), kNew);
        stream.WriteStr("abc");
        stream.WriteStr("");
        stream.WriteStr(nullptr);
        static_cast<IO::eFileStream&>(stream) << Mark << Mark;
        stream << 'z';
    }
    EXPECT_EQ(folder.Read("file"), "abc!!z");
    {
        eFileW stream(folder.NameW(L"file"), kNew);
        stream.WriteStr(L"a\x20AC\U0001F600");
        stream.WriteStr(nullptr);
        static_cast<IO::eFileStreamW&>(stream) << MarkW;
    }
    EXPECT_EQ(folder.Read("file"), "a\0\xAC\x20\x3D\xD8\x00\xDE!"s);
}

TEST(FileStream, LinesComeWithoutTheirEnds) {
    const eTempFolder folder;
    eFile stream(folder.Write("file", "ab\r\nc"), Mode::Read);
    EXPECT_EQ(stream.GetLineLength(), 4u);
    EXPECT_EQ(stream.GetLineLength(), 4u);
    EXPECT_EQ(stream.GetLine(), "ab");
    EXPECT_FALSE(stream.Eos());
    EXPECT_EQ(stream.GetLineLength(), 1u);
    EXPECT_EQ(stream.GetLine(), "c");
    EXPECT_EQ(stream.GetLineLength(), 0u);
    EXPECT_EQ(stream.GetLine(), "");
    EXPECT_TRUE(stream.Eos());
    eFile inner(folder.Write("file", "\r\na\rb\r\r\n\n\0x"s), Mode::Read);
    EXPECT_EQ(inner.GetLine(), "");
    EXPECT_EQ(inner.GetLine(), "ab");
    EXPECT_EQ(inner.GetLine(), "");
    EXPECT_EQ(inner.GetLine(), "\0x"s);
}

TEST(FileStream, LinesAreWholeAcrossRefillsAndBeyondTheBuffer) {
    const eTempFolder folder;
    for (const std::size_t length : {32766u, 32767u, 32768u, 32769u, 65535u, 65536u, 65537u, 150000u}) {
        const std::string line = Pattern(length);
        eFile stream(folder.Write("file", line + "\n" + line + "\r\nlast"), Mode::Read);
        EXPECT_EQ(stream.GetLineLength(), length + 1) << length;
        EXPECT_EQ(stream.Position(), 0u);
        EXPECT_TRUE(stream.GetLine() == line) << length;
        EXPECT_EQ(stream.GetLineLength(), length + 2) << length;
        EXPECT_EQ(stream.Position(), length + 1);
        EXPECT_TRUE(stream.GetLine() == line) << length;
        EXPECT_EQ(stream.GetLine(), "last");
        EXPECT_TRUE(stream.Eos());
        stream.Reset();
        EXPECT_TRUE(stream.GetLine('\n') == line) << length;
        EXPECT_TRUE(stream.GetLine('\n') == line + "\r") << length;
        EXPECT_EQ(stream.GetLine('\n'), "last");
    }
}

TEST(FileStream, ALineThatCrossesTheEndOfTheBufferMovesToItsStart) {
    const eTempFolder folder;
    struct eRow {
        std::size_t start, length; // of the line, without its line feed
        bool more;                 // data follow
        std::string state;
    };
    const eRow rows[] = {
        {32701, 200, true, "(off:32701, ptr:201, end:32768, eos:50201, buff:32768)"},
        {32701, 66, true, "(off:0, ptr:32768, end:32768, eos:82768, buff:32768)"},
        {32701, 67, true, "(off:32701, ptr:68, end:32768, eos:50068, buff:32768)"},
        {32701, 200, false, "(off:32701, ptr:200, end:32768, eos:200, buff:32768)"},
        {32701, 67, false, "(off:0, ptr:32768, end:32768, eos:32768, buff:32768)"},
        {1, 32767, true, "(off:1, ptr:32768, end:32768, eos:82768, buff:32768)"},
        {32768, 5, true, "(off:32768, ptr:6, end:32768, eos:50006, buff:32768)"},
    };
    for (const eRow& row : rows) {
        const std::string before = std::string(row.start - 1, 'a') + "\n";
        const std::string text =
            before + std::string(row.length, 'b') + (row.more ? "\n" + std::string(50000, 'c') : "");
        eFile stream(folder.Write("file", text), Mode::Read);
        EXPECT_EQ(stream.GetLine().size(), row.start - 1);
        EXPECT_TRUE(stream.GetLine() == std::string(row.length, 'b'));
        EXPECT_EQ(stream.Dump(), "FileStream '" + folder.Name("file") + "'" + row.state);
        eFile measured(folder.Name("file"), Mode::Read);
        measured.GetLine();
        EXPECT_EQ(measured.GetLineLength(), row.length + (row.more ? 1 : 0));
        EXPECT_EQ(measured.Position(), row.start);
        EXPECT_TRUE(measured.GetLine() == std::string(row.length, 'b'));
        EXPECT_EQ(measured.Dump(), stream.Dump());
    }
}

TEST(FileStream, AFileThatShrinksMeanwhileGivesWhatIsLeftOfItAndIsBad) {
    const eTempFolder folder;
    const eReports reports;
    for (const std::size_t piece : {200000u, 20000u}) {
        IO::eFileStream stream(folder.Write("file", Pattern(200000)), Mode::Read | Mode::Errors);
        folder.Write("file", Pattern(40000));
        std::string read(200000, '?');
        for (std::size_t at = 0; at < read.size(); at += piece)
            stream.Read(read.data() + at, piece);
        EXPECT_TRUE(read == Pattern(40000) + std::string(160000, '?')) << piece;
        EXPECT_EQ(stream.Position(), 40000u);
        EXPECT_TRUE(stream.Enabled(Mode::Bad)) << piece;
        EXPECT_EQ(stream.Failure().text, "The file is shorter than when it was opened.");
        EXPECT_EQ(stream.Failure().number, 0);
    }
    EXPECT_TRUE(reports.errors().empty());
}

TEST(FileStream, WriteReleasingWritesWhatTheBlockHeld) {
    const eTempFolder folder;
    const std::string text = Pattern(5'000'001);
    for (const std::size_t size : {0u, 1u, 40000u, 5'000'000u, 5'000'001u}) {
        std::string block = text;
        eFile file(folder.Name("file"), Mode::Write | Mode::Create);
        file << 'a';
        file.WriteReleasing(block.data(), size);
        file << 'z';
        file.Close();
        EXPECT_TRUE(folder.Read("file") == "a" + text.substr(0, size) + "z") << size;
    }
}

TEST(FileStream, WriteReleasingOfOtherStreamsLeavesTheBlockAsItIs) {
    const std::string text = Pattern(5'000'001);
    std::string block = text;
    IO::eMemoryStream stream;
    stream.WriteReleasing(block.data(), block.size());
    EXPECT_TRUE(Content(stream) == text);
    EXPECT_TRUE(block == text);
}
