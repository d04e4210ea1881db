// SPDX-License-Identifier: BSL-1.0
#include <qzl_base/convert.h>

#include <array>
#include <cstddef>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/wine.h"

namespace {

constexpr int kUtf8 = 65001;
constexpr int kWindows1252 = 1252;
constexpr wchar_t kBad = 0xfffd;

std::wstring Wide(std::initializer_list<char32_t> codes) {
    std::wstring text;
    for (const char32_t code : codes) {
        if (sizeof(wchar_t) == 2 && code > 0xffff) {
            text += static_cast<wchar_t>(0xd7c0 + (code >> 10));
            text += static_cast<wchar_t>(0xdc00 + (code & 0x3ff));
        } else {
            text += static_cast<wchar_t>(code);
        }
    }
    return text;
}

std::string Hex(const std::string& text) {
    std::string hex;
    for (const char c : text)
        hex += ToString(static_cast<int>(static_cast<unsigned char>(c)), true) + " ";
    return hex;
}

TEST(WideText, MatchesUtf8) {
    const struct {
        std::string utf8;
        std::wstring wide;
    } rows[] = {
        {"", L""},
        {"plain", L"plain"},
        {"eight by", L"eight by"},
        {"nine byte", L"nine byte"},
        {std::string("a\0b", 3), Wide({'a', 0, 'b'})},
        {"\x7f", Wide({0x7f})},
        {"\xc2\x80", Wide({0x80})},
        {"\xdf\xbf", Wide({0x7ff})},
        {"\xe0\xa0\x80", Wide({0x800})},
        {"\xe2\x82\xac", Wide({0x20ac})},
        {"\xed\x9f\xbf", Wide({0xd7ff})},
        {"\xee\x80\x80", Wide({0xe000})},
        {"\xef\xbf\xbd", Wide({0xfffd})},
        {"\xef\xbf\xbf", Wide({0xffff})},
        {"\xf0\x90\x80\x80", Wide({0x10000})},
        {"\xf0\x9f\x98\x80", Wide({0x1f600})},
        {"\xf4\x8f\xbf\xbf", Wide({0x10ffff})},
        {"\xef\xbb\xbfx", Wide({0xfeff, 'x'})},
        {"abcdefg\xc3\xa4hijklmnop\xe2\x82\xac",
         Wide({'a', 'b', 'c', 'd', 'e', 'f', 'g', 0xe4, 'h', 'i', 'j', 'k', 'l', 'm', 'n', 'o', 'p', 0x20ac})},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.wide, ToStringW(row.utf8)) << Hex(row.utf8);
        EXPECT_EQ(row.wide, StringToWideChar(row.utf8, kUtf8)) << Hex(row.utf8);
        EXPECT_EQ(row.utf8, ToString(row.wide)) << Hex(row.utf8);
        EXPECT_EQ(row.utf8, WideCharToString(row.wide, kUtf8)) << Hex(row.utf8);
    }
}

TEST(WideText, HasOneReplacementForEachIllFormedPart) {
    const struct {
        const char* utf8;
        std::wstring wide;
    } rows[] = {
        {"\x80", {kBad}},
        {"\xbf\xbf", {kBad, kBad}},
        {"\xc0\x80", {kBad, kBad}},
        {"\xc1\xbf", {kBad, kBad}},
        {"\xc3", {kBad}},
        {"\xc3x", {kBad, 'x'}},
        {"\xc3\xc3\xa4", {kBad, 0xe4}},
        {"\xe0\x80\x80", {kBad, kBad, kBad}},
        {"\xe0\x9f\xbf", {kBad, kBad, kBad}},
        {"\xe2\x82", {kBad}},
        {"\xe2\x82x", {kBad, 'x'}},
        {"\xe2\x82\xe2\x82\xac", {kBad, 0x20ac}},
        {"\xed\xa0\x80", {kBad, kBad, kBad}},
        {"\xed\xbf\xbf", {kBad, kBad, kBad}},
        {"\xf0\x8f\xbf\xbf", {kBad, kBad, kBad, kBad}},
        {"\xf0\x9f", {kBad}},
        {"\xf0\x9f\x98", {kBad}},
        {"\xf0\x9f\x98x", {kBad, 'x'}},
        {"\xf0\x9fx", {kBad, 'x'}},
        {"\xf4\x90\x80\x80", {kBad, kBad, kBad, kBad}},
        {"\xf5\x80\x80\x80", {kBad, kBad, kBad, kBad}},
        {"\xff\xfe", {kBad, kBad}},
        {"a\xf1\x80\x80\xe1\x80\xc2"
         "b\x80"
         "c\x80\xbf"
         "d",
         {'a', kBad, kBad, kBad, 'b', kBad, 'c', kBad, kBad, 'd'}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.wide, ToStringW(row.utf8)) << Hex(row.utf8);
        EXPECT_EQ(row.wide, StringToWideChar(row.utf8, kUtf8)) << Hex(row.utf8);
    }
}

