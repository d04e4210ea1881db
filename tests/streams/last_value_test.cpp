// SPDX-License-Identifier: BSL-1.0
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <qzl_base/error.h>
#include <qzl_io/file_name.h>
#include <qzl_io/streams.h>

#include "probe.h"
#include "support/reports.h"
#include "support/temp_folder.h"

// A value that ends at the last byte of a buffer stream is reported, and it is complete when the report is made.

using IO::eSeekDir;
namespace Mode = IO::StreamMode;
using namespace std::string_literals;

namespace {

constexpr char kReadBeyond[] = "Attempt to read beyond the stream!";
constexpr char kWriteBeyond[] = "Attempt to write beyond the stream!";

// Runs a check when an error is reported; then the report returns or throws.
class eWitness {
public:
    eWitness(bool throws, std::function<void()> look)
        : previous(xError::SetErrorHandler([this, throws, look = std::move(look)](const xError::eReport& report) {
              messages.push_back(report.message);
              look();
              if (throws)
                  throw xError::eException(report);
          })) {}
    ~eWitness() { xError::SetErrorHandler(std::move(previous)); }
    eWitness(const eWitness&) = delete;
    eWitness& operator=(const eWitness&) = delete;

    std::vector<std::string> messages;

private:
    xError::eHandler previous;
};

// The results of the call are complete at each of its reports and after it.
void ExpectCompleteWhenReported(const std::vector<std::string>& messages, const std::function<void()>& call,
                                const std::function<void()>& check, bool throws) {
    eWitness witness(throws, check);
    if (throws)
        EXPECT_THROW(call(), xError::eException);
    else
        call();
    check();
    const std::size_t made = throws ? 1 : messages.size();
    EXPECT_EQ(witness.messages, std::vector<std::string>(messages.begin(), messages.begin() + static_cast<long>(made)));
}

template <class T>
void ExpectExtracted(const std::string& bytes, const T& expected, unsigned long long position,
                     const std::vector<std::string>& messages, const T& before = T()) {
    for (const bool throws : {false, true}) {
        eView stream(bytes);
        T target = before;
        ExpectCompleteWhenReported(
            messages, [&] { stream >> target; },
            [&] {
                EXPECT_EQ(target, expected);
                EXPECT_EQ(stream.Position(), position);
                EXPECT_TRUE(stream.Enabled(Mode::Bad));
            },
            throws);
    }
}

template <class T>
void ExpectLastNumberExtracted() {
    T expected;
    const std::string bytes(sizeof(T), '\2');
    std::memcpy(&expected, bytes.data(), sizeof(T));
    ExpectExtracted<T>(bytes, expected, sizeof(T), {kWriteBeyond});
}

template <class T>
void ExpectLastNumberInserted() {
    T value;
    const std::string bytes(sizeof(T), '\2');
    std::memcpy(&value, bytes.data(), sizeof(T));
    for (const bool throws : {false, true}) {
        unsigned char room[sizeof(T)] = {};
        eView stream(room, sizeof room, sizeof room);
        ExpectCompleteWhenReported(
            {kWriteBeyond}, [&] { stream << value; },
            [&] {
                EXPECT_EQ(Content(stream), bytes);
                EXPECT_EQ(stream.Position(), sizeof(T));
                EXPECT_TRUE(stream.Enabled(Mode::Bad | Mode::Modified));
            },
            throws);
    }
}

eStrings List(std::initializer_list<const char*> texts) {
    eStrings list;
    for (const char* const text : texts)
        list.Add(text);
    return list;
}

} // namespace

TEST(LastValue, OfEachWidthIsInItsTargetWhenItIsReported) {
    ExpectLastNumberExtracted<char>();
    ExpectLastNumberExtracted<unsigned char>();
    ExpectLastNumberExtracted<short>();
    ExpectLastNumberExtracted<unsigned short>();
    ExpectLastNumberExtracted<int>();
    ExpectLastNumberExtracted<unsigned int>();
    ExpectLastNumberExtracted<long long>();
    ExpectLastNumberExtracted<unsigned long long>();
    ExpectLastNumberExtracted<std::int64_t>();
    ExpectLastNumberExtracted<std::uint64_t>();
    ExpectLastNumberExtracted<float>();
    ExpectLastNumberExtracted<double>();
    ExpectExtracted("\2"s, true, 1, {kWriteBeyond});
    ExpectExtracted("\0"s, false, 1, {kWriteBeyond}, true);
}

