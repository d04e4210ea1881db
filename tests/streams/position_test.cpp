// SPDX-License-Identifier: BSL-1.0
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <qzl_base/error.h>
#include <qzl_io/streams.h>

#include "probe.h"
#include "support/reports.h"
#include "support/temp_folder.h"

// Positions outside the data: what is reported there, and how a stream returns.

using IO::eSeekDir;
using IO::eStream;
namespace Mode = IO::StreamMode;

namespace {

using u64 = unsigned long long;
using eTexts = std::vector<std::string>;

constexpr u64 kHalf = 1ull << 63;
constexpr char kInvalidSeek[] = "Invalid seek location!";

// The file's name contains what stands for an argument in a format.
eFile TenBytes(const eTempFolder& folder, int mode) {
    return eFile(folder.Write("a%1%b.bin", "0123456789"), mode);
}

std::string PlaceBufferReport(const eTempFolder& folder, const std::string& state) {
    return "Stream.PlaceBuffer: FileStream '" + folder.Name("a%1%b.bin") + "'" + state;
}

} // namespace

TEST(Position, MoreThanTwoToThe63BeyondTheSizeIsBeforeTheStart) {
    struct eRow {
        u64 position;
        bool beyond;
    };
    const eRow rows[] = {
        {10, false},        {11, true},          {kHalf - 1, true},        {kHalf, true},
        {kHalf + 10, true}, {kHalf + 11, false}, {3 * (kHalf / 2), false}, {0 - 11ull, false},
        {0 - 1ull, false},
    };
    const std::vector<std::pair<const char*, std::function<void(eStream&, u64)>>> ways = {
        {"from the start", [](eStream& stream, u64 to) { stream.Seek(to, eSeekDir::Begin); }},
        {"on", [](eStream& stream, u64 to) { stream.Seek(to - 4, eSeekDir::Current); }},
        {"back from the end", [](eStream& stream, u64 to) { stream.Seek(10 - to, eSeekDir::End); }},
        {"skipped", [](eStream& stream, u64 to) { stream.Skip(to - 4); }},
    };
    for (const auto& [way, move] : ways) {
        for (const eRow& row : rows) {
            const eReports reports;
            eMemory stream = Holding("0123456789");
            stream.Seek(4, eSeekDir::Begin);
            move(stream, row.position);
            EXPECT_EQ(stream.Position(), row.position) << way;
            EXPECT_EQ(stream.Size(), 10u) << way;
            EXPECT_EQ(stream.Enabled(Mode::Bad), row.beyond) << way << ", " << row.position;
            EXPECT_EQ(MessagesOf(reports.errors()), row.beyond ? eTexts{kInvalidSeek} : eTexts{})
                << way << ", " << row.position;
            EXPECT_EQ(stream.Eos(), row.beyond || row.position == 10) << way << ", " << row.position;
            stream.Reset();
            EXPECT_EQ(stream.GetChar(), '0') << way << ", " << row.position;
        }
    }
}

TEST(Position, WithoutErrorsAFileReportsOnlyThatItsBufferWentAstray) {
    struct eRow {
        u64 argument;
        eSeekDir dir;
        bool bad;
        const char* state;
    };
    const eRow rows[] = {
        {11, eSeekDir::Begin, true, "(off:0, ptr:11, end:10, eos:10, buff:10)"},
        {7, eSeekDir::Current, true, "(off:0, ptr:11, end:10, eos:10, buff:10)"},
        {11, eSeekDir::End, false, "(off:0, ptr:-1, end:10, eos:10, buff:10)"},
        {0 - 5ull, eSeekDir::Current, false, "(off:0, ptr:-1, end:10, eos:10, buff:10)"},
        {kHalf, eSeekDir::Begin, true, "(off:0, ptr:-9223372036854775808, end:10, eos:10, buff:10)"},
    };
    for (const eRow& row : rows) {
        const eTempFolder folder;
        const eReports reports;
        eFile file = TenBytes(folder, Mode::Read);
        file.Seek(4, eSeekDir::Begin);
        file.Seek(row.argument, row.dir);
        EXPECT_EQ(MessagesOf(reports.errors()), eTexts{PlaceBufferReport(folder, row.state)});
        EXPECT_EQ(file.Enabled(Mode::Bad), row.bad) << row.state;
        file.Seek(3, eSeekDir::Begin);
        EXPECT_EQ(file.GetChar(), '3') << row.state;
        EXPECT_EQ(reports.errors().size(), 1u) << row.state;
    }
}

TEST(Position, BeforeTheStartOfAFileIsShownAsANegativeOffset) {
    const eTempFolder folder;
    const eReports reports;
    eFile file = TenBytes(folder, Mode::Read | Mode::Write);
    file.Seek(11, eSeekDir::End);
    EXPECT_EQ(file.Dump().substr(file.Dump().find("'(") + 1), "(off:-1, ptr:0, end:32768, eos:11, buff:32768)");
    EXPECT_EQ(file.Position(), 0 - 1ull);
    EXPECT_EQ(file.Size(), 10u);
}

TEST(Position, WithErrorsAFileReportsTheMoveThenTheBufferThenTheRead) {
    const eTempFolder folder;
    const eReports reports;
    eFile file = TenBytes(folder, Mode::Read | Mode::Errors);
    file.Seek(11, eSeekDir::Begin);
    const std::string astray = PlaceBufferReport(folder, "(off:0, ptr:11, end:10, eos:10, buff:10)");
    EXPECT_EQ(MessagesOf(reports.errors()), (eTexts{kInvalidSeek, astray, "Invalid read location!"}));
}

TEST(Position, AFileIsReadOnAfterAReportThatThrew) {
    for (const int mode : {Mode::Read + 0, Mode::Read | Mode::Write, Mode::Read | Mode::Write | Mode::Errors}) {
        for (const eSeekDir dir : {eSeekDir::Begin, eSeekDir::End}) {
            const eTempFolder folder;
            const eReports reports(eReports::Throws);
            eFile file = TenBytes(folder, mode);
            EXPECT_THROW(file.Seek(dir == eSeekDir::Begin ? 40000 : 11, dir), xError::eException) << mode;
            EXPECT_EQ(file.Size(), 10u) << mode;
            file.Seek(3, eSeekDir::Begin);
            EXPECT_EQ(file.Position(), 3u) << mode;
            EXPECT_EQ(file.GetChar(), '3') << mode;
            EXPECT_EQ(file.Bytes(2), 0x3534u) << mode;
            EXPECT_EQ(reports.errors().size(), 1u) << mode;
        }
    }
}

TEST(Position, ABufferStreamReportsASkipPastItsBytesAndThenItsOverflow) {
    struct eRow {
        u64 n;
        eTexts reports;
    };
    for (const eRow& row : {eRow{8, {}}, eRow{9, {kInvalidSeek, "Attempt to write beyond the stream!"}}}) {
        const eReports reports;
        unsigned char bytes[8] = {};
        IO::eBufferStream stream(bytes, 8, 8);
        stream.Skip(row.n);
        EXPECT_EQ(MessagesOf(reports.errors()), row.reports);
        EXPECT_EQ(stream.Position(), row.n);
        EXPECT_EQ(stream.Enabled(Mode::Bad), row.n > 8);
    }
}