TEST(WideText, LoneSurrogatesAndValuesThatAreNoCharactersAreReplaced) {
    const std::string bad = "\xef\xbf\xbd";
    EXPECT_EQ(bad, ToString(std::wstring(1, wchar_t(0xd800))));
    EXPECT_EQ(bad, ToString(std::wstring(1, wchar_t(0xdfff))));
    EXPECT_EQ(bad + "x", ToString(std::wstring{wchar_t(0xd83d), 'x'}));
    EXPECT_EQ("x" + bad, ToString(std::wstring{'x', wchar_t(0xd83d)}));
    EXPECT_EQ(bad + bad, ToString(std::wstring{wchar_t(0xde00), wchar_t(0xd83d)}));
    if constexpr (sizeof(wchar_t) == 4) {
        EXPECT_EQ(bad, ToString(std::wstring(1, static_cast<wchar_t>(0x110000))));
        EXPECT_EQ(bad, ToString(std::wstring(1, static_cast<wchar_t>(0xffffffff))));
    }
}

TEST(WideText, EveryCharacterSurvivesUtf8) {
    for (char32_t code = 0; code <= 0x10ffff; ++code) {
        if (code >= 0xd800 && code <= 0xdfff)
            continue;
        const std::wstring wide = Wide({code});
        ASSERT_EQ(wide, ToStringW(ToString(wide))) << static_cast<unsigned>(code);
    }
}

TEST(WideText, AnyBytesBecomeWellFormed) {
    std::mt19937 random(11);
    for (int round = 0; round < 5000; ++round) {
        std::string text(random() % 40, '\0');
        for (char& c : text)
            c = static_cast<char>(random() % 3 ? 0x80 + random() % 128 : random() % 128);
        const std::wstring wide = ToStringW(text);
        ASSERT_EQ(wide, ToStringW(ToString(wide))) << Hex(text);
        ASSERT_LE(wide.size(), text.size()) << Hex(text);
    }
}

TEST(WideText, MatchesWindows1252) {
    const struct {
        unsigned char byte;
        char32_t code;
    } rows[] = {
        {0x00, 0x0000}, {0x41, 0x0041}, {0x7f, 0x007f}, {0x80, 0x20ac}, {0x81, 0x0081}, {0x82, 0x201a}, {0x83, 0x0192},
        {0x84, 0x201e}, {0x85, 0x2026}, {0x86, 0x2020}, {0x87, 0x2021}, {0x88, 0x02c6}, {0x89, 0x2030}, {0x8a, 0x0160},
        {0x8b, 0x2039}, {0x8c, 0x0152}, {0x8d, 0x008d}, {0x8e, 0x017d}, {0x8f, 0x008f}, {0x90, 0x0090}, {0x91, 0x2018},
        {0x92, 0x2019}, {0x93, 0x201c}, {0x94, 0x201d}, {0x95, 0x2022}, {0x96, 0x2013}, {0x97, 0x2014}, {0x98, 0x02dc},
        {0x99, 0x2122}, {0x9a, 0x0161}, {0x9b, 0x203a}, {0x9c, 0x0153}, {0x9d, 0x009d}, {0x9e, 0x017e}, {0x9f, 0x0178},
        {0xa0, 0x00a0}, {0xab, 0x00ab}, {0xe4, 0x00e4}, {0xff, 0x00ff},
    };
    for (const auto& row : rows) {
        const std::string narrow(1, static_cast<char>(row.byte));
        EXPECT_EQ(Wide({row.code}), StringToWideChar(narrow, kWindows1252)) << Hex(narrow);
        EXPECT_EQ(narrow, WideCharToString(Wide({row.code}), kWindows1252)) << Hex(narrow);
    }
    EXPECT_EQ(L"", StringToWideChar("", kWindows1252));
    EXPECT_EQ("", WideCharToString(L"", kWindows1252));
}

TEST(WideText, EveryByteSurvivesWindows1252) {
    std::string bytes(256, '\0');
    for (std::size_t byte = 0; byte < bytes.size(); ++byte)
        bytes[byte] = static_cast<char>(byte);
    EXPECT_EQ(bytes, WideCharToString(StringToWideChar(bytes, kWindows1252), kWindows1252));
}

