// SPDX-License-Identifier: BSL-1.0
#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <qzl_io/streams.h>

#include "probe.h"
#include "support/content.h"
#include "support/reports.h"
#include "support/temp_folder.h"

// What streams tell of bytes that did not arrive, and the context of their reports.

namespace Mode = IO::StreamMode;

namespace {

constexpr char kNoRoom[] = "The stream had no room for all bytes.";

void ExpectNoFailure(const IO::eStream& stream) {
    const IO::eFailure failure = stream.Failure();
    EXPECT_FALSE(failure) << failure.text;
    EXPECT_EQ(failure.number, 0);
    EXPECT_EQ(failure.text, "");
}

// The context of the only report.
std::string ContextOf(const std::function<void()>& action) {
    const eReports reports;
    action();
    EXPECT_EQ(reports.errors().size(), 1u);
    return reports.errors().empty() ? "" : reports.errors()[0].context;
}

} // namespace

// --- Failure ---

TEST(Failure, SaysNothingWhenEveryByteHasArrived) {
    const eTempFolder folder;
    const std::string text(100'000, 'x');
    IO::eFileStream file(folder.Name("file"), Mode::Read | Mode::Write);
    file << 1 << "text" << std::wstring(L"wide");
    file.Write(text.data(), text.size());
    file.Seek(5, IO::eSeekDir::Begin);
    file.Flush();
    ExpectNoFailure(file);
    file.Trunc();
    file.Close();
    ExpectNoFailure(file);
    file.Open(folder.Name("file"), Mode::Read);
    file.GetInt32();
    ExpectNoFailure(file);
    IO::eMemoryStream memory(16, 4);
    memory << 1ull << std::string(100, 'x');
    ExpectNoFailure(memory);
    ExpectNoFailure(IO::eFileStream());
}

TEST(Failure, TellsWhyAFileCouldNotBeOpenedUntilTheStreamIsOpenedAgain) {
    const eTempFolder folder;
    folder.Write("file", "0123");
    const auto check = [](const IO::eStream& stream) {
        const IO::eFailure failure = stream.Failure();
        EXPECT_TRUE(failure);
        EXPECT_NE(failure.number, 0);
        EXPECT_TRUE(failure.text.starts_with("The file could not be opened: ")) << failure.text;
        EXPECT_TRUE(failure.text.ends_with(".") && !failure.text.ends_with("..")) << failure.text;
    };
    IO::eFileStream stream(folder.Name("missing"), Mode::Read);
    check(stream);
    check(IO::eFileStreamW(folder.NameW(L"missing"), Mode::Read));
    check(IO::eFileStream(folder.Name("no/such/folder"), Mode::Write));
    stream.Open(folder.Name("file"), Mode::Read);
    EXPECT_TRUE(stream.IsOpen());
    ExpectNoFailure(stream);
}

TEST(Failure, TellsOfBytesWithoutRoomHoweverTheyAreWritten) {
    const eReports reports;
    struct eRow {
        const char* what;
        unsigned long long room;
        std::function<void(IO::eStream&)> write;
    };
    const std::string ten(10, 'x');
    for (const eRow& row : {
             eRow{"a value", 7, [](IO::eStream& stream) { stream << 1ull; }},
             eRow{"a value that is wholly outside", 4, [](IO::eStream& stream) { stream << 1 << 'c'; }},
             eRow{"three bytes", 2, [](IO::eStream& stream) { stream.Bytes(3, 7); }},
             eRow{"a text", 10, [&](IO::eStream& stream) { stream << ten; }},
             eRow{"a wide text", 10, [](IO::eStream& stream) { stream << std::wstring(5, L'x'); }},
             eRow{"a block", 9, [&](IO::eStream& stream) { stream.Write(ten.data(), ten.size()); }},
             eRow{"a copy", 9,
                  [&](IO::eStream& stream) {
                      IO::eBufferStream source(ten);
                      source.CopyTo(stream, 0);
                  }},
         }) {
        SCOPED_TRACE(row.what);
        std::vector<unsigned char> bytes(row.room + 1);
        IO::eBufferStream full(bytes.data(), row.room, 0);
        full.Clear();
        row.write(full);
        EXPECT_EQ(full.Failure().text, kNoRoom);
        EXPECT_EQ(full.Failure().number, 0);
        IO::eBufferStream enough(bytes.data(), row.room + 1, 0);
        enough.Clear();
        row.write(enough);
        ExpectNoFailure(enough);
    }
}

TEST(Failure, TellsOfASubclassesValueThatHasNoRoom) {
    const eReports reports;
    std::vector<unsigned char> bytes(4);
    eView view(bytes.data(), 4, 0);
    view.Place(4);
    ExpectNoFailure(view);
    view.Place(1);
    EXPECT_EQ(view.Failure().text, kNoRoom);
}

TEST(Failure, ReadingBeyondTheDataIsNone) {
    const eReports reports;
    IO::eMemoryStream stream;
    char bytes[8] = {};
    stream.Read(bytes, sizeof bytes);
    stream.GetInt64();
    EXPECT_TRUE(stream.Enabled(Mode::Bad));
    ExpectNoFailure(stream);
}

TEST(Failure, IsTheFirstOneUntilBadIsDisabled) {
    const eReports reports;
    IO::eMemoryStream stream(0, 0);
    stream << 1;
    EXPECT_TRUE(stream.Enabled(Mode::Bad));
    EXPECT_EQ(stream.Failure().text, kNoRoom);
    stream.Disable(Mode::Errors);
    EXPECT_TRUE(stream.Failure());
    stream.Disable(Mode::Bad | Mode::Errors);
    ExpectNoFailure(stream);
    stream << 1;
    EXPECT_TRUE(stream.Failure());
}

TEST(Failure, IsToldByCopiesAndGoesWithAMovedStream) {
    const eTempFolder folder;
    IO::eFileStream missing(folder.Name("missing"), Mode::Read);
    const std::string text = missing.Failure().text;
    const IO::eFileStream copy(missing);
    EXPECT_EQ(copy.Failure().text, text);
    const IO::eFileStream moved(std::move(missing));
    EXPECT_EQ(moved.Failure().text, text);
    ExpectNoFailure(missing);
    IO::eFileStream assigned;
    assigned = copy;
    EXPECT_EQ(assigned.Failure().text, text);
}

TEST(Failure, TellsThatAFileOpenForReadingTakesNoBytes) {
    const eTempFolder folder;
    IO::eFileStream stream(folder.Write("file", "0123456789"), Mode::Read);
    stream << 'x';
    ExpectNoFailure(stream);
    stream.Close();
    EXPECT_EQ(stream.Failure().text, "The file is open for reading alone, and takes no bytes.");
    EXPECT_TRUE(stream.Disabled(Mode::Bad));
    EXPECT_EQ(folder.Read("file"), "0123456789");
}

namespace {

// A stream of an application, over a line that breaks after some bytes.
class eLine : public IO::eStream {
public:
    eLine() {
        UseBuffer(bytes, sizeof bytes, 0);
        flags = Mode::Write | Mode::Errors;
    }
    void Flush() override {
        Lose("The line is broken", 0);
        eStream::Flush();
    }
    unsigned char bytes[4] = {};
};

} // namespace

TEST(Failure, IsMadeKnownByAStreamOfAnApplication) {
    const eReports reports;
    eLine line;
    line << 'a' << 'b';
    ExpectNoFailure(line);
    line.Seek(0, IO::eSeekDir::Begin);
    EXPECT_EQ(line.Failure().text, "The line is broken.");
    EXPECT_TRUE(line.Enabled(Mode::Bad));
    EXPECT_TRUE(reports.errors().empty());
}

// --- Contexts of reports ---

TEST(StreamReports, DescribeTheStreamInTheirContext) {
    const eTempFolder folder;
    const std::string name = folder.Write("file", "0123456789");
    EXPECT_EQ(ContextOf([] {
                  IO::eMemoryStream stream;
                  stream << 1;
                  stream.Read(nullptr, 1);
              }),
              "MemoryStream(off:0, ptr:4, end:256, eos:4, buff:256)\n");
    EXPECT_EQ(ContextOf([] {
                  unsigned char bytes[4] = {};
                  IO::eBufferStream stream(bytes, 4, 4);
                  stream.GetInt32();
              }),
              "BufferStream(off:0, ptr:4, end:4, eos:4, buff:4)\n");
    EXPECT_EQ(ContextOf([&] {
                  IO::eFileStream stream(name, Mode::Read | Mode::Errors);
                  char bytes[11] = {};
                  stream.Read(bytes, sizeof bytes);
              }),
              "FileStream '" + name + "'(off:0, ptr:10, end:10, eos:10, buff:10)\n");
}

TEST(StreamReports, TellWhatHasFailedBefore) {
    EXPECT_EQ(ContextOf([] {
                  unsigned char bytes[4] = {};
                  IO::eBufferStream stream(bytes, 4, 4);
                  stream.Disable(Mode::Errors);
                  stream.Seek(0, IO::eSeekDir::End);
                  stream << 1;
                  stream.Enable(Mode::Errors);
                  stream.Read(bytes, 1);
              }),
              std::string("BufferStream(off:0, ptr:8, end:4, eos:8, buff:4)\n") + kNoRoom + "\n");
}

// Opening is repeated while the report returns; meanwhile the handler creates the file.
TEST(StreamReports, OfAFileThatCannotBeOpenedNameItAndTheReason) {
    const eTempFolder folder;
    const auto check = [&folder](const std::string& file, const auto& open) {
        std::vector<xError::eReport> reports;
        auto previous = xError::SetErrorHandler([&](const xError::eReport& report) {
            reports.push_back(report);
            folder.Write(file, "0123");
        });
        open();
        xError::SetErrorHandler(std::move(previous));
        ASSERT_EQ(reports.size(), 1u);
        EXPECT_EQ(reports[0].message, folder.Name(file) + " - open error!");
        const std::string expected = "FileStream '" + folder.Name(file) +
                                     "'(off:0, ptr:0, end:0, eos:0, buff:0)\nThe file could not be opened: ";
        EXPECT_EQ(reports[0].context.substr(0, expected.size()), expected);
        EXPECT_GT(reports[0].context.size(), expected.size() + 2);
    };
    check("narrow", [&] { EXPECT_TRUE(IO::eFileStream(folder.Name("narrow"), Mode::Read | Mode::Errors).IsOpen()); });
    check("wide", [&] { EXPECT_TRUE(IO::eFileStreamW(folder.NameW(L"wide"), Mode::Read | Mode::Errors).IsOpen()); });
}

// --- Reports that nothing may lose ---

TEST(StreamReports, ATextThatCannotBeWrittenIsOne) {
    for (const std::size_t length : {1u, 254u, 255u, 300u}) {
        const eReports reports;
        IO::eMemoryStream stream(0, 0);
        stream << std::string(length, 'x');
        EXPECT_EQ(MessagesOf(reports.errors()), std::vector<std::string>{"Attempt to write beyond the stream!"})
            << length;
        stream << std::wstring(length, L'x');
        EXPECT_EQ(reports.errors().size(), 2u) << length;
        EXPECT_EQ(stream.Position(), 0u);
        EXPECT_EQ(stream.Failure().text, kNoRoom);
    }
}

namespace {

class eThrowingSource : public IO::eMemoryStream {
public:
    IO::eStream& Skip(unsigned long long) override { throw std::runtime_error("Skip"); }
};

// A view of the bytes from position 10 on.
class eLaterView : public IO::eBufferStream {
public:
    eLaterView(const unsigned char* bytes, unsigned long long n) : IO::eBufferStream(bytes, n, n) { offset = 10; }
    void Trunc() override { throw std::runtime_error("Trunc"); }
};

template <class Action>
void ExpectReportThenThrow(const char* message, const char* thrown, Action action) {
    const eReports reports;
    try {
        action();
        ADD_FAILURE() << "nothing thrown";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), thrown);
    }
    EXPECT_EQ(MessagesOf(reports.errors()), std::vector<std::string>{message});
}

} // namespace

TEST(StreamReports, OfACopysTargetAreMadeEvenIfTheSourceThrows) {
    unsigned char bytes[4] = {};
    IO::eBufferStream target(bytes, 4, 4);
    eThrowingSource source;
    source << 1ull;
    source.Reset();
    ExpectReportThenThrow("Attempt to write beyond the stream!", "Skip", [&] { source.CopyTo(target, 8); });
    EXPECT_EQ(target.Position(), 4u);
}

TEST(StreamReports, OfAMoveBeforeTruncAreMadeEvenIfTruncThrows) {
    const unsigned char bytes[4] = {};
    eLaterView view(bytes, sizeof bytes);
    ExpectReportThenThrow("Attempt to write beyond the stream!", "Trunc", [&] { view.Clear(); });
}
