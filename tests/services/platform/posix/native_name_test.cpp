// SPDX-License-Identifier: BSL-1.0
#include "platform/posix/native_name.h"

#include <random>
#include <string>

#include <gtest/gtest.h>

namespace {

using IO::Platform::ByteName;
using IO::Platform::WideName;

struct eRow {
    std::string bytes;
    std::wstring name;
};

const eRow rows[] = {
    {"", L""},
    {"plain.txt", L"plain.txt"},
    {"\x7F", L"\x7F"},
    {"\xC2\x80", L"\x80"},
    {"\xC3\xA4", L"\u00e4"},
    {"\xDF\xBF", L"\u07ff"},
    {"\xE0\xA0\x80", L"\u0800"},
    {"\xEF\xBF\xBD", L"\ufffd"},
    {"\xF0\x9F\x98\x80", L"\U0001F600"},
    {"\xF4\x8F\xBF\xBF", L"\U0010FFFF"},
    {"\x80", {wchar_t(0xDC80)}},
    {"\xFF", {wchar_t(0xDCFF)}},
    {"\xC3", {wchar_t(0xDCC3)}},
    {"\xC3(", {wchar_t(0xDCC3), L'('}},
    {"\xC0\xAF", {wchar_t(0xDCC0), wchar_t(0xDCAF)}},
    {"\xE0\x80\xAF", {wchar_t(0xDCE0), wchar_t(0xDC80), wchar_t(0xDCAF)}},
    {"\xE2\x82", {wchar_t(0xDCE2), wchar_t(0xDC82)}},
    {"\xED\xA0\x80", {wchar_t(0xDCED), wchar_t(0xDCA0), wchar_t(0xDC80)}},
    {"\xF4\x90\x80\x80", {wchar_t(0xDCF4), wchar_t(0xDC90), wchar_t(0xDC80), wchar_t(0xDC80)}},
    {"\xF5\x80", {wchar_t(0xDCF5), wchar_t(0xDC80)}},
};

TEST(WideName, IsUtf8WithStrayBytesEscaped) {
    for (const eRow& row : rows) {
        EXPECT_EQ(row.name, WideName(row.bytes)) << testing::PrintToString(row.bytes);
        EXPECT_EQ(row.bytes, ByteName(row.name)) << testing::PrintToString(row.bytes);
    }
}

TEST(ByteName, TakesASurrogatePairForItsCharacter) {
    EXPECT_EQ("\xF0\x9F\x98\x80", ByteName(std::wstring{wchar_t(0xD83D), wchar_t(0xDE00)}));
    EXPECT_EQ("\xF0\x90\x80\x80", ByteName(std::wstring{wchar_t(0xD800), wchar_t(0xDC00)}));
    EXPECT_EQ("\xF4\x8F\xBF\xBF", ByteName(std::wstring{wchar_t(0xDBFF), wchar_t(0xDFFF)}));
}

TEST(ByteName, IsEmptyWhereTheNameHoldsNoCharacter) {
    for (const std::wstring& name :
         {std::wstring{L'a', wchar_t(0xD800), L'b'}, std::wstring{wchar_t(0xD800)}, std::wstring{wchar_t(0xDC00)},
          std::wstring{wchar_t(0xDFFF)}, std::wstring{wchar_t(0x110000)}, std::wstring{wchar_t(-1)}})
        EXPECT_EQ("", ByteName(name)) << testing::PrintToString(name);
}

TEST(WideName, LeadsBackToTheBytesWhateverTheyAre) {
    std::mt19937 random(1);
    for (int round = 0; round < 20'000; ++round) {
        std::string bytes(random() % 12, '\0');
        for (char& byte : bytes)
            byte = static_cast<char>(random() % 3 ? random() % 128 + 128 : random() % 127 + 1);
        ASSERT_EQ(bytes, ByteName(WideName(bytes))) << testing::PrintToString(bytes);
    }
}

} // namespace
