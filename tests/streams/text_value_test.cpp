// SPDX-License-Identifier: BSL-1.0
#include <gtest/gtest.h>

#include <cstddef>
#include <string>

#include <qzl_io/streams.h>

#include "probe.h"
#include "support/reports.h"

namespace Mode = IO::StreamMode;
using namespace std::string_literals;

namespace {

constexpr char kReadBeyond[] = "Attempt to read beyond the stream!";

template <class T>
std::string Written(const T& value) {
    IO::eMemoryStream stream;
    stream << value;
    return Content(stream);
}

} // namespace

TEST(TextValues, CarryALengthOfOneByteOrOfThreeAfter255) {
    struct eRow {
        std::size_t length;
        std::string prefix;
        std::size_t readBack;
    };
    const eRow rows[] = {
        {0, "\0"s, 0},
        {1, "\1"s, 1},
        {254, "\xFE"s, 254},
        {255, "\xFF\xFF\0\0"s, 255},
        {256, "\xFF\0\1\0"s, 0},
        {300, "\xFF\x2C\1\0"s, 44},
        {70000, "\xFF\x70\x11\1"s, 0x70},
    };
    for (const eRow& row : rows) {
        const std::string text(row.length, 'x');
        EXPECT_EQ(Written(text), row.prefix + text) << row.length;
        EXPECT_EQ(Written(text.c_str()), row.prefix + text) << row.length;
        eMemory stream = Holding(row.prefix + text);
        EXPECT_EQ(stream.GetString(), std::string(row.readBack, 'x')) << row.length;
        EXPECT_EQ(stream.Position(), row.prefix.size() + row.readBack) << row.length;
    }
}

TEST(TextValues, ALengthBeyondThreeBytesKeepsItsLow24Bits) {
    const std::string text((1u << 24) + 2, 'x');
    const std::string written = Written(text);
    EXPECT_EQ(written.substr(0, 4), "\xFF\2\0\0"s);
    EXPECT_EQ(written.size(), text.size() + 4);
}

TEST(TextValues, AreCutAtANul) {
    EXPECT_EQ(Written("ab\0cd"s), "\2ab"s);
    for (std::size_t length = 1; length <= 20; ++length)
        for (std::size_t at = 0; at < length; ++at) {
            std::string text(length, 'x');
            text[at] = '\0';
            EXPECT_EQ(Written(text), static_cast<char>(at) + std::string(at, 'x')) << length << ", " << at;
        }
    EXPECT_EQ(Written(static_cast<const char*>(nullptr)), "\0"s);
}

TEST(TextValues, ReplaceWhatTheTargetHeld) {
    for (const std::string& before : {""s, "a"s, "a much longer text than the one that is read"s}) {
        eMemory stream = Holding("\3abcX");
        std::string text = before;
        stream >> text;
        EXPECT_EQ(text, "abc");
        EXPECT_EQ(stream.GetChar(), 'X');
    }
}

TEST(TextValues, ATextThatEndsTooEarlyIsFilledWithNul) {
    struct eRow {
        std::string stream, text;
    };
    for (const eRow& row : {eRow{"\5ab"s, "ab\0\0\0"s}, eRow{"\1"s, "\0"s}, eRow{"\xFF"s, ""s},
                            eRow{"\xFF\3"s, "\0\0\0"s}, eRow{"\xFF\2\0"s, "\0\0"s}, eRow{"\xFF\2\0\0z"s, "z\0"s}}) {
        const eReports reports;
        eMemory stream = Holding(row.stream);
        std::string text = "zzzzzzzz";
        stream >> text;
        EXPECT_EQ(text, row.text);
        EXPECT_TRUE(stream.Enabled(Mode::Bad));
        EXPECT_EQ(stream.Position(), stream.Size());
        ASSERT_GE(reports.errors().size(), 1u);
        for (const xError::eReport& report : reports.errors()) {
            EXPECT_EQ(report.message, kReadBeyond);
            EXPECT_EQ(report.file, "internal/src/bios/qzl_io/stream");
        }
    }
}

TEST(TextValues, WideTextsAreCountedInUtf16Units) {
    struct eRow {
        std::wstring text;
        std::string bytes;
    };
    const eRow rows[] = {
        {std::wstring(), "\0"s},
        {L"aZ", "\2a\0Z\0"s},
        {L"\x20AC", "\1\xAC\x20"s},
        {std::wstring(L"a\0b", 3), "\3a\0\0\0b\0"s},
        {L"\U0001F600", "\2\x3D\xD8\x00\xDE"s},
        {std::wstring(1, wchar_t(0xD83D)), "\1\x3D\xD8"s},
        {std::wstring(1, wchar_t(0xDE00)) + L"x", "\2\x00\xDEx\0"s},
        {std::wstring{wchar_t(0xDE00), wchar_t(0xD83D)}, "\2\x00\xDE\x3D\xD8"s},
        {std::wstring{wchar_t(0xD83D), L'x'}, "\2\x3D\xD8x\0"s},
    };
    for (const eRow& row : rows) {
        EXPECT_EQ(Written(row.text), row.bytes);
        eMemory stream = Holding(row.bytes);
        std::wstring read = L"before";
        stream >> read;
        EXPECT_EQ(read, row.text);
        EXPECT_TRUE(stream.Disabled(Mode::Bad));
        EXPECT_TRUE(stream.Eos());
    }
}

