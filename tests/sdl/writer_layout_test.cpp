// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl/writer.h>

#include <cmath>
#include <limits>
#include <ostream>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include <qzl_base/convert.h>
#include <qzl_io/sdl/parser.h>

#include "support/reports.h"
#include "support/written_text.h"

namespace {

eSDLKeyword* words;
eSDLKeyword itemWord(words, "item", 10);
eSDLKeyword sizeWord(words, "size", 11);

eSDLWriter& opening(eSDLWriter& writer) {
    writer.Stream().WriteControl(sdlBlockStart);
    return writer;
}

eSDLWriter& opened(eSDLWriter& writer) {
    writer.Stream().WriteControl(sdlOpen);
    return writer;
}

eSDLWriter& closed(eSDLWriter& writer) {
    writer.Stream().WriteControl(sdlClose);
    return writer;
}

eSDLWriter& marked(eSDLWriter& writer) {
    writer.Stream().MarkEmpty();
    return writer;
}

struct eLayoutCase {
    const char* name;
    void (*write)(eSDLWriter&);
    const char* text;
};

void PrintTo(const eLayoutCase& row, std::ostream* out) {
    *out << row.name;
}

const eLayoutCase layoutCases[] = {
    {"nothing", [](eSDLWriter&) {}, ""},
    {"only line ends", [](eSDLWriter& w) { w << endl
                                             << endl; }, ""},
    {"values on one line", [](eSDLWriter& w) { w << 1 << 2.5f << "x" << ident{"y"}; }, "1 2.5 \"x\" y"},
    {"line end after the last item", [](eSDLWriter& w) { w << 1 << endl; }, "1\r\n"},
    {"several line ends are one", [](eSDLWriter& w) { w << 1 << endl
                                                        << endl
                                                        << 2; }, "1\r\n2"},
    {"no line break before the first item except a requested one", [](eSDLWriter& w) { w << endl
                                                                                         << 1; }, "\r\n1"},
    {"block on one line", [](eSDLWriter& w) { w << block{10} << 1 << endb; }, "{item 1}"},
    {"empty block", [](eSDLWriter& w) { w << opening << endb; }, "{}"},
    {"item directly after the brace", [](eSDLWriter& w) { w << opening << 7 << endb; }, "{7}"},
    {"block after a value", [](eSDLWriter& w) { w << 1 << opening << 2 << endb; }, "1 {2}"},
    {"value after a block", [](eSDLWriter& w) { w << opening << endb << 2; }, "{}2"},
    {"keyword bare", [](eSDLWriter& w) { w << 1 << keyword{11} << 2; }, "1 size 2"},
    {"control block closes after a blank", [](eSDLWriter& w) { w << opened << ident{"add"} << 1 << closed; },
     "(add 1 )"},
    {"control block, value", [](eSDLWriter& w) { w << opened << 1 << closed << 2; }, "(1 )2"},
    {"empty control block", [](eSDLWriter& w) { w << opened << closed; }, "()"},
    {"mark of a block",
     [](eSDLWriter& w) {
         w << opening;
         w.Stream().WriteHashed("mark");
         w << 1 << endb;
     },
     "{#mark 1}"},
    {"hashed text between values",
     [](eSDLWriter& w) {
         w << 1;
         w.Stream().WriteHashed("a");
         w << 2;
     },
     "1 #a 2"},
    {"empty hashed text leaves the layout alone",
     [](eSDLWriter& w) {
         w << 1 << endl;
         w.Stream().WriteHashed("");
         w.Stream().WriteHashed(nullptr);
         w << 2;
     },
     "1\r\n2"},
    {"an empty hashed text leaves no blank before a brace",
     [](eSDLWriter& w) {
         w << opening << 1;
         w.Stream().WriteHashed("");
         w << endb;
     },
     "{1}"},
    {"unknown structure", [](eSDLWriter& w) { w << 1, w.Stream().WriteControl(6), w << 2; }, "1 2"},
    {"nested lines are indented",
     [](eSDLWriter& w) {
         w << opening << endl << opening << endl << 1 << endl << endb << endl << endb;
     },
     "{\r\n\t{\r\n\t\t1\r\n\t}\r\n}"},
    {"closing brace on the last item's line", [](eSDLWriter& w) { w << opening << endl
                                                                    << 1 << endb << 2; },
     "{\r\n\t1}2"},
    {"pending line break ends the text with its indentation", [](eSDLWriter& w) { w << opening << 1 << endl; },
     "{1\r\n\t"},
    {"marked block without content vanishes", [](eSDLWriter& w) { w << block{10} << marked << endb; }, ""},
    {"its line break and indentation vanish with it",
     [](eSDLWriter& w) { w << opening << 1 << endl
                           << block{10} << marked << endb << endb; }, "{1}"},
    {"and are not armed again", [](eSDLWriter& w) { w << 1 << endl
                                                      << block{10} << marked << endb << 2; }, "1 2"},
    {"the next line end arms them", [](eSDLWriter& w) { w << 1 << endl
                                                          << block{10} << marked << endb << endl
                                                          << 2; },
     "1\r\n2"},
    {"marked block with content stays", [](eSDLWriter& w) { w << block{10} << marked << 1 << endb; }, "{item 1}"},
    {"marked block whose only content vanishes goes with it",
     [](eSDLWriter& w) { w << 5 << block{10} << marked << block{11} << marked << endb << endb << 6; }, "5 6"},
    {"marked block around a block that stays",
     [](eSDLWriter& w) { w << block{10} << marked << block{11} << endb << endb; }, "{item {size}}"},
    {"two marks are as good as one",
     [](eSDLWriter& w) { w << block{10} << marked << marked << endb << opening << endb; }, " {}"},
    {"line end alone is no content", [](eSDLWriter& w) { w << block{10} << marked << endl
                                                           << endb; }, ""},
    {"mark outside blocks does nothing", [](eSDLWriter& w) { w << marked << 1 << marked << 2 << endb; }, "1 2}"},
    {"more ends than blocks stay at depth 0",
     [](eSDLWriter& w) { w << endb << endl
                           << opening << endb << endb << endl
                           << 1; }, "}\r\n{}}\r\n1"},
};

class WriterLayout : public testing::TestWithParam<eLayoutCase> {};

TEST_P(WriterLayout, GivesExactlyTheseBytes) {
    EXPECT_EQ(WrittenText(words, GetParam().write), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Table, WriterLayout, testing::ValuesIn(layoutCases));

TEST(WriterText, IsTheWorkedExampleByteForByte) {
    const std::string text = WrittenText(words, [](eSDLWriter& writer) {
        writer << block{10} << ident{"a"} << endb << endl;
        writer << block{10} << endl;
        writer << block{11} << 3 << 0.5f << endb << endl;
        writer << "x y" << endl;
        writer << endb << endl;
    });
    EXPECT_EQ(text, "{item a}\r\n{item\r\n\t{size 3 0.5}\r\n\t\"x y\"\r\n}\r\n");
}

TEST(WriterText, EveryDepthIsIndentedByAsManyTabs) {
    constexpr int kDepth = 100;
    std::string expected = "{";
    for (int depth = 1; depth < kDepth; ++depth)
        expected += "\r\n" + std::string(static_cast<std::size_t>(depth), '\t') + '{';
    for (int depth = kDepth - 1; depth >= 0; --depth)
        expected += "\r\n" + std::string(static_cast<std::size_t>(depth), '\t') + '}';
    const std::string text = WrittenText(words, [](eSDLWriter& writer) {
        for (int depth = 0; depth < kDepth; ++depth)
            writer << opening << endl;
        for (int depth = 0; depth < kDepth; ++depth)
            writer << endb << endl;
    });
    EXPECT_EQ(text, expected + "\r\n");
}

struct eValueCase {
    const char* name;
    void (*write)(eSDLWriter&);
    const char* text;
};

void PrintTo(const eValueCase& row, std::ostream* out) {
    *out << row.name;
}

const eValueCase valueCases[] = {
    {"char", [](eSDLWriter& w) { w << 'A'; }, "65"},
    {"negative char", [](eSDLWriter& w) { w << '\xFF'; }, "-1"},
    {"unsigned char", [](eSDLWriter& w) { w << static_cast<unsigned char>(255); }, "255"},
    {"true", [](eSDLWriter& w) { w << true; }, "1"},
    {"false", [](eSDLWriter& w) { w << false; }, "0"},
    {"short", [](eSDLWriter& w) { w << static_cast<short>(-32768); }, "-32768"},
    {"unsigned short", [](eSDLWriter& w) { w << static_cast<unsigned short>(65535); }, "65535"},
    {"smallest int", [](eSDLWriter& w) { w << std::numeric_limits<int>::min(); }, "-2147483648"},
    {"largest int", [](eSDLWriter& w) { w << std::numeric_limits<int>::max(); }, "2147483647"},
    {"unsigned within int", [](eSDLWriter& w) { w << 2147483647U; }, "2147483647"},
    {"unsigned beyond int", [](eSDLWriter& w) { w << 2147483648U; }, "-2147483648"},
    {"largest unsigned", [](eSDLWriter& w) { w << 4294967295U; }, "-1"},
    {"float zero", [](eSDLWriter& w) { w << 0.0f; }, "0"},
    {"float", [](eSDLWriter& w) { w << -0.5f; }, "-0.5"},
    {"subnormal float", [](eSDLWriter& w) { w << std::numeric_limits<float>::denorm_min(); }, "1e-45"},
    {"text", [](eSDLWriter& w) { w << "a b"; }, "\"a b\""},
    {"empty text", [](eSDLWriter& w) { w << ""; }, "\"\""},
    {"null text", [](eSDLWriter& w) { w << static_cast<const char*>(nullptr); }, "\"\""},
    {"string", [](eSDLWriter& w) { w << std::string("s"); }, "\"s\""},
    {"string ends at its first NUL", [](eSDLWriter& w) { w << std::string("a\0b", 3); }, "\"a\""},
    {"escapes", [](eSDLWriter& w) { w << "q\" b\\ \r\n\t\x01"; }, R"("q\" b\\ \r\n\t\x01")"},
    {"bytes above ASCII stay", [](eSDLWriter& w) { w << "\xC3\xA9\xFF"; }, "\"\xC3\xA9\xFF\""},
    {"wide text is UTF-8", [](eSDLWriter& w) { w << std::wstring(L"\u00E9\u20AC\n"); }, "\"\xC3\xA9\xE2\x82\xAC\\n\""},
    {"wide pair", [](eSDLWriter& w) { w << std::wstring(L"\U0001F305"); }, "\"\xF0\x9F\x8C\x85\""},
    {"wide text ends at its first NUL", [](eSDLWriter& w) { w << std::wstring(L"a\0b", 3); }, "\"a\""},
    {"ident", [](eSDLWriter& w) { w << ident{"a{}\"b c"}; }, "a{}\"b c"},
    {"null ident", [](eSDLWriter& w) { w << 1 << ident{nullptr} << 2; }, "1  2"},
    {"file name", [](eSDLWriter& w) { w << eFileName("c:\\a\\b.txt"); }, "\"c:/a/b.txt\""},
    {"hexadecimal once", [](eSDLWriter& w) { w.Stream().formatFlag = true, w << 31 << 31; }, "0x1f 31"},
    {"hexadecimal survives other items", [](eSDLWriter& w) { w.Stream().formatFlag = true, w << "a" << 1.5f << -1; },
     "\"a\" 1.5 0xffffffff"},
};

class WriterValues : public testing::TestWithParam<eValueCase> {};

TEST_P(WriterValues, AreWrittenAsTheseTexts) {
    EXPECT_EQ(WrittenText(GetParam().write), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Table, WriterValues, testing::ValuesIn(valueCases));

TEST(WriterValues, StringListsAreWrittenOneALine) {
    eStrings narrow;
    narrow.Add("a");
    narrow.Add("b");
    eStringsW wide;
    wide.Add(L"\u00E9");
    EXPECT_EQ(WrittenText([&](eSDLWriter& w) { w << 1 << narrow << 2 << wide; }),
              "1 \"a\"\r\n\"b\"\r\n2 \"\xC3\xA9\"\r\n");
    EXPECT_EQ(WrittenText([](eSDLWriter& w) { w << 1 << eStrings() << eStringsW() << 2; }), "1 2");
}

struct eInvalidFloat {
    float value;
    const char* message;
};

TEST(WriterValues, InvalidFloatsAreZeroAfterOneWarning) {
    const float infinity = std::numeric_limits<float>::infinity();
    const eInvalidFloat rows[] = {
        {std::nanf(""), "Saving invalid floating number nan. It was truncated to 0"},
        {infinity, "Saving invalid floating number inf. It was truncated to 0"},
        {-infinity, "Saving invalid floating number -inf. It was truncated to 0"},
    };
    for (const eInvalidFloat& row : rows) {
        eReports reports;
        EXPECT_EQ(WrittenText([&](eSDLWriter& w) { w << 1 << row.value << 2; }), "1 0 2") << row.message;
        ASSERT_EQ(reports.warnings().size(), 1U) << row.message;
        EXPECT_EQ(reports.warnings()[0].message, row.message);
        EXPECT_EQ(reports.warnings()[0].file, "internal/src/bios/qzl_io/sdl_writer");
        EXPECT_TRUE(reports.errors().empty());
    }
}

TEST(WriterValues, AHandlerThatThrowsAtAnInvalidFloatLeavesTheLayoutWhole) {
    const auto previous = xError::SetWarningHandler([](const xError::eReport&) { throw std::range_error("invalid"); });
    EXPECT_EQ(WrittenText([](eSDLWriter& w) {
                  w << 1 << endl;
                  EXPECT_THROW(w << std::nanf(""), std::range_error);
                  w << 2 << 3;
                  EXPECT_THROW(w << std::nanf(""), std::range_error);
                  w << opening << endb;
              }),
              "1\r\n2 3 {}");
    xError::SetWarningHandler(previous);
}

template <class T>
concept eWritable = requires(eSDLWriter& writer, T value) {
    writer << value;
};

static_assert(eWritable<int> && eWritable<const char*> && eWritable<char*> && eWritable<std::wstring>);
static_assert(eWritable<double> && eWritable<long long> && !eWritable<long double>);
static_assert(!eWritable<const wchar_t*> && !eWritable<void*> && !eWritable<unsigned char*>);

TEST(WriterText, GrowsToAnySizeAndDepth) {
    constexpr int kDepth = 70000;
    const std::string text = WrittenText([](eSDLWriter& writer) {
        for (int level = 0; level < kDepth; ++level)
            writer << opening << 1;
        for (int level = 0; level < kDepth; ++level)
            writer << endb;
        writer << endl << std::string(100000, '"');
    });
    std::string expected;
    for (int level = 0; level < kDepth; ++level)
        expected += level == 0 ? "{1" : " {1";
    expected += std::string(kDepth, '}') + "\r\n\"";
    for (int quote = 0; quote < 100000; ++quote)
        expected += "\\\"";
    expected += '"';
    EXPECT_TRUE(text == expected);
}

TEST(WriterText, IsIndentedByItsDepthInSixteenBits) {
    const std::string text = WrittenText([](eSDLWriter& writer) {
        for (int level = 0; level < 65537; ++level)
            writer << opening;
        writer << endl << 1;
    });
    EXPECT_TRUE(text == std::string(65537, '{') + "\r\n\t1");
}

TEST(WriterText, OfEveryStringReadsBackThroughItsEscapes) {
    std::string all;
    for (int byte = 1; byte < 256; ++byte)
        all += static_cast<char>(byte);
    const std::string text = WrittenText([&](eSDLWriter& w) { w << all; });
    ASSERT_GE(text.size(), 2U);
    std::string inner = text.substr(1, text.size() - 2);
    for (const char control : {'\r', '\n', '\t'})
        EXPECT_EQ(inner.find(control), std::string::npos);
    ConvertEscSequence(&inner, false);
    EXPECT_EQ(inner, all);
}

} // namespace
