// SPDX-License-Identifier: BSL-1.0
#include <string>

#include <gtest/gtest.h>

#include "widths.h"

namespace {

using IO::System::NameFromUtf8;
using IO::System::NameFromUtf8W;
using IO::System::NamesAreUtf8;
using IO::System::NameToUtf8;
using IO::System::NarrowName;
using IO::System::WideName;

constexpr char kWorld[] = "a/\xce\xbb\xe6\x97\xa5\xf0\x9f\x8c\x8d.txt";
const std::wstring kWideWorld = L"a/\u03bb\u65e5\U0001f30d.txt";

} // namespace

TEST(NameConversion, OfAsciiKeepsIt) {
    EXPECT_EQ(L"c:/a b/c.txt", WideName("c:\\a b/c.txt"));
    EXPECT_EQ("c:/a b/c.txt", NarrowName(L"c:\\a b/c.txt"));
    EXPECT_EQ("c:/a", NameFromUtf8("c:\\a"));
    EXPECT_EQ(L"c:/a", NameFromUtf8W("c:\\a"));
    EXPECT_EQ("c:/a", NameToUtf8(eFileName("c:/a")));
    EXPECT_EQ("c:/a", NameToUtf8(eFileNameW(L"c:/a")));
    EXPECT_TRUE(WideName("").empty() && NarrowName(L"").empty() && NameFromUtf8("").empty());
    EXPECT_TRUE(NameFromUtf8W("").empty() && NameToUtf8(eFileNameW()).empty());
}

TEST(NameConversion, OfUtf8ToWideNamesAndBackKeepsEveryCharacter) {
    EXPECT_EQ(kWideWorld, NameFromUtf8W(kWorld).str());
    EXPECT_EQ(kWorld, NameToUtf8(eFileNameW(kWideWorld)));
}

TEST(NameConversion, ToNarrowNamesGivesTheNameOrNothing) {
    if (NamesAreUtf8()) {
        EXPECT_EQ(kWorld, NameFromUtf8(kWorld));
        EXPECT_EQ(kWorld, NarrowName(eFileNameW(kWideWorld)));
        EXPECT_EQ(kWideWorld, WideName(kWorld).str());
        EXPECT_EQ(kWorld, NameToUtf8(eFileName(kWorld)));
    } else {
        EXPECT_TRUE(NameFromUtf8(kWorld).empty());
        EXPECT_TRUE(NarrowName(eFileNameW(kWideWorld)).empty());
    }
}

TEST(NameConversion, OfIllFormedUtf8IsEmptyOrKeepsTheBytes) {
    if (kHasDrives) {
        EXPECT_TRUE(NameFromUtf8("a\xff").empty());
        EXPECT_TRUE(NameFromUtf8W("a\xff").empty());
    } else {
        EXPECT_EQ("a\xff", NameFromUtf8("a\xff"));
        EXPECT_EQ("a\xff", NarrowName(NameFromUtf8W("a\xff")));
        EXPECT_EQ(L"a\xdcff", NameFromUtf8W("a\xff").str());
    }
}
