// SPDX-License-Identifier: BSL-1.0
#include <gtest/gtest.h>

#include <algorithm>
#include <concepts>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include <qzl_io/streams.h>

#include "probe.h"
#include "support/content.h"
#include "support/reports.h"
#include "support/temp_folder.h"

// Reading that notices where the data end: Remaining, TryGet, and transactions.

namespace Mode = IO::StreamMode;

namespace {

template <class T>
concept eTriable = requires(IO::eStream& stream, T& value) {
    { stream.TryGet(value) } -> std::same_as<bool>;
};
template <class... Types>
constexpr bool AreTriable() {
    return (... && eTriable<Types>);
}
static_assert(AreTriable<bool, char, unsigned char, short, unsigned short, int, unsigned int, long long,
                         unsigned long long, float, double, std::int64_t, std::uint64_t>());
static_assert(!eTriable<signed char> && !eTriable<wchar_t> && !eTriable<char32_t> && !eTriable<std::string> &&
              !eTriable<const int> && !eTriable<char*>);

// Reads its bytes through a buffer of a few bytes, by the hooks of the core.
class eNarrow : public IO::eStream {
public:
    eNarrow(std::string bytes, unsigned long long capacity, unsigned short mode = Mode::Read | Mode::Errors)
        : content(std::move(bytes)), block(capacity) {
        UseBuffer(block.data(), capacity, content.size());
        flags = mode;
        Fill();
    }
    void Underflow() override {
        eStream::Underflow();
        ++refills;
        if (refills != refusedRefill)
            return Fill();
        SetCapacity(0);
        Lose("The line is broken", 7);
    }

    int refills = 0;
    int refusedRefill = -1;

private:
    void Fill() {
        const std::string bytes = content.substr(std::min<std::size_t>(offset, content.size()), block.size());
        std::copy(bytes.begin(), bytes.end(), block.begin());
        SetCapacity(block.size());
    }

    const std::string content;
    std::vector<unsigned char> block;
};

std::string Numbers(std::size_t n) {
    std::string bytes;
    for (std::size_t i = 0; i < n; ++i)
        bytes += static_cast<char>(i * 37 + 11);
    return bytes;
}

// Reads values until one is missing, and returns the bytes of all of them.
template <class T>
std::string AllOf(IO::eStream& stream) {
    IO::eMemoryStream values;
    T value{};
    for (unsigned long long position = 0; stream.TryGet(value); position += sizeof(T)) {
        EXPECT_EQ(stream.Position(), position + sizeof(T));
        values << value;
    }
    return Content(values);
}

template <class T>
void ExpectWholeValues(IO::eStream& stream, const std::string& content) {
    const eReports reports;
    const std::size_t whole = content.size() / sizeof(T) * sizeof(T);
    EXPECT_EQ(AllOf<T>(stream), content.substr(0, whole)) << sizeof(T);
    EXPECT_EQ(stream.Position(), whole);
    EXPECT_EQ(stream.Remaining(), content.size() - whole);
    EXPECT_TRUE(stream.Disabled(Mode::Bad));
    EXPECT_FALSE(stream.Failure());
    EXPECT_TRUE(reports.errors().empty());
}

template <class T>
void ExpectWholeValuesOfAllStreams() {
    const eTempFolder folder;
    for (const std::size_t size : {0u, 1u, 7u, 8u, 9u, 100u, 32767u, 32768u, 32769u, 70001u}) {
        SCOPED_TRACE(size);
        const std::string content = Numbers(size);
        const std::string name = folder.Write("file", content);
        for (const int mode : {0x0201, 0x0202, 0x0203}) {
            IO::eFileStream file(name, mode);
            ExpectWholeValues<T>(file, content);
        }
        if (size == 0)
            continue;
        IO::eBufferStream view(content);
        ExpectWholeValues<T>(view, content);
        IO::eMemoryStream memory(size);
        memory.Write(content.data(), size).Reset();
        ExpectWholeValues<T>(memory, content);
        if (size > 1000)
            continue;
        for (const unsigned long long capacity : {1u, 3u, 8u, 64u}) {
            eNarrow narrow(content, capacity);
            ExpectWholeValues<T>(narrow, content);
        }
    }
    EXPECT_EQ(folder.Read("file"), Numbers(70001));
}

} // namespace

// --- Remaining ---

