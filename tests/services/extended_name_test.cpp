// SPDX-License-Identifier: BSL-1.0
#include "platform/pure/extended_name.h"

#include <ostream>
#include <string>

#include <gtest/gtest.h>

namespace {

using IO::System::ExtendedName;
using IO::System::kPlainRoom;
using IO::System::SystemName;
using IO::System::SystemPattern;

struct eRow {
    std::wstring name, current, result;
};

const std::wstring kWork = L"C:\\work\\now";
const std::wstring kShare = L"\\\\server\\share\\work";

void PrintTo(const eRow& row, std::ostream* out) {
    *out << testing::PrintToString(row.name) << " in " << testing::PrintToString(row.current);
}

TEST(ExtendedName, OfAStreamIsToldByTheColonInItsLastComponent) {
    for (const wchar_t* const stream : {L"file:notes", L"c:/x/file:notes", L"c:file:notes",
                                        L"\\\\?\\C:\\x\\file:notes:$DATA", L"x/:notes", L"file::$DATA"})
        EXPECT_TRUE(IO::System::NamesStream(stream)) << stream;
    for (const wchar_t* const none :
         {L"", L"file", L"c:file", L"c:/file", L"c:", L"c:/", L"\\\\?\\C:\\file", L"//server/share/file", L"a:b/file"})
        EXPECT_FALSE(IO::System::NamesStream(none)) << none;
}

TEST(ExtendedName, IsAbsoluteAndResolved) {
    const eRow rows[] = {
        {L"c:/x", kWork, L"\\\\?\\c:\\x"},
        {L"C:\\x\\y", kWork, L"\\\\?\\C:\\x\\y"},
        {L"c:/x/", kWork, L"\\\\?\\c:\\x\\"},
        {L"c:/", kWork, L"\\\\?\\c:\\"},
        {L"c://x///y//", kWork, L"\\\\?\\c:\\x\\y\\"},
        {L"c:/./x/../y/.", kWork, L"\\\\?\\c:\\y"},
        {L"c:/x/..", kWork, L"\\\\?\\c:\\"},
        {L"c:/../../x", kWork, L"\\\\?\\c:\\x"},
        {L"x", kWork, L"\\\\?\\C:\\work\\now\\x"},
        {L"x", L"C:\\", L"\\\\?\\C:\\x"},
        {L"x/y/", kWork, L"\\\\?\\C:\\work\\now\\x\\y\\"},
        {L".", kWork, L"\\\\?\\C:\\work\\now"},
        {L"./", kWork, L"\\\\?\\C:\\work\\now\\"},
        {L"..", kWork, L"\\\\?\\C:\\work"},
        {L"../../..", kWork, L"\\\\?\\C:\\"},
        {L"../x", kShare, L"\\\\?\\UNC\\server\\share\\x"},
        {L"../../x", kShare, L"\\\\?\\UNC\\server\\share\\x"},
        {L"c:x", kWork, L"\\\\?\\C:\\work\\now\\x"},
        {L"c:", kWork, L"\\\\?\\C:\\work\\now"},
        {L"d:x/y", L"D:\\", L"\\\\?\\D:\\x\\y"},
        {L"/x", kWork, L"\\\\?\\C:\\x"},
        {L"/", kWork, L"\\\\?\\C:\\"},
        {L"\\x\\", kShare, L"\\\\?\\UNC\\server\\share\\x\\"},
        {L"/x", L"\\\\?\\E:\\work", L"\\\\?\\E:\\x"},
        {L"../x", L"\\\\?\\UNC\\server\\share\\work", L"\\\\?\\UNC\\server\\share\\x"},
        {L"//server/share/x", kWork, L"\\\\?\\UNC\\server\\share\\x"},
        {L"//server/share/", kWork, L"\\\\?\\UNC\\server\\share\\"},
        {L"//server/share", kWork, L"\\\\?\\UNC\\server\\share"},
        {L"//server/share/../../x", kWork, L"\\\\?\\UNC\\server\\share\\x"},
        {L"//?/c:/x/../y", kWork, L"\\\\?\\c:\\y"},
        {L"//?/UNC/server/share/../x", kWork, L"\\\\?\\UNC\\server\\share\\x"},
        {L"//?/Volume{1}/", kWork, L"\\\\?\\Volume{1}\\"},
        {L"//./c:/x", kWork, L"\\\\?\\c:\\x"},
    };
    for (const eRow& row : rows)
        EXPECT_EQ(row.result, ExtendedName(row.name, row.current)) << testing::PrintToString(row);
}

TEST(ExtendedName, KeepsWhatThePlainFormLoses) {
    const eRow rows[] = {
        {L"c:/dot.", kWork, L"\\\\?\\c:\\dot."},
        {L"c:/dot./x", kWork, L"\\\\?\\c:\\dot.\\x"},
        {L"blank ", kWork, L"\\\\?\\C:\\work\\now\\blank "},
        {L"c:/...", kWork, L"\\\\?\\c:\\..."},
        {L"c:/.../x", kWork, L"\\\\?\\c:\\...\\x"},
        {L"c:/. /x", kWork, L"\\\\?\\c:\\. \\x"},
        {L"con", kWork, L"\\\\?\\C:\\work\\now\\con"},
        {L"c:/aux.txt", kWork, L"\\\\?\\c:\\aux.txt"},
    };
    for (const eRow& row : rows)
        EXPECT_EQ(row.result, ExtendedName(row.name, row.current)) << testing::PrintToString(row);
}

TEST(ExtendedName, IsTheNameItselfWhereThereIsNone) {
    for (const std::wstring name : {L"", L"\\\\?\\C:\\a\\..\\b", L"//server", L"//", L"///", L"//?/", L"//./"})
        EXPECT_EQ(name, ExtendedName(name, kWork)) << testing::PrintToString(name);
    for (const std::wstring current : {L"", L"work"})
        EXPECT_EQ(L"x", ExtendedName(L"x", current)) << testing::PrintToString(current);
}

TEST(SystemName, IsTheNameItselfWhereThatWillDo) {
    for (const std::wstring name : {L"",
                                    L"c:/x/y",
                                    L"c:x",
                                    L"/x",
                                    L"x",
                                    L"x/",
                                    L"../x",
                                    L"./x/..",
                                    L".",
                                    L"..",
                                    L"a..b/c. d",
                                    L"con",
                                    L"aux.txt",
                                    L"nul:",
                                    L"//server/share/x",
                                    L"//server/x/..",
                                    L"//./pipe/x",
                                    L"//?/c:/x",
                                    L"\\\\?\\C:\\dot.",
                                    L"c:"})
        EXPECT_EQ(name, SystemName(name, kWork)) << testing::PrintToString(name);
}

TEST(SystemName, IsTheExtendedFormWhereAComponentEndsInADotOrABlank) {
    for (const std::wstring name : {L"dot.", L"blank ", L"a./b", L"a /b", L"...", L".../x", L". ", L".. ", L"a. /b",
                                    L"c:/dot.", L"c:dot.", L"/dot.", L"//server/share/dot.", L"con.", L"//?/c:/dot."}) {
        EXPECT_TRUE(SystemName(name, kWork).starts_with(L"\\\\?\\")) << testing::PrintToString(name);
        EXPECT_EQ(ExtendedName(name, kWork), SystemName(name, kWork)) << testing::PrintToString(name);
    }
    EXPECT_EQ(L"\\\\?\\C:\\dot.\\x", SystemName(L"x", L"C:\\dot."));
    EXPECT_EQ(L"c:/x", SystemName(L"c:/x", L"C:\\dot."));
}

TEST(SystemName, IsTheExtendedFormWhereTheAbsoluteNameIsTooLong) {
    struct eStart {
        std::wstring start, current;
        std::size_t counted;
    };
    const eStart starts[] = {
        {L"c:/", kWork, 3},
        {L"//server/share/", kWork, 15},
        {L"", kWork, kWork.size() + 1},
        {L"", kShare, kShare.size() + 1},
    };
    for (const eStart& row : starts) {
        const std::wstring longest = row.start + std::wstring(kPlainRoom - row.counted, L'x');
        EXPECT_EQ(longest, SystemName(longest, row.current)) << testing::PrintToString(row.start);
        const std::wstring longer = longest + L'x';
        EXPECT_TRUE(SystemName(longer, row.current).starts_with(L"\\\\?\\")) << testing::PrintToString(row.start);
        EXPECT_EQ(ExtendedName(longer, row.current), SystemName(longer, row.current))
            << testing::PrintToString(row.start);
    }
}

TEST(SystemPattern, IsThePatternItselfWhereThatWillDo) {
    for (const std::wstring pattern : {L"", L"*.*", L"*.", L"a*. ", L"x/*", L"c:/x/*.", L"c:*.*", L"/*", L"../?", L"x/",
                                       L"x", L"//server/share/*.", L"\\\\?\\C:\\*"})
        EXPECT_EQ(pattern, SystemPattern(pattern, kWork)) << testing::PrintToString(pattern);
}

TEST(SystemPattern, IsThePatternItselfWhereItsFolderHasNoExtendedForm) {
    for (const std::wstring pattern : {L"//server./*.", L"//server. /a*.", L"//?./*. "})
        EXPECT_EQ(pattern, SystemPattern(pattern, kWork)) << testing::PrintToString(pattern);
    for (const std::wstring current : {L"", L"work"})
        EXPECT_EQ(L"dot./*.", SystemPattern(L"dot./*.", current)) << testing::PrintToString(current);
}

TEST(SystemPattern, HasAnExtendedFolderAndAMaskOfTheSameMeaning) {
    const std::wstring folder = L"c:/dot./", extended = L"\\\\?\\c:\\dot.\\";
    const struct {
        std::wstring mask, result;
    } masks[] = {
        {L"*.*", L"*.*"},  {L"*", L"*"},    {L"a*.txt", L"a*.txt"}, {L"*.", L"<"},  {L"a*.", L"a<"},
        {L"*. ", L"*"},    {L"a?.", L"a?"}, {L"a.?", L"a.?"},       {L"*..", L"<"}, {L"*.*.", L"*.*"},
        {L"a.*.", L"a.<"}, {L"", L""},      {L"b.", L"b."},         {L"x", L"x"},
    };
    for (const auto& row : masks)
        EXPECT_EQ(extended + row.result, SystemPattern(folder + row.mask, kWork)) << testing::PrintToString(row.mask);
}

TEST(SystemPattern, IsRelativeToTheCurrentFolder) {
    const std::wstring current = L"C:\\dot.";
    const eRow rows[] = {
        {L"*.*", current, L"\\\\?\\C:\\dot.\\*.*"}, {L"x/*", current, L"\\\\?\\C:\\dot.\\x\\*"},
        {L"../*", current, L"\\\\?\\C:\\*"},        {L"c:*", current, L"\\\\?\\C:\\dot.\\*"},
        {L"/*.", current, L"\\\\?\\C:\\<"},         {L"x", current, L"\\\\?\\C:\\dot.\\x"},
    };
    for (const eRow& row : rows)
        EXPECT_EQ(row.result, SystemPattern(row.name, row.current)) << testing::PrintToString(row);
}

TEST(SystemPattern, IsTooLongWithItsMask) {
    const std::wstring folder = L"c:/" + std::wstring(kPlainRoom - 6, L'x') + L"/";
    EXPECT_EQ(folder + L"*x", SystemPattern(folder + L"*x", kWork));
    EXPECT_EQ(ExtendedName(folder, kWork) + L"*xx", SystemPattern(folder + L"*xx", kWork));
}

} // namespace
