#include "platform/pure/extended_name.h"

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

const std::wstring work = L"C:\\work\\now";
const std::wstring share = L"\\\\server\\share\\work";

void PrintTo(const eRow& row, std::ostream* out) {
    *out << testing::PrintToString(row.name) << " in " << testing::PrintToString(row.current);
}

TEST(ExtendedName, IsAbsoluteAndResolved) {
    const eRow rows[] = {
        {L"c:/x", work, L"\\\\?\\c:\\x"},
        {L"C:\\x\\y", work, L"\\\\?\\C:\\x\\y"},
        {L"c:/x/", work, L"\\\\?\\c:\\x\\"},
        {L"c:/", work, L"\\\\?\\c:\\"},
        {L"c://x///y//", work, L"\\\\?\\c:\\x\\y\\"},
        {L"c:/./x/../y/.", work, L"\\\\?\\c:\\y"},
        {L"c:/x/..", work, L"\\\\?\\c:\\"},
        {L"c:/../../x", work, L"\\\\?\\c:\\x"},
        {L"x", work, L"\\\\?\\C:\\work\\now\\x"},
        {L"x", L"C:\\", L"\\\\?\\C:\\x"},
        {L"x/y/", work, L"\\\\?\\C:\\work\\now\\x\\y\\"},
        {L".", work, L"\\\\?\\C:\\work\\now"},
        {L"./", work, L"\\\\?\\C:\\work\\now\\"},
        {L"..", work, L"\\\\?\\C:\\work"},
        {L"../../..", work, L"\\\\?\\C:\\"},
        {L"../x", share, L"\\\\?\\UNC\\server\\share\\x"},
        {L"../../x", share, L"\\\\?\\UNC\\server\\share\\x"},
        {L"c:x", work, L"\\\\?\\C:\\work\\now\\x"},
        {L"c:", work, L"\\\\?\\C:\\work\\now"},
        {L"d:x/y", L"D:\\", L"\\\\?\\D:\\x\\y"},
        {L"/x", work, L"\\\\?\\C:\\x"},
        {L"/", work, L"\\\\?\\C:\\"},
        {L"\\x\\", share, L"\\\\?\\UNC\\server\\share\\x\\"},
        {L"/x", L"\\\\?\\E:\\work", L"\\\\?\\E:\\x"},
        {L"../x", L"\\\\?\\UNC\\server\\share\\work", L"\\\\?\\UNC\\server\\share\\x"},
        {L"//server/share/x", work, L"\\\\?\\UNC\\server\\share\\x"},
        {L"//server/share/", work, L"\\\\?\\UNC\\server\\share\\"},
        {L"//server/share", work, L"\\\\?\\UNC\\server\\share"},
        {L"//server/share/../../x", work, L"\\\\?\\UNC\\server\\share\\x"},
        {L"//?/c:/x/../y", work, L"\\\\?\\c:\\y"},
        {L"//?/UNC/server/share/../x", work, L"\\\\?\\UNC\\server\\share\\x"},
        {L"//?/Volume{1}/", work, L"\\\\?\\Volume{1}\\"},
        {L"//./c:/x", work, L"\\\\?\\c:\\x"},
    };
    for (const eRow& row : rows)
        EXPECT_EQ(row.result, ExtendedName(row.name, row.current)) << testing::PrintToString(row);
}

TEST(ExtendedName, KeepsWhatThePlainFormLoses) {
    const eRow rows[] = {
        {L"c:/dot.", work, L"\\\\?\\c:\\dot."},
        {L"c:/dot./x", work, L"\\\\?\\c:\\dot.\\x"},
        {L"blank ", work, L"\\\\?\\C:\\work\\now\\blank "},
        {L"c:/...", work, L"\\\\?\\c:\\..."},
        {L"c:/.../x", work, L"\\\\?\\c:\\...\\x"},
        {L"c:/. /x", work, L"\\\\?\\c:\\. \\x"},
        {L"con", work, L"\\\\?\\C:\\work\\now\\con"},
        {L"c:/aux.txt", work, L"\\\\?\\c:\\aux.txt"},
    };
    for (const eRow& row : rows)
        EXPECT_EQ(row.result, ExtendedName(row.name, row.current)) << testing::PrintToString(row);
}

TEST(ExtendedName, IsTheNameItselfWhereThereIsNone) {
    for (const std::wstring name : {L"", L"\\\\?\\C:\\a\\..\\b", L"//server", L"//", L"///", L"//?/", L"//./"})
        EXPECT_EQ(name, ExtendedName(name, work)) << testing::PrintToString(name);
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
        EXPECT_EQ(name, SystemName(name, work)) << testing::PrintToString(name);
}

TEST(SystemName, IsTheExtendedFormWhereAComponentEndsInADotOrABlank) {
    for (const std::wstring name : {L"dot.", L"blank ", L"a./b", L"a /b", L"...", L".../x", L". ", L".. ", L"a. /b",
                                    L"c:/dot.", L"c:dot.", L"/dot.", L"//server/share/dot.", L"con.", L"//?/c:/dot."}) {
        EXPECT_TRUE(SystemName(name, work).starts_with(L"\\\\?\\")) << testing::PrintToString(name);
        EXPECT_EQ(ExtendedName(name, work), SystemName(name, work)) << testing::PrintToString(name);
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
        {L"c:/", work, 3},
        {L"//server/share/", work, 15},
        {L"", work, work.size() + 1},
        {L"", share, share.size() + 1},
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
        EXPECT_EQ(pattern, SystemPattern(pattern, work)) << testing::PrintToString(pattern);
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
        EXPECT_EQ(extended + row.result, SystemPattern(folder + row.mask, work)) << testing::PrintToString(row.mask);
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
    EXPECT_EQ(folder + L"*x", SystemPattern(folder + L"*x", work));
    EXPECT_EQ(ExtendedName(folder, work) + L"*xx", SystemPattern(folder + L"*xx", work));
}

} // namespace