TEST(Remaining, IsTheNumberOfBytesFromThePositionToTheEndOfTheData) {
    const eReports reports;
    IO::eMemoryStream stream;
    EXPECT_EQ(stream.Remaining(), 0u);
    stream << 1 << 2;
    EXPECT_EQ(stream.Remaining(), 0u);
    stream.Reset();
    EXPECT_EQ(stream.Remaining(), 8u);
    stream.GetInt16();
    EXPECT_EQ(stream.Remaining(), 6u);
    stream.Enable(Mode::Bad);
    EXPECT_EQ(stream.Remaining(), 6u);
    stream.Seek(20, IO::eSeekDir::Begin);
    EXPECT_EQ(stream.Remaining(), 0u);
    EXPECT_EQ(IO::eBufferStream().Remaining(), 0u);
}

TEST(Remaining, IsZeroBeforeTheStart) {
    const eReports reports;
    const eTempFolder folder;
    IO::eFileStream stream(folder.Write("file", "0123"), Mode::Read);
    stream.Seek(6, IO::eSeekDir::End);
    EXPECT_EQ(stream.Position(), 0 - 2ull);
    EXPECT_EQ(stream.Remaining(), 0u);
}

TEST(Remaining, OfAFileDoesNotDependOnTheBuffer) {
    const eTempFolder folder;
    IO::eFileStream stream(folder.Write("file", std::string(100'000, 'x')), Mode::Read);
    for (const unsigned long long position : {0u, 1u, 32768u, 99'999u, 100'000u}) {
        stream.Seek(position, IO::eSeekDir::Begin);
        EXPECT_EQ(stream.Remaining(), 100'000 - position);
    }
}

// --- TryGet ---

TEST(TryGet, ReadsEveryWholeValueOfAnyStreamAndNothingOfACutOne) {
    ExpectWholeValuesOfAllStreams<char>();
    ExpectWholeValuesOfAllStreams<unsigned char>();
    ExpectWholeValuesOfAllStreams<short>();
    ExpectWholeValuesOfAllStreams<unsigned short>();
    ExpectWholeValuesOfAllStreams<int>();
    ExpectWholeValuesOfAllStreams<unsigned int>();
    ExpectWholeValuesOfAllStreams<long long>();
    ExpectWholeValuesOfAllStreams<std::uint64_t>();
}

TEST(TryGet, GivesTheValuesThatWereWritten) {
    IO::eMemoryStream stream;
    stream << true << 0.25f << -1.5e300 << static_cast<short>(-7) << std::numeric_limits<long long>::min() << 'c';
    stream.Reset();
    bool flag = false;
    float single = 0;
    double wide = 0;
    short small = 0;
    long long large = 0;
    char letter = 0;
    EXPECT_TRUE(stream.TryGet(flag) && stream.TryGet(single) && stream.TryGet(wide) && stream.TryGet(small) &&
                stream.TryGet(large) && stream.TryGet(letter));
    EXPECT_TRUE(flag);
    EXPECT_EQ(single, 0.25f);
    EXPECT_EQ(wide, -1.5e300);
    EXPECT_EQ(small, -7);
    EXPECT_EQ(large, std::numeric_limits<long long>::min());
    EXPECT_EQ(letter, 'c');
}

TEST(TryGet, TakesAnyByteButZeroForTrue) {
    const unsigned char bytes[] = {0, 1, 2, 255};
    IO::eBufferStream stream(bytes, 4, 4);
    for (const unsigned char byte : bytes) {
        bool flag = byte == 0;
        EXPECT_TRUE(stream.TryGet(flag));
        EXPECT_EQ(flag, byte != 0);
    }
    bool untouched = true;
    EXPECT_FALSE(stream.TryGet(untouched));
    EXPECT_TRUE(untouched);
}

TEST(TryGet, LeavesTheTargetAsItIsIfBytesAreMissing) {
    for (std::size_t size = 0; size < 8; ++size) {
        IO::eMemoryStream stream;
        stream.Write("12345678", size).Reset();
        long long value = -77;
        EXPECT_FALSE(stream.TryGet(value));
        EXPECT_EQ(value, -77);
        EXPECT_EQ(stream.Position(), 0u);
        EXPECT_TRUE(stream.Disabled(Mode::Bad));
    }
}

TEST(TryGet, HasNothingToGetOutsideTheDataOrWithoutABuffer) {
    const eReports reports;
    int value = -77;
    IO::eBufferStream closed;
    EXPECT_FALSE(closed.TryGet(value));
    IO::eMemoryStream beyond;
    beyond << 1ull;
    beyond.Seek(9, IO::eSeekDir::Begin);
    EXPECT_FALSE(beyond.TryGet(value));
    eNarrow before(Numbers(20), 8);
    before.Seek(22, IO::eSeekDir::End);
    EXPECT_FALSE(before.TryGet(value));
    EXPECT_EQ(before.Position(), 0 - 2ull);
    EXPECT_EQ(value, -77);
}

TEST(TryGet, GoesBackIfTheStreamRefusesTheRestOfAValue) {
    for (const unsigned long long capacity : {1u, 3u, 5u})
        for (int refused = 1; refused < 8; ++refused) {
            SCOPED_TRACE(std::to_string(capacity) + ", refill " + std::to_string(refused));
            const eReports reports;
            eNarrow stream(Numbers(20), capacity);
            EXPECT_TRUE(stream.GetChar() == Numbers(1)[0]);
            stream.refills = 0;
            stream.refusedRefill = refused;
            long long value = -77;
            if (stream.TryGet(value)) {
                EXPECT_LT(stream.refills, refused);
                continue;
            }
            EXPECT_EQ(value, -77);
            EXPECT_EQ(stream.Position(), 1u);
            EXPECT_EQ(stream.Failure().number, 7);
            EXPECT_TRUE(stream.Enabled(Mode::Bad));
            EXPECT_TRUE(reports.errors().empty());
            EXPECT_TRUE(stream.TryGet(value)) << "the line works again";
            EXPECT_EQ(stream.Position(), 9u);
        }
}

TEST(TryGet, KeepsWhatWasWrittenBeforeIt) {
    const eTempFolder folder;
    const std::string content = Numbers(70'000);
    IO::eFileStream stream(folder.Write("file", content), Mode::Read | Mode::Write);
    stream.Seek(32768 - 6, IO::eSeekDir::Begin);
    stream.Write("ab", 2);
    long long value = 0;
    EXPECT_TRUE(stream.TryGet(value));
    stream.Close();
    EXPECT_TRUE(folder.Read("file") == content.substr(0, 32762) + "ab" + content.substr(32764));
}

// --- Transactions ---

namespace {

void Append(IO::eStream& stream, const std::string& bytes) {
    const unsigned long long position = stream.Position();
    stream.Seek(0, IO::eSeekDir::End).Write(bytes.data(), bytes.size());
    stream.Seek(position, IO::eSeekDir::Begin);
}

std::string Record() {
    IO::eMemoryStream stream;
    stream << 258 << "a name" << 0.5;
    return Content(stream);
}

bool ReadsRecord(IO::eStream& stream) {
    IO::eReadTransaction record(stream);
    int number = 0;
    std::string name;
    double value = 0;
    stream >> number >> name >> value;
    if (!record.Commit())
        return false;
    EXPECT_EQ(number, 258);
    EXPECT_EQ(name, "a name");
    EXPECT_EQ(value, 0.5);
    return true;
}

} // namespace

TEST(ReadTransaction, CommitsARecordThatIsThereAndGoesBackFromOneThatIsCutAnywhere) {
    const std::string record = Record();
    for (std::size_t size = 0; size <= record.size(); ++size) {
        SCOPED_TRACE(size);
        IO::eMemoryStream stream;
        stream.Disable(Mode::Errors);
        Append(stream, "#" + record.substr(0, size));
        stream.GetChar();
        EXPECT_EQ(ReadsRecord(stream), size == record.size());
        EXPECT_EQ(stream.Position(), size == record.size() ? 1 + size : 1);
        EXPECT_TRUE(stream.Disabled(Mode::Bad));
        if (size == record.size())
            continue;
        Append(stream, record.substr(size) + record);
        EXPECT_TRUE(ReadsRecord(stream) && ReadsRecord(stream));
        EXPECT_TRUE(stream.Eos());
    }
}

TEST(ReadTransaction, CrossesRefills) {
    const std::string record = Record();
    for (const unsigned long long capacity : {1u, 2u, 9u, 30u, 100u})
        for (std::size_t missing = 0; missing < record.size(); ++missing) {
            eNarrow stream(record + record.substr(0, record.size() - missing), capacity, Mode::Read);
            IO::eReadTransaction outer(stream);
            for (std::size_t i = 0; i < record.size(); ++i)
                EXPECT_EQ(stream.GetChar(), record[i]);
            IO::eReadTransaction second(stream);
            std::string rest(record.size(), '?');
            stream.Read(rest.data(), rest.size());
            EXPECT_EQ(second.Commit(), missing == 0);
            EXPECT_EQ(stream.Position(), record.size() * (missing == 0 ? 2 : 1));
            outer.RollBack();
            EXPECT_EQ(stream.Position(), 0u);
            EXPECT_EQ(stream.GetChar(), record[0]);
        }
}

TEST(ReadTransaction, GoesBackWhenItEndsWithoutACommit) {
    const eTempFolder folder;
    const std::string content = Numbers(100'000);
    for (const int mode : {0x0001, 0x0002, 0x0003}) {
        IO::eFileStream stream(folder.Write("file", content), mode);
        stream.Seek(5, IO::eSeekDir::Begin);
        std::string read(80'000, '?');
        {
            const IO::eReadTransaction transaction(stream);
            stream.Read(read.data(), read.size());
        }
        EXPECT_EQ(stream.Position(), 5u);
        EXPECT_EQ(stream.GetChar(), content[5]);
        try {
            const IO::eReadTransaction transaction(stream);
            stream.Read(read.data(), read.size());
            throw 7;
        } catch (int) {
            EXPECT_EQ(stream.Position(), 6u);
        }
        stream.Close();
        EXPECT_TRUE(folder.Read("file") == content);
    }
}

TEST(ReadTransaction, EndsOnce) {
    IO::eMemoryStream stream;
    stream << 1 << 2;
    stream.Reset();
    {
        IO::eReadTransaction transaction(stream);
        stream.GetInt32();
        EXPECT_TRUE(transaction.Commit());
        stream.GetInt32();
        transaction.RollBack();
        EXPECT_FALSE(transaction.Commit());
    }
    EXPECT_EQ(stream.Position(), 8u);
}

TEST(ReadTransaction, OfABadStreamIsNotCommittedAndLeavesItBad) {
    IO::eMemoryStream stream;
    stream << 1;
    stream.Reset().Enable(Mode::Bad);
    IO::eReadTransaction transaction(stream);
    stream.GetInt16();
    EXPECT_FALSE(transaction.Commit());
    EXPECT_EQ(stream.Position(), 0u);
    EXPECT_TRUE(stream.Enabled(Mode::Bad));
}

TEST(ReadTransaction, LeavesBadSetWhereTheSystemRefusedBytes) {
    eNarrow stream(Numbers(20), 4, Mode::Read);
    stream.refusedRefill = 1;
    IO::eReadTransaction transaction(stream);
    std::string read(20, '?');
    stream.Read(read.data(), read.size());
    EXPECT_FALSE(transaction.Commit());
    EXPECT_EQ(stream.Position(), 0u);
    EXPECT_TRUE(stream.Enabled(Mode::Bad));
    EXPECT_EQ(stream.Failure().text.substr(0, 19), "The line is broken:");
}

TEST(ReadTransaction, KeepsWhatWasWrittenMeanwhile) {
    const eTempFolder folder;
    const std::string content = Numbers(50'000);
    IO::eFileStream stream(folder.Write("file", content), Mode::Read | Mode::Write);
    stream.GetInt32();
    {
        const IO::eReadTransaction transaction(stream);
        stream.GetInt32();
        stream.Write("abcd", 4);
    }
    EXPECT_EQ(stream.Position(), 4u);
    stream.Close();
    EXPECT_TRUE(folder.Read("file") == content.substr(0, 8) + "abcd" + content.substr(12));
}

TEST(ReadTransaction, ThatEndsWithoutACommitKeepsAnExceptionOfTheFlush) {
    struct eRefusing : IO::eMemoryStream {
        void Flush() override { throw 7; }
    };
    eRefusing stream;
    stream << 1 << 2;
    {
        const IO::eReadTransaction transaction(stream);
        stream << 3;
    }
    EXPECT_EQ(stream.Position(), 8u);
    IO::eReadTransaction transaction(stream);
    stream << 4;
    EXPECT_THROW(transaction.RollBack(), int);
    EXPECT_EQ(stream.Position(), 8u);
}

TEST(ReadTransaction, MayBeNested) {
    IO::eMemoryStream stream;
    stream << 1 << 2 << 3;
    stream.Reset();
    {
        const IO::eReadTransaction outer(stream);
        stream.GetInt32();
        IO::eReadTransaction inner(stream);
        stream.GetInt32();
        EXPECT_TRUE(inner.Commit());
        EXPECT_EQ(stream.Position(), 8u);
    }
    EXPECT_EQ(stream.Position(), 0u);
}