TEST(TextValues, AWideValueThatIsNoCharacterIsWrittenAsTheReplacement) {
    if (sizeof(wchar_t) == sizeof(char16_t))
        GTEST_SKIP() << "every value is a unit";
    EXPECT_EQ(Written(std::wstring(1, wchar_t(0x10FFFF))), "\2\xFF\xDB\xFF\xDF"s);
    EXPECT_EQ(Written(std::wstring(1, wchar_t(0x110000))), "\1\xFD\xFF"s);
}

TEST(TextValues, LongWideTextsHaveTheLongPrefix) {
    for (const std::size_t length : {254u, 255u, 300u}) {
        const std::string written = Written(std::wstring(length, L'x'));
        EXPECT_EQ(written.size(), (length < 255 ? 1 : 4) + 2 * length);
        eMemory stream = Holding(written);
        std::wstring read;
        stream >> read;
        EXPECT_EQ(read, std::wstring(length & 0xFF, L'x')) << length;
    }
}

TEST(TextValues, AWideTextThatEndsTooEarlyIsFilledWithNul) {
    const eReports reports;
    eMemory stream = Holding("\4a\0b"s);
    std::wstring text = L"zzzzzz";
    stream >> text;
    EXPECT_EQ(text, std::wstring(L"ab\0\0", 4));
    ASSERT_EQ(reports.errors().size(), 1u);
    EXPECT_EQ(reports.errors()[0].message, kReadBeyond);
}

TEST(TextValues, AListIsItsCountAndItsTexts) {
    eStrings texts;
    texts.Add("a");
    texts.Add("bc");
    EXPECT_EQ(Written(texts), "\2\0\0\0\0\0\0\0\1a\2bc"s);
    EXPECT_EQ(Written(eStrings()), std::string(8, '\0'));
}

TEST(TextValues, AListIsAppendedToWhatTheTargetHolds) {
    eMemory stream = Holding("\2\0\0\0\0\0\0\0\1a\2bc"s + std::string(8, '\0'));
    eStrings texts;
    texts.Add("before");
    stream >> texts;
    ASSERT_EQ(texts.size(), 3u);
    EXPECT_EQ(texts[0].str(), "before");
    EXPECT_EQ(texts[1].str(), "a");
    EXPECT_EQ(texts[2].str(), "bc");
    stream >> texts;
    EXPECT_EQ(texts.size(), 3u);
    EXPECT_TRUE(stream.Eos());
    EXPECT_TRUE(stream.Disabled(Mode::Bad));
}

TEST(TextValues, AListWhoseCountCannotBeTrueEndsWithTheData) {
    struct eRow {
        std::string texts;
        std::size_t read;
    };
    for (const eRow& row : {eRow{""s, 0}, eRow{"\1a"s, 1}, eRow{"\1a\5bc"s, 2}, eRow{"\0\0\0"s, 3},
                            eRow{"\xFF\0\0\0"s, 1}, eRow{"\xFF"s, 1}}) {
        const eReports reports;
        eMemory stream = Holding(std::string(8, '\xFF') + row.texts);
        eStrings texts;
        stream >> texts;
        EXPECT_EQ(texts.size(), row.read);
        EXPECT_TRUE(stream.Enabled(Mode::Bad));
        ASSERT_EQ(reports.errors().size(), 1u) << row.read;
        EXPECT_EQ(reports.errors()[0].message, kReadBeyond);
    }
}

TEST(TextValues, ABadStreamGivesNoList) {
    const eReports reports;
    eMemory stream = Holding("\1\0\0\0\0\0\0\0\1a"s);
    stream.Enable(Mode::Bad);
    eStrings texts;
    stream >> texts;
    EXPECT_TRUE(texts.empty());
    ASSERT_EQ(reports.errors().size(), 1u);
    EXPECT_EQ(reports.errors()[0].message, kReadBeyond);
}

TEST(TextValues, GetLineReadsToTheDelimiterOrTheEnd) {
    eMemory stream = Holding("ab;cd");
    EXPECT_EQ(stream.GetLine(';'), "ab");
    EXPECT_EQ(stream.GetLine(';'), "cd");
    EXPECT_EQ(stream.GetLine(';'), "");
    eMemory lines = Holding("a\r\n\nb\0c\n"s);
    EXPECT_EQ(lines.GetLine('\n'), "a\r");
    EXPECT_EQ(lines.GetLine('\n'), "");
    EXPECT_EQ(lines.GetLine('\n'), "b\0c"s);
    EXPECT_TRUE(lines.Eos());
}

TEST(TextValues, GetLineAsksForTheBufferThatIsNotThereYet) {
    struct eLate : eBareStream {
        eLate() : eBareStream(nullptr, 8, 5, 0) {}
        void Overflow() override {
            ++overflows;
            if (!buffer)
                UseBuffer(bytes, 8, 5);
        }
        unsigned char bytes[8] = {'a', 'b', ';', 'c', 'd'};
    };
    eLate stream;
    EXPECT_EQ(stream.GetLine(';'), "ab");
    EXPECT_EQ(stream.overflows, 1);
    EXPECT_EQ(stream.GetLine(';'), "cd");
}

TEST(TextValues, GetLineOfABufferStreamReportsItsLastByteAndKeepsIt) {
    const eReports reports;
    const std::string text = "ab;cd";
    IO::eBufferStream stream(text);
    EXPECT_EQ(stream.GetLine(';'), "ab");
    EXPECT_TRUE(reports.errors().empty());
    EXPECT_EQ(stream.GetLine(';'), "cd");
    EXPECT_EQ(reports.errors().size(), 1u);
    EXPECT_EQ(stream.GetLine(';'), "");
}