TEST(WideText, WhatWindows1252LacksBecomesAQuestionMark) {
    EXPECT_EQ("a?b", WideCharToString(Wide({'a', 0x431, 'b'}), kWindows1252));
    EXPECT_EQ("?", WideCharToString(Wide({0x1f600}), kWindows1252));
    EXPECT_EQ("?", WideCharToString(Wide({0x80}), kWindows1252));
    EXPECT_EQ("?x", WideCharToString(std::wstring{wchar_t(0xd83d), 'x'}, kWindows1252));
    EXPECT_EQ("?", WideCharToString(Wide({0x2248}), kWindows1252));
}

TEST(WideText, OtherCodePagesAreTheSystems) {
    const struct {
        int codePage;
        const char* narrow;
        std::wstring wide;
    } rows[] = {
        {437, "a\x84", Wide({'a', 0xe4})}, {850, "\x84", Wide({0xe4})},
        {866, "\xa1", Wide({0x431})},      {1250, "\x8a\xb9", Wide({0x160, 0x105})},
        {1251, "\xe1", Wide({0x431})},     {932, "x\x82\xa0y", Wide({'x', 0x3042, 'y'})},
        {20866, "\xc2", Wide({0x431})},    {28591, "\xe4", Wide({0xe4})},
        {28605, "\xa4", Wide({0x20ac})},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.wide, StringToWideChar(row.narrow, row.codePage)) << row.codePage;
        EXPECT_EQ(row.narrow, WideCharToString(row.wide, row.codePage)) << row.codePage;
        EXPECT_EQ(L"", StringToWideChar("", row.codePage)) << row.codePage;
        EXPECT_EQ("", WideCharToString(L"", row.codePage)) << row.codePage;
        EXPECT_EQ("a?b", WideCharToString(Wide({'a', 0x1f600, 'b'}), row.codePage)) << row.codePage;
        EXPECT_EQ("?b", WideCharToString(std::wstring{wchar_t(0xd83d), 'b'}, row.codePage)) << row.codePage;
    }
}

void ExpectBothWays(int codePage, const std::string& narrow, const std::wstring& wide) {
    EXPECT_EQ(wide, StringToWideChar(narrow, codePage)) << codePage;
    EXPECT_EQ(narrow, WideCharToString(wide, codePage)) << codePage;
}

TEST(WideText, CodePagesThatTheSystemCallsOtherwiseAreKnownByTheirNumbers) {
    ExpectBothWays(37, "\x81\x4a", Wide({'a', 0xa2}));
    ExpectBothWays(708, "a\xc7", Wide({'a', 0x627}));
    ExpectBothWays(10029, "a\x8a", Wide({'a', 0xe4}));
    if (IsUnderWine())
        GTEST_SKIP() << "Wine knows neither 20273 nor 20936";
    ExpectBothWays(20273, "\x81\xc0", Wide({'a', 0xe4}));
    ExpectBothWays(20936, "\xb0\xa1", Wide({0x554a}));
}

TEST(WideText, ATextOfAnyLengthIsConverted) {
    std::string narrow;
    std::wstring wide;
    for (int round = 0; round < 20000; ++round) {
        narrow += "\xe1z";
        wide += Wide({0x431, 'z'});
    }
    EXPECT_EQ(wide, StringToWideChar(narrow, 1251));
    EXPECT_EQ(narrow, WideCharToString(wide, 1251));
}

TEST(WideText, IllFormedTextOfAnotherCodePageIsReplaced) {
    EXPECT_EQ((std::wstring{'a', kBad}), StringToWideChar("a\x82", 932));
    EXPECT_EQ((std::wstring{'a', kBad, 'b'}), StringToWideChar("a\xff"
                                                               "b",
                                                               932));
    EXPECT_EQ((std::wstring{0x3042, kBad, 0x3042}), StringToWideChar("\x82\xa0\xff\x82\xa0", 932));
}

TEST(WideText, AnUnknownCodePageKnowsAsciiOnly) {
    for (const int codePage : {-1, 7, 123456}) {
        EXPECT_EQ((std::wstring{'a', kBad, 'b'}), StringToWideChar("a\xe4"
                                                                   "b",
                                                                   codePage))
            << codePage;
        EXPECT_EQ("a??b", WideCharToString(Wide({'a', 0xe4, 0x1f600, 'b'}), codePage)) << codePage;
        EXPECT_EQ("\x7f?", WideCharToString(Wide({0x7f, 0x80}), codePage)) << codePage;
    }
}

} // namespace
