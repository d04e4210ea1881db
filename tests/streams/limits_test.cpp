// SPDX-License-Identifier: BSL-1.0
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include <qzl_io/streams.h>

#include "probe.h"
#include "support/reports.h"
#include "support/temp_folder.h"

using namespace std::string_literals;

namespace {

using eNone = IO::eStreamLimits;

constexpr char kReadBeyondLimit[] = "Attempt to read beyond the limit!";

std::string ListOf(char count, const std::string& texts) {
    return std::string(1, count) + std::string(7, '\0') + texts;
}

// The same bytes in memory, and in a file at a place where the buffer ends among them.
class StreamLimits : public testing::TestWithParam<bool> {
protected:
    IO::eStream& Holding(const std::string& bytes) {
        reports.Clear();
        if (!GetParam()) {
            memory = ::Holding(bytes);
            return memory;
        }
        constexpr std::size_t kBeforeBufferEnd = 0x10000 - 3;
        file.Open(eFileName(folder.Write("bytes", std::string(kBeforeBufferEnd, 'x') + bytes)), IO::StreamMode::Read);
        file.Enable(IO::StreamMode::Errors);
        file.Seek(0, IO::eSeekDir::Begin);
        std::string before(kBeforeBufferEnd, '\0');
        file.Read(before.data(), before.size());
        return file;
    }

