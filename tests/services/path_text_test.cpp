// SPDX-License-Identifier: BSL-1.0
#include "files/path_text.h"

#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "widths.h"

namespace {

using IO::System::eNameRoot;
using IO::System::ePathParts;
using IO::System::FirstPart;
using IO::System::FolderOf;
using IO::System::MakeParts;

template <class Width>
class PathText : public testing::Test {};
TYPED_TEST_SUITE(PathText, eWidths, eWidthNames);

struct eSplitRow {
    std::string path, drive, dir, name, ext;
};

const eSplitRow splitRows[] = {
    {"c:/dir/file.txt", "c:", "/dir/", "file", ".txt"},
    {"c:\\dir\\sub\\file.txt", "c:", "\\dir\\sub\\", "file", ".txt"},
    {"c:\\dir/sub\\a.tar.gz", "c:", "\\dir/sub\\", "a.tar", ".gz"},
    {"dir/file", "", "dir/", "file", ""},
    {"file.txt", "", "", "file", ".txt"},
    {"file", "", "", "file", ""},
    {".rc", "", "", "", ".rc"},
    {"/home/me/.rc", "", "/home/me/", "", ".rc"},
    {"c:name.ext", "c:", "", "name", ".ext"},
    {"c:", "c:", "", "", ""},
    {"c:/", "c:", "/", "", ""},
    {"/", "", "/", "", ""},
    {"a.b/c", "", "a.b/", "c", ""},
    {"a.b\\c.d/", "", "a.b\\c.d/", "", ""},
    {"..", "", "", ".", "."},
    {"name.", "", "", "name", "."},
    {"//server/share/x.y", "", "//server/share/", "x", ".y"},
    {":", "", "", ":", ""},
    {"ab:c", "", "", "ab:c", ""},
};

TYPED_TEST(PathText, IsSplitIntoDriveFolderNameAndExtension) {
    using Text = typename TypeParam::Text;
    for (const eSplitRow& row : splitRows) {
        Text drive = TypeParam::Of("old"), dir = drive, name = drive, ext = drive;
        const Text path = TypeParam::Of(std::string_view(row.path));
        EXPECT_EQ(path, TypeParam::Split(path, &drive, &dir, &name, &ext));
        EXPECT_EQ(TypeParam::Of(std::string_view(row.drive)), drive) << row.path;
        EXPECT_EQ(TypeParam::Of(std::string_view(row.dir)), dir) << row.path;
        EXPECT_EQ(TypeParam::Of(std::string_view(row.name)), name) << row.path;
        EXPECT_EQ(TypeParam::Of(std::string_view(row.ext)), ext) << row.path;
        EXPECT_EQ(path, drive + dir + name + ext);
    }
}

// The lead bytes of the Japanese code page 932, whose second bytes include "\\" and all letters.
bool IsJapaneseLead(char byte) {
    const auto value = static_cast<unsigned char>(byte);
    return (value >= 0x81 && value <= 0x9F) || (value >= 0xE0 && value <= 0xFC);
}

TEST(DoubleByteText, IsNotSplitWithinACharacter) {
    const eSplitRow rows[] = {
        {"c:\\\x95\\\\\x83\\.txt", "c:", "\\\x95\\\\", "\x83\\", ".txt"},
        {"\x95\\", "", "", "\x95\\", ""},
        {"\x95\\/\x95\\", "", "\x95\\/", "\x95\\", ""},
        {"\x95\x95\\a", "", "\x95\x95\\", "a", ""},
        {"a\\\xB1\\b", "", "a\\\xB1\\", "b", ""},
        {"a/b.\x83.c", "", "a/", "b", ".\x83.c"},
        {"a.b\x95", "", "", "a", ".b\x95"},
        {"\x95", "", "", "\x95", ""},
        {"\x95:x", "\x95:", "", "x", ""},
    };
    for (const eSplitRow& row : rows) {
        const ePathParts<char> parts(row.path, IsJapaneseLead);
        EXPECT_EQ(row.drive, parts.drive) << testing::PrintToString(row.path);
        EXPECT_EQ(row.dir, parts.dir) << testing::PrintToString(row.path);
        EXPECT_EQ(row.name, parts.name) << testing::PrintToString(row.path);
        EXPECT_EQ(row.ext, parts.ext) << testing::PrintToString(row.path);
    }
}

TYPED_TEST(PathText, SplitLeavesOutputsOfAnEmptyPathAsTheyWere) {
    using Text = typename TypeParam::Text;
    const Text old = TypeParam::Of("old");
    Text drive = old, dir = old, name = old, ext = old;
    EXPECT_EQ(Text(), TypeParam::Split(Text(), &drive, &dir, &name, &ext));
    EXPECT_EQ(old, drive);
    EXPECT_EQ(old, dir);
    EXPECT_EQ(old, name);
    EXPECT_EQ(old, ext);
}

TYPED_TEST(PathText, SplitSkipsPartsWithANullPointer) {
    using Text = typename TypeParam::Text;
    const Text path = TypeParam::Of("c:/dir/file.txt");
    EXPECT_EQ(path, TypeParam::Split(path, nullptr, nullptr, nullptr, nullptr));
    Text name;
    EXPECT_EQ(path, TypeParam::Split(path, nullptr, nullptr, &name, nullptr));
    EXPECT_EQ(TypeParam::Of("file"), name);
}

TYPED_TEST(PathText, SplitMayWriteIntoThePathItself) {
    using Text = typename TypeParam::Text;
    Text path = TypeParam::Of("c:/dir/file.txt"), dir;
    EXPECT_EQ(TypeParam::Of("c:/dir/file.txt"), TypeParam::Split(path, &path, &dir, nullptr, nullptr));
    EXPECT_EQ(TypeParam::Of("c:"), path);
    EXPECT_EQ(TypeParam::Of("/dir/"), dir);
}

TYPED_TEST(PathText, APartBeyondItsRoomEmptiesAllOutputs) {
    using Text = typename TypeParam::Text;
    const std::string fits(255, 'x'), tooLong(256, 'x');
    struct eRow {
        std::string dir, name, ext;
        bool fit;
    };
    const eRow rows[] = {
        {fits.substr(1) + "/", fits, "." + fits.substr(1), true},
        {tooLong.substr(1) + "/", "n", ".e", false},
        {"d/", tooLong, ".e", false},
        {"d/", "n", "." + fits, false},
        {tooLong + "/", tooLong, "." + tooLong, false},
    };
    for (const eRow& row : rows) {
        const Text path = TypeParam::Of(std::string_view("c:" + row.dir + row.name + row.ext));
        Text drive = TypeParam::Of("old"), dir = drive, name = drive, ext = drive;
        EXPECT_EQ(path, TypeParam::Split(path, &drive, &dir, &name, &ext));
        EXPECT_EQ(row.fit ? path : Text(), drive + dir + name + ext) << row.dir.size() << " " << row.name.size();
    }
}

struct eWalkRow {
    std::string_view folder;
    eNameRoot root;
    std::vector<std::string> parts;
};

const eWalkRow walkRows[] = {
    {"c:/a/b/", eNameRoot::Drive, {"c:/a", "c:/a/b", "c:/a/b/"}},
    {"c:/a", eNameRoot::Drive, {"c:/a"}},
    {"c:", eNameRoot::Drive, {"c:"}},
    {"c:/", eNameRoot::Drive, {"c:/"}},
    {"c:a/b", eNameRoot::Drive, {"c:a", "c:a/b"}},
    {"x/y", eNameRoot::Drive, {"x", "x/y"}},
    {"x", eNameRoot::Drive, {"x"}},
    {"/x/y", eNameRoot::Drive, {"", "/x", "/x/y"}},
    {"//server/share/x", eNameRoot::Drive, {"", "/", "//server", "//server/share", "//server/share/x"}},
    {"/x/y", eNameRoot::Slash, {"/x", "/x/y"}},
    {"x/y", eNameRoot::Slash, {"x", "x/y"}},
    {"/", eNameRoot::Slash, {"/"}},
    {"//x", eNameRoot::Slash, {"/", "//x"}},
    {"a:b/c:d/e", eNameRoot::Slash, {"a:b", "a:b/c:d", "a:b/c:d/e"}},
};

TEST(CreateWalk, NamesEveryPartFromTheFirstAfterTheRoot) {
    for (const eWalkRow& row : walkRows) {
        std::vector<std::string> parts;
        const auto makeFolder = [&](const std::string& part) { return parts.push_back(part), true; };
        EXPECT_TRUE(MakeParts(std::string(row.folder), FirstPart(row.folder, row.root), makeFolder));
        EXPECT_EQ(row.parts, parts) << row.folder;
    }
}

TEST(CreateWalk, EndsAtTheFirstPartThatIsRefused) {
    std::vector<std::string> parts;
    const auto makeFolder = [&](const std::string& part) { return parts.push_back(part), part != "a/b"; };
    EXPECT_FALSE(MakeParts(std::string("a/b/c/d"), 0, makeFolder));
    EXPECT_EQ((std::vector<std::string>{"a", "a/b"}), parts);
}

TEST(CreateWalk, IsTheSameOverWideNames) {
    std::vector<std::wstring> parts;
    const auto makeFolder = [&](const std::wstring& part) { return parts.push_back(part), true; };
    EXPECT_TRUE(
        MakeParts(std::wstring(L"c:/a/b"), FirstPart(std::wstring_view(L"c:/a/b"), eNameRoot::Drive), makeFolder));
    EXPECT_EQ((std::vector<std::wstring>{L"c:/a", L"c:/a/b"}), parts);
}

TEST(FolderOfExecutable, IsDriveAndFolderWithForwardSlashes) {
    struct eRow {
        std::string executable, folder;
    };
    const std::string longFolder = "/" + std::string(253, 'x') + "/";
    const eRow rows[] = {
        {"C:\\Prog\\tool.exe", "C:/Prog/"},
        {"C:\\tool.exe", "C:/"},
        {"/usr/bin/tool", "/usr/bin/"},
        {"/tool", "/"},
        {"\\\\server\\share\\tool.exe", "//server/share/"},
        {"\\\\?\\C:\\Prog\\tool.exe", "C:/Prog/"},
        {"\\\\?\\UNC\\server\\share\\tool.exe", "//server/share/"},
        {"\\\\.\\C:\\tool.exe", "//./C:/"},
        {"//?/tool", "//?/"},
        {"", ""},
        {"tool", ""},
        {longFolder + "t", longFolder},
        {"/x" + longFolder + "t", ""},
        {longFolder + std::string(519 - longFolder.size(), 't'), longFolder},
        {longFolder + std::string(520 - longFolder.size(), 't'), ""},
    };
    for (const eRow& row : rows) {
        EXPECT_EQ(row.folder, FolderOf(row.executable)) << row.executable;
        const std::wstring wide(row.executable.begin(), row.executable.end());
        EXPECT_EQ(std::wstring(row.folder.begin(), row.folder.end()), FolderOf(wide)) << row.executable;
    }
}

} // namespace