TEST(LastValue, OfEachWidthIsOnTheStreamWhenItIsReported) {
    ExpectLastNumberInserted<char>();
    ExpectLastNumberInserted<unsigned char>();
    ExpectLastNumberInserted<short>();
    ExpectLastNumberInserted<unsigned short>();
    ExpectLastNumberInserted<int>();
    ExpectLastNumberInserted<unsigned int>();
    ExpectLastNumberInserted<long long>();
    ExpectLastNumberInserted<unsigned long long>();
    ExpectLastNumberInserted<float>();
    ExpectLastNumberInserted<double>();
}

TEST(LastValue, ThatIsGotLiesBeforeThePositionWhenItIsReported) {
    struct eRow {
        unsigned long long width;
        std::function<unsigned long long(eView&)> get;
    };
    const eRow rows[] = {
        {1, [](eView& s) { return s.GetBool() ? 2u : 0u; }},
        {1, [](eView& s) { return static_cast<unsigned char>(s.GetChar()); }},
        {1, [](eView& s) { return s.GetUint8(); }},
        {2, [](eView& s) { return static_cast<unsigned short>(s.GetInt16()); }},
        {2, [](eView& s) { return s.GetUint16(); }},
        {4, [](eView& s) { return static_cast<unsigned int>(s.GetInt32()); }},
        {4, [](eView& s) { return s.GetUint32(); }},
        {8, [](eView& s) { return static_cast<unsigned long long>(s.GetInt64()); }},
        {8, [](eView& s) { return s.GetUint64(); }},
        {3, [](eView& s) { return s.GetTbyte(); }},
        {1, [](eView& s) { return s.GetBytes(1); }},
        {2, [](eView& s) { return s.GetBytes(2); }},
        {4, [](eView& s) { return s.GetBytes(4); }},
        {4, [](eView& s) { return static_cast<unsigned long long>(*s.Take(4)) * 0x01010101u; }},
    };
    for (const eRow& row : rows) {
        const std::string bytes(row.width, '\2');
        for (const bool throws : {false, true}) {
            eView stream(bytes);
            unsigned long long got = 0;
            ExpectCompleteWhenReported(
                {kWriteBeyond}, [&] { got = row.get(stream); },
                [&] {
                    EXPECT_EQ(stream.Position(), row.width);
                    EXPECT_TRUE(stream.Enabled(Mode::Bad));
                },
                throws);
            EXPECT_EQ(got, throws ? 0 : 0x0202020202020202ull >> (64 - 8 * row.width)) << row.width;
            stream.Disable(Mode::Errors);
            EXPECT_EQ(row.get(static_cast<eView&>(stream.Skip(0 - row.width))),
                      0x0202020202020202ull >> (64 - 8 * row.width))
                << row.width;
        }
    }
}

TEST(LastValue, OfAFewBytesIsOnTheStreamWhenItIsReported) {
    for (const int n : {1, 2, 3, 4})
        for (const bool throws : {false, true}) {
            unsigned char room[4] = {};
            const auto width = static_cast<unsigned>(n);
            eView stream(room, width, width);
            ExpectCompleteWhenReported(
                {kWriteBeyond}, [&] { stream.Bytes(n, 0x02020202); },
                [&] {
                    EXPECT_EQ(Content(stream), std::string(width, '\2'));
                    EXPECT_EQ(stream.Position(), width);
                },
                throws);
        }
}

TEST(LastValue, ThatIsOnlyLookedAtLeavesThePositionAndIsReported) {
    const std::function<void(eView&)> looks[] = {
        [](eView& s) { s.Int32(); },  [](eView& s) { s.Uint32(); }, [](eView& s) { s.Float(); },
        [](eView& s) { s.Bytes(4); }, [](eView& s) { s.Look(4); },
    };
    for (const auto& look : looks)
        for (const bool throws : {false, true}) {
            const std::string bytes(4, '\2');
            eView stream(bytes);
            ExpectCompleteWhenReported(
                {kWriteBeyond}, [&] { look(stream); },
                [&] {
                    EXPECT_EQ(stream.Position(), 0u);
                    EXPECT_TRUE(stream.Enabled(Mode::Bad));
                },
                throws);
        }
}