    eReports reports;
    const eTempFolder folder;
    eMemory memory;
    IO::eFileStream file;
};

TEST_P(StreamLimits, ATextOrAListWithinTheLimitIsReadAndALongerOneIsReportedAndNotRead) {
    struct eRow {
        std::string bytes;
        IO::eStreamLimits limits;
        std::vector<std::string> texts;
        unsigned long long passed; // bytes
        bool exceeds;
    };
    const eRow texts[] = {
        {"\3abc9", {}, {"abc"}, 4, false},
        {"\3abc9", {.textBytes = 3}, {"abc"}, 4, false},
        {"\3abc9", {.textBytes = 2}, {""}, 1, true},
        {"\0abc9"s, {.textBytes = 0}, {""}, 1, false},
        {"\1abc9", {.textBytes = 0}, {""}, 1, true},
        {"\xFF\xFF\0\0"s + std::string(256, 'y'), {.textBytes = 255}, {std::string(255, 'y')}, 259, false},
        {"\xFF\xFF\0\0"s + std::string(256, 'y'), {.textBytes = 254}, {""}, 4, true},
        {"\xFE" + std::string(256, 'y'), {.textBytes = 254}, {std::string(254, 'y')}, 255, false},
        {"\xFE" + std::string(256, 'y'), {.textBytes = 253}, {""}, 1, true},
    };
    for (const eRow& row : texts) {
        IO::eStream& stream = Holding(row.bytes);
        stream.SetLimits(row.limits);
        const unsigned long long begin = stream.Position();
        std::string text = "before";
        stream >> text;
        EXPECT_EQ(text, row.texts[0]) << row.bytes;
        EXPECT_EQ(stream.Position() - begin, row.passed) << row.bytes;
        EXPECT_EQ(stream.Enabled(IO::StreamMode::Bad), row.exceeds) << row.bytes;
        EXPECT_EQ(MessagesOf(reports.errors()), std::vector<std::string>(row.exceeds, kReadBeyondLimit)) << row.bytes;
    }
    const eRow lists[] = {
        {ListOf(2, "\1a\2bc9"), {.listBytes = 13}, {"a", "bc"}, 13, false},
        {ListOf(2, "\1a\2bc9"), {.listBytes = 12}, {"a"}, 11, true},
        {ListOf(2, "\1a\2bc9"), {.listBytes = 10}, {"a"}, 11, true},
        {ListOf(2, "\1a\2bc9"), {.listBytes = 9}, {}, 8, true},
        {ListOf(2, "\1a\2bc9"), {.listBytes = 7}, {}, 8, true},
        {ListOf(0, "9"), {.listBytes = 8}, {}, 8, false},
        {ListOf(2, "\1a\2bc9"), {.textBytes = 2, .listBytes = eNone::kNone}, {"a", "bc"}, 13, false},
        {ListOf(2, "\1a\2bc9"), {.textBytes = 1, .listBytes = eNone::kNone}, {"a"}, 11, true},
        {std::string(8, '\xFF') + "\1a\2bc9", {.listBytes = 1000}, {}, 8, true},
    };
    for (const eRow& row : lists) {
        IO::eStream& stream = Holding(row.bytes);
        stream.SetLimits(row.limits);
        const unsigned long long begin = stream.Position();
        eStrings read;
        stream >> read;
        std::vector<std::string> got;
        for (const eStringKey& text : read)
            got.push_back(text.str());
        EXPECT_EQ(got, row.texts) << row.bytes << row.limits.listBytes;
        EXPECT_EQ(stream.Position() - begin, row.passed) << row.limits.listBytes;
        EXPECT_EQ(stream.Enabled(IO::StreamMode::Bad), row.exceeds) << row.limits.listBytes;
        EXPECT_EQ(MessagesOf(reports.errors()), std::vector<std::string>(row.exceeds, kReadBeyondLimit));
    }
}

TEST_P(StreamLimits, AWideTextCountsTwoBytesForEachUnit) {
    for (const auto& [most, exceeds] : {std::pair{6ULL, false}, {5ULL, true}}) {
        IO::eStream& stream = Holding("\3a\0b\0c\0009"s);
        stream.SetLimits({.textBytes = most});
        const unsigned long long begin = stream.Position();
        std::wstring text = L"before";
        stream >> text;
        EXPECT_EQ(text, exceeds ? L"" : L"abc");
        EXPECT_EQ(stream.Position() - begin, exceeds ? 1u : 7u);
        EXPECT_EQ(MessagesOf(reports.errors()), std::vector<std::string>(exceeds, kReadBeyondLimit));
    }
}

TEST_P(StreamLimits, ALineEndsWithAReportWhereItExceedsTheLimit) {
    struct eRow {
        unsigned long long most;
        std::string line;
        unsigned long long passed;
    };
    const eRow rows[] = {
        {eNone::kNone, "abcde", 6}, {6, "abcde", 6}, {5, "abcde", 6}, {4, "abcd", 4}, {1, "a", 1}, {0, "", 0}};
    for (const eRow& row : rows) {
        IO::eStream& stream = Holding("abcde;f;g");
        stream.SetLimits({.textBytes = row.most});
        const unsigned long long begin = stream.Position();
        EXPECT_EQ(stream.GetLine(';'), row.line) << row.most;
        EXPECT_EQ(stream.Position() - begin, row.passed) << row.most;
        EXPECT_EQ(MessagesOf(reports.errors()), std::vector<std::string>(row.most < 5, kReadBeyondLimit)) << row.most;
    }
}

TEST_P(StreamLimits, WithoutErrorsOnlyBadTells) {
    IO::eStream& stream = Holding("\3abc9");
    stream.SetLimits({.textBytes = 2});
    stream.Disable(IO::StreamMode::Errors);
    EXPECT_EQ(stream.GetString(), "");
    EXPECT_TRUE(stream.Enabled(IO::StreamMode::Bad));
    EXPECT_TRUE(reports.errors().empty());
}

TEST_P(StreamLimits, CanBeChangedBetweenTwoTexts) {
    IO::eStream& stream = Holding("\3abc\3def\3ghi9");
    stream.SetLimits({.textBytes = 3});
    EXPECT_EQ(stream.GetString(), "abc");
    stream.SetLimits({});
    EXPECT_EQ(stream.GetString(), "def");
    stream.SetLimits({.textBytes = 1});
    EXPECT_EQ(stream.GetString(), "");
    EXPECT_EQ(reports.errors().size(), 1u);
}

INSTANTIATE_TEST_SUITE_P(MemoryOrFile, StreamLimits, testing::Bool());

TEST(LimitsOfAStream, ArePassedOnToCopiesAndStayWhenAFileStreamOpensAnotherFile) {
    const eReports reports;
    eMemory stream = Holding("\3abc9");
    stream.SetLimits({.textBytes = 2, .listBytes = 20});
    const eMemory copy(stream);
    EXPECT_EQ(copy.Limits().textBytes, 2u);
    EXPECT_EQ(copy.Limits().listBytes, 20u);
    const eMemory moved(std::move(stream));
    EXPECT_EQ(moved.Limits().textBytes, 2u);
    eMemory assigned;
    assigned = moved;
    EXPECT_EQ(assigned.GetString(), "");
    EXPECT_EQ(reports.errors().size(), 1u);

    const eTempFolder folder;
    IO::eFileStream file;
    file.SetLimits({.textBytes = 2});
    file.Open(eFileName(folder.Write("a", "\3abc")), IO::StreamMode::Read);
    EXPECT_EQ(file.GetString(), "");
    file.Open(eFileName(folder.Write("b", "\3abc")), IO::StreamMode::Read);
    EXPECT_EQ(file.GetString(), "");
    EXPECT_TRUE(file.Enabled(IO::StreamMode::Bad));
}

TEST(LimitsOfAStream, AreOffUnlessSet) {
    const IO::eMemoryStream stream;
    EXPECT_EQ(stream.Limits().textBytes, eNone::kNone);
    EXPECT_EQ(stream.Limits().listBytes, eNone::kNone);
}

} // namespace