TEST(LastValue, TextsAreCompleteWhenTheyAreReported) {
    ExpectExtracted("\0"s, ""s, 1, {kWriteBeyond}, "before"s);
    ExpectExtracted("\3"s, "\0\0\0"s, 1, {kWriteBeyond, kReadBeyond}, "before"s);
    ExpectExtracted("\3ab"s, "ab\0"s, 3, {kReadBeyond}, "before"s);
    ExpectExtracted("\xFF"s, ""s, 1, {kWriteBeyond, kReadBeyond}, "before"s);
    ExpectExtracted("\xFF\2\0\0"s, "\0\0"s, 4, {kReadBeyond}, "before"s);
    ExpectExtracted("\0"s, L""s, 1, {kWriteBeyond}, L"before"s);
    ExpectExtracted("\2"s, L"\0\0"s, 1, {kWriteBeyond, kReadBeyond}, L"before"s);
    ExpectExtracted("\2a\0"s, L"a\0"s, 3, {kReadBeyond}, L"before"s);
}

TEST(LastValue, FileNamesAreCompleteWhenTheyAreReported) {
    for (const bool throws : {false, true}) {
        const std::string bytes = "\0"s;
        eView stream(bytes);
        eFileName name("before");
        ExpectCompleteWhenReported(
            {kWriteBeyond}, [&] { stream >> name; }, [&] { EXPECT_EQ(name.str(), ""); }, throws);
    }
}

TEST(LastValue, ListsHoldWhatWasReadWhenTheyAreReported) {
    const std::string two = "\2\0\0\0\0\0\0\0"s;
    ExpectExtracted(two + "\1a\0"s, List({"a", ""}), 11, {kWriteBeyond});
    ExpectExtracted(two + "\1a"s, List({"a"}), 10, {kReadBeyond});
    ExpectExtracted(two + "\0"s, List({""}), 9, {kWriteBeyond, kReadBeyond});
    ExpectExtracted(std::string(8, '\0'), List({"before"}), 8, {kWriteBeyond}, List({"before"}));
}

TEST(LastValue, TextsAreOnTheStreamAsFarAsTheyFitWhenTheyAreReported) {
    struct eRow {
        std::string text, bytes;
        unsigned long long position;
        std::vector<std::string> messages;
    };
    const eRow rows[] = {
        {"abc", "\3abcxx", 4, {}},
        {"abcde", "\5abcde", 6, {}},
        {"abcdefgh", "\10abcde", 6, {kWriteBeyond}},
        {std::string(300, 'y'), "\xFF\x2C\1\0yy"s, 6, {kWriteBeyond}},
    };
    for (const eRow& row : rows)
        for (const bool throws : {false, true}) {
            std::string room(6, 'x');
            eView stream(room);
            const auto check = [&] {
                EXPECT_EQ(room, row.bytes);
                EXPECT_EQ(stream.Position(), row.position);
            };
            ExpectCompleteWhenReported(
                row.messages, [&] { stream << row.text; }, check, throws && !row.messages.empty());
        }
}

TEST(LastValue, ALineLiesBetweenThePositionsWhenItIsReported) {
    for (const std::string& bytes : {"ab\ncd\n"s, "ab\ncd"s})
        for (const bool throws : {false, true}) {
            eView stream(bytes);
            EXPECT_EQ(stream.GetLine('\n'), "ab");
            const unsigned long long start = stream.Position();
            std::string line;
            ExpectCompleteWhenReported(
                {kWriteBeyond}, [&] { line = stream.GetLine('\n'); },
                [&] {
                    EXPECT_EQ(stream.Position(), bytes.size());
                    EXPECT_TRUE(stream.Enabled(Mode::Bad));
                },
                throws);
            EXPECT_EQ(line, throws ? "" : "cd");
            EXPECT_EQ(Content(stream).substr(start, 2), "cd");
        }
}

TEST(LastValue, OfAPacketWithAnAddressableByteMoreIsNotReported) {
    const eReports reports(eReports::Throws);
    const std::string bytes = "\1\0\0\0ab\ncd\n\1x\0\0"s;
    IO::eBufferStream stream(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size() + 1, bytes.size());
    EXPECT_EQ(stream.GetInt32(), 1);
    EXPECT_EQ(stream.GetLine('\n'), "ab");
    EXPECT_EQ(stream.GetLine('\n'), "cd");
    EXPECT_EQ(stream.GetString(), "x");
    EXPECT_EQ(stream.GetInt16(), 0);
    EXPECT_TRUE(stream.Eos());
    EXPECT_TRUE(stream.Disabled(Mode::Bad));
}

TEST(LastValue, WithoutErrorsIsNotReported) {
    const eReports reports(eReports::Throws);
    const std::string bytes = "\1\0\0\0ab\ncd\n"s;
    IO::eBufferStream stream(bytes);
    stream.Disable(Mode::Errors);
    EXPECT_EQ(stream.GetInt32(), 1);
    EXPECT_EQ(stream.GetLine('\n'), "ab");
    EXPECT_EQ(stream.GetLine('\n'), "cd");
    EXPECT_EQ(stream.Position(), stream.Size());
    EXPECT_TRUE(stream.Enabled(Mode::Bad));
}

// --- Exceptions from hooks of derived classes ---

namespace {

struct eThrowing : eView {
    using eView::eView;
    void Overflow() override {
        positions.push_back(Position());
        throw std::runtime_error("from the hook");
    }
    std::vector<unsigned long long> positions;
};

} // namespace

TEST(LastValue, IsThereWhenAHookHasThrown) {
    std::string bytes(4, '\2');
    {
        eThrowing stream(bytes);
        int target = 0;
        EXPECT_THROW(stream >> target, std::runtime_error);
        EXPECT_EQ(target, 0x02020202);
        EXPECT_EQ(stream.Position(), 4u);
        EXPECT_EQ(stream.positions, std::vector<unsigned long long>{0}) << "called before the move";
    }
    {
        eThrowing stream(bytes);
        EXPECT_THROW(stream << 0x03030303, std::runtime_error);
        EXPECT_EQ(bytes, "\3\3\3\3");
        EXPECT_EQ(stream.Position(), 4u);
    }
    {
        const std::string text = "\3";
        eThrowing stream(text);
        std::string target = "before";
        EXPECT_THROW(stream >> target, std::runtime_error);
        EXPECT_EQ(target, "\0\0\0"s);
        EXPECT_EQ(stream.positions.size(), 1u) << "not called again";
    }
    {
        const std::string text = "\xFF\0\0\0\0\0\0\0\1"s;
        eThrowing stream(text);
        eStrings target;
        EXPECT_THROW(stream >> target, std::runtime_error);
        EXPECT_EQ(target.size(), 1u);
        EXPECT_EQ(stream.positions.size(), 1u);
    }
    {
        const std::string text = "abc";
        eThrowing stream(text);
        EXPECT_THROW(stream.GetLine('\n'), std::runtime_error);
        EXPECT_EQ(stream.Position(), 3u);
    }
}

TEST(LastValue, WhatAHookReportsComesBeforeWhatItThrows) {
    struct eBoth : eView {
        using eView::eView;
        void Overflow() override {
            eView::Overflow();
            throw std::runtime_error("from the hook");
        }
    };
    const std::string bytes(4, '\2');
    eBoth stream(bytes), other(bytes);
    int target = 0;
    {
        const eReports reports;
        EXPECT_THROW(stream >> target, std::runtime_error);
        EXPECT_EQ(reports.errors().size(), 1u);
        EXPECT_EQ(target, 0x02020202);
    }
    const eReports reports(eReports::Throws);
    EXPECT_THROW(other >> target, xError::eException);
}

TEST(LastValue, OperationsThatAHookBeginsReportWithTheValue) {
    struct eNested : eBareStream {
        using eBareStream::eBareStream;
        void Overflow() override {
            if (overflows++ == 0)
                Seek(100, eSeekDir::Current).Seek(0 - 100ull, eSeekDir::Current);
        }
    };
    unsigned char bytes[4] = {2, 2, 2, 2};
    eNested stream(bytes, 4, 4, Mode::Errors);
    int target = 0;
    eWitness witness(false, [&] { EXPECT_EQ(target, 0x02020202); });
    stream >> target;
    EXPECT_EQ(witness.messages, std::vector<std::string>{"Invalid seek location!"});
}

TEST(LastValue, OfAHandlerThatUsesTheStreamIsReportedAtOnce) {
    const std::string bytes(4, '\2');
    eView stream(bytes);
    int reports = 0;
    eWitness witness(false, [&] {
        if (++reports == 1)
            stream.GetUint8();
    });
    EXPECT_EQ(stream.GetInt32(), 0x02020202);
    EXPECT_EQ(stream.Position(), 5u);
    EXPECT_EQ(reports, 2);
}

TEST(LastValue, OfAFileIsThereWhenItIsReported) {
    const eTempFolder folder;
    for (const bool throws : {false, true}) {
        eFile stream(folder.Write("file", "ab"), Mode::Read | Mode::Errors);
        {
            const eReports before;
            stream.Skip(10);
        }
        int target = 7;
        const auto check = [&] {
            EXPECT_EQ(target, 'a' + ('b' << 8)) << "what the buffer holds";
            EXPECT_EQ(stream.Position(), 14u);
        };
        eWitness witness(throws, check);
        if (throws)
            EXPECT_THROW(stream >> target, xError::eException);
        else
            stream >> target;
        check();
        EXPECT_FALSE(witness.messages.empty());
    }
}
