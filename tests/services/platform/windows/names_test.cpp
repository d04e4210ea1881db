// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <windows.h>

#include <gtest/gtest.h>

#include <qzl_io/streams.h>

#include "support/current_folder.h"
#include "support/platform/windows/import_table.h"
#include "support/platform/windows/strict_names.h"

#include "../../real_tree.h"

// Names that are special on this system: too long for its functions, ending in a dot or a blank, naming devices,
// outside the code page.

namespace {

template <class Text>
Text Repeated(const Text& part, int times) {
    Text text;
    for (int time = 0; time < times; ++time)
        text += part;
    return text;
}

// A test's own folder, seen only through extended names.
template <class Width>
class WindowsNames : public eRealTree<Width> {
protected:
    using Text = typename Width::Text;
    using Name = typename Width::Name;

    void TearDown() override { IO::System::PathW::Delete(eFileNameW(this->temp.NameW(L"root")), true); }

    // Names below are relative to "root" in the test's folder, with forward slashes.
    std::wstring OnDisk(std::wstring_view relative) const {
        std::wstring name = L"\\\\?\\" + this->temp.NameW(L"root/" + std::wstring(relative));
        std::replace(name.begin(), name.end(), L'/', L'\\');
        while (name.ends_with(L'\\'))
            name.pop_back();
        return name;
    }

    void Make(std::wstring_view relative, std::string_view content) const {
        for (std::size_t slash = 0; slash != relative.npos; slash = relative.find(L'/', slash + 1))
            ::CreateDirectoryW(OnDisk(relative.substr(0, slash)).c_str(), nullptr);
        if (relative.ends_with(L'/'))
            return;
        const HANDLE file =
            ::CreateFileW(OnDisk(relative).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
        ASSERT_NE(INVALID_HANDLE_VALUE, file);
        DWORD written = 0;
        EXPECT_TRUE(::WriteFile(file, content.data(), static_cast<DWORD>(content.size()), &written, nullptr));
        ::CloseHandle(file);
    }

    // The content of a file; "(none)" if there is no such file.
    std::string Content(std::wstring_view relative) const {
        const HANDLE file =
            ::CreateFileW(OnDisk(relative).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
        if (file == INVALID_HANDLE_VALUE)
            return "(none)";
        std::string content(1000, '\0');
        DWORD read = 0;
        EXPECT_TRUE(::ReadFile(file, content.data(), static_cast<DWORD>(content.size()), &read, nullptr));
        ::CloseHandle(file);
        content.resize(read);
        return content;
    }

    bool Stands(std::wstring_view relative) const {
        return ::GetFileAttributesW(OnDisk(relative).c_str()) != INVALID_FILE_ATTRIBUTES;
    }

    Name Below(const Text& relative) const { return Name(Width::OfPath(this->temp.Path() / "root/") + relative); }
};
TYPED_TEST_SUITE(WindowsNames, eWidths, eWidthNames);

constexpr std::string_view kVictim = "precious";

TYPED_TEST(WindowsNames, ThatEndInDotsAndBlanksAreSavedInTheirOwnPlace) {
    this->Make(L"a", kVictim);
    this->Make(L"folder. ./", "");
    for (const char* const name : {"a.", "a ", "a. .", "folder. ./b."}) {
        const std::wstring onDisk = eWide::Of(name);
        for (const char* const content : {"first", "second"}) {
            const eStrictNames strict;
            IO::eSaveFile file(this->Below(TypeParam::Of(name)));
            file.Write(content, std::string_view(content).size());
            EXPECT_TRUE(file.Commit()) << name << ": " << file.Failure().text;
            EXPECT_EQ(content, this->Content(onDisk)) << name;
        }
        EXPECT_EQ(kVictim, this->Content(L"a")) << name;
    }
}

// --- Outside the code page ---

bool IsInNarrowCodePage(const std::wstring& text) {
    BOOL replaced = FALSE;
    ::WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, text.data(), static_cast<int>(text.size()), nullptr, 0, nullptr,
                          &replaced);
    return !replaced;
}

const std::wstring kSlashLike = L"..\xFF0F"; // a full-width slash, whose best fit is a slash
const std::wstring kSun = L"\x65E5";
const std::wstring kCAcute = L"\x0107"; // whose best fit is "c"
const std::wstring kEAcute = L"\x00E9";

TYPED_TEST(WindowsNames, DeletionRemovesNamesOutsideTheCodePageAndNothingInTheirStead) {
    this->Make(L"victim.txt", kVictim);
    this->Make(L"tree/" + kSlashLike + L"victim.txt", "odd");
    this->Make(L"tree/sub/" + kSlashLike + kSlashLike + L"victim.txt", "odd");
    this->Make(L"tree/" + kSun + L"/" + kSun + L".txt", "odd");
    TypeParam::Delete(this->Below(TypeParam::Of("tree")), true);
    EXPECT_EQ(kVictim, this->Content(L"victim.txt"));
    EXPECT_FALSE(this->Stands(L"tree"));
}

TYPED_TEST(WindowsNames, CopyingKeepsNamesOutsideTheCodePage) {
    this->Make(L"victim.txt", kVictim);
    this->Make(L"from/" + kSlashLike + L"victim.txt", "odd");
    this->Make(L"from/" + kSun + L"/" + kSun + L".txt", "sun");
    this->Make(L"from/" + kCAcute, "accent");
    this->Make(L"from/c", "none");
    TypeParam::Copy(this->Below(TypeParam::Of("from")), this->Below(TypeParam::Of("to")));
    EXPECT_EQ(kVictim, this->Content(L"victim.txt"));
    EXPECT_EQ("odd", this->Content(L"to/" + kSlashLike + L"victim.txt"));
    EXPECT_EQ("sun", this->Content(L"to/" + kSun + L"/" + kSun + L".txt"));
    EXPECT_EQ("accent", this->Content(L"to/" + kCAcute));
    EXPECT_EQ("none", this->Content(L"to/c"));
}

TYPED_TEST(WindowsNames, PurgingStaysInTheTreeWhateverItsNames) {
    this->Make(L"outside/", "");
    this->Make(L"tree/" + kSlashLike + L"outside/", "");
    this->Make(L"tree/sub/" + kSun + L"/", "");
    this->Make(L"tree/" + kSun + L"/", "");
    this->Make(L"tree/" + kCAcute + L"/file", "kept");
    this->Make(L"tree/c/", "");
    TypeParam::PurgeEmpty(this->Below(TypeParam::Of("tree/")));
    EXPECT_TRUE(this->Stands(L"outside"));
    EXPECT_FALSE(this->Stands(L"tree/" + kSlashLike + L"outside"));
    EXPECT_FALSE(this->Stands(L"tree/sub"));
    EXPECT_FALSE(this->Stands(L"tree/" + kSun));
    EXPECT_EQ("kept", this->Content(L"tree/" + kCAcute + L"/file"));
    EXPECT_FALSE(this->Stands(L"tree/c"));
}

template <class Search, class Name, class Text>
std::map<Text, unsigned long long> Found(const Name& folder, const Text& mask) {
    std::map<Text, unsigned long long> found;
    for (Search search(folder, mask); search.Valid(); search.Next())
        if (search.IsFile() || search.IsSubfolder())
            found[search.Name()] = search.Size();
    return found;
}

class NarrowSearch : public WindowsNames<eNarrow> {
protected:
    void SetUp() override {
        if (IsInNarrowCodePage(kSun) || !IsInNarrowCodePage(kEAcute))
            GTEST_SKIP() << "the characters of these tests are for another code page";
    }

    std::map<std::string, unsigned long long> Entries() const {
        return Found<IO::eSearch>(Below("tree/"), std::string("*.*"));
    }

    std::string ShortName(std::wstring_view relative) const {
        WIN32_FIND_DATAW found{};
        ::FindClose(::FindFirstFileW(OnDisk(relative).c_str(), &found));
        const std::wstring name = found.cAlternateFileName;
        return {name.begin(), name.end()};
    }
};

TEST_F(NarrowSearch, GivesTheShortNameWhereNoNarrowNameLeadsToTheEntry) {
    this->Make(L"tree/" + kSun + L".txt", "1");
    this->Make(L"tree/" + kSlashLike + L"x.txt", "22");
    this->Make(L"tree/" + kCAcute + L".txt", "333");
    this->Make(L"tree/" + kEAcute + L".txt", "4444");
    this->Make(L"tree/plain", "55555");
    std::map<std::string, unsigned long long> expected = {{"\xE9.txt", 4}, {"plain", 5}};
    unsigned long long size = 0;
    for (const std::wstring& name : {kSun + L".txt", kSlashLike + L"x.txt", kCAcute + L".txt"}) {
        const std::string shortName = ShortName(L"tree/" + name);
        if (shortName.empty())
            GTEST_SKIP() << "the volume keeps no short names";
        expected[shortName] = ++size;
    }
    EXPECT_EQ(expected, Entries());
    for (const auto& [name, length] : expected)
        EXPECT_EQ(length, IO::System::File::Size(Below("tree/" + name))) << name;
}

decltype(&::FindFirstFileW) systemsFirst;
decltype(&::FindNextFileW) systemsNext;

HANDLE WINAPI FirstWithoutShortName(LPCWSTR pattern, LPWIN32_FIND_DATAW found) {
    const HANDLE search = systemsFirst(pattern, found);
    found->cAlternateFileName[0] = 0;
    return search;
}
BOOL WINAPI NextWithoutShortName(HANDLE search, LPWIN32_FIND_DATAW found) {
    const BOOL moved = systemsNext(search, found);
    found->cAlternateFileName[0] = 0;
    return moved;
}

TEST_F(NarrowSearch, LeavesOutWhatNoNarrowNameLeadsToAndTheWideOneShowsIt) {
    const eReplacedCall first("qzl_io.dll", "FindFirstFileW", &FirstWithoutShortName, &systemsFirst);
    const eReplacedCall next("qzl_io.dll", "FindNextFileW", &NextWithoutShortName, &systemsNext);
    this->Make(L"tree/" + kSun + L".txt", "1");
    this->Make(L"tree/" + kSlashLike + L"x.txt", "22");
    EXPECT_TRUE(Entries().empty());
    EXPECT_FALSE(IO::eSearch(Below("tree/"), "*.txt").Valid());
    this->Make(L"tree/" + kEAcute + L".txt", "4444");
    EXPECT_EQ((std::map<std::string, unsigned long long>{{"\xE9.txt", 4}}), Entries());
    const auto wide = Found<IO::eSearchW>(eFileNameW(this->temp.NameW(L"root/tree/")), std::wstring(L"*.txt"));
    EXPECT_EQ((std::map<std::wstring, unsigned long long>{
                  {kSun + L".txt", 1}, {kSlashLike + L"x.txt", 2}, {kEAcute + L".txt", 4}}),
              wide);
}

TEST_F(NarrowSearch, IsNotWhatTreesAreWalkedBy) {
    const eReplacedCall first("qzl_io.dll", "FindFirstFileW", &FirstWithoutShortName, &systemsFirst);
    const eReplacedCall next("qzl_io.dll", "FindNextFileW", &NextWithoutShortName, &systemsNext);
    this->Make(L"tree/" + kSun + L"/" + kSun + L"/", "");
    this->Make(L"from/" + kSun + L"/" + kSun, "sun");
    IO::System::Path::PurgeEmpty(Below("tree/"));
    EXPECT_FALSE(Stands(L"tree/" + kSun));
    IO::System::Path::Copy(Below("from"), Below("to"));
    EXPECT_EQ("sun", Content(L"to/" + kSun + L"/" + kSun));
    IO::System::Path::Delete(Below("to"), true);
    EXPECT_FALSE(Stands(L"to"));
}

TEST_F(NarrowSearch, ShowsWhatADeletionLeavesAsWellAsTheCodePageCan) {
    std::set<std::string> shown;
    for (const std::wstring& name : {kSun + L".txt", kEAcute + L".txt"}) {
        this->Make(L"tree/" + name, "1");
        const std::wstring kept = OnDisk(L"tree/" + name);
        ASSERT_TRUE(::SetFileAttributesW(kept.c_str(), FILE_ATTRIBUTE_READONLY));
        for (const auto& failure : IO::System::Path::DeleteTree(Below("tree")).failures)
            shown.insert(failure.name.str().substr(Below("tree/").str().size()));
        ::SetFileAttributesW(kept.c_str(), FILE_ATTRIBUTE_NORMAL);
    }
    EXPECT_EQ((std::set<std::string>{"?.txt", "\xE9.txt"}), shown);
}

// Sets another code page for narrow names.
UINT namesPage;
decltype(&::MultiByteToWideChar) systemsWiden;
decltype(&::WideCharToMultiByte) systemsNarrow;

int WINAPI WidenByPage(UINT, DWORD flags, LPCCH text, int size, LPWSTR room, int count) {
    return systemsWiden(namesPage, flags, text, size, room, count);
}
int WINAPI NarrowByPage(UINT, DWORD flags, LPCWCH text, int size, LPSTR room, int count, LPCCH replacement,
                        LPBOOL replaced) {
    return systemsNarrow(namesPage, flags, text, size, room, count, replacement, replaced);
}

template <UINT Page>
class NamesOfPage : public WindowsNames<eNarrow> {
protected:
    void SetUp() override { namesPage = Page; }

    const eReplacedCall<decltype(systemsWiden)> widened{"qzl_io.dll", "MultiByteToWideChar", &WidenByPage,
                                                        &systemsWiden};
    const eReplacedCall<decltype(systemsNarrow)> narrowed{"qzl_io.dll", "WideCharToMultiByte", &NarrowByPage,
                                                          &systemsNarrow};
};

using Utf8Names = NamesOfPage<CP_UTF8>;

TEST_F(Utf8Names, AreFoundAndOpenedByTheirBytes) {
    this->Make(L"tree/" + kSun + L".txt", "1");
    this->Make(L"tree/" + kSlashLike + L"x", "22");
    EXPECT_EQ((std::map<std::string, unsigned long long>{{"\xE6\x97\xA5.txt", 1}, {"..\xEF\xBC\x8Fx", 2}}),
              Found<IO::eSearch>(Below("tree/"), std::string("*.*")));
    EXPECT_EQ(1u, IO::System::File::Size(Below("tree/\xE6\x97\xA5.txt")));
    EXPECT_EQ(2u, IO::System::File::Size(Below("tree/..\xEF\xBC\x8Fx")));
}

TEST_F(Utf8Names, ThatAreIllFormedNameNothing) {
    for (const char* name : {"\x80", "\xE6\x97", "\xC0\xAF", "\xED\xA0\x80"}) {
        EXPECT_FALSE(IO::System::Path::Create(Below(name))) << name;
        EXPECT_FALSE(IO::eFileStream(Below(name), IO::StreamMode::Write).IsOpen()) << name;
    }
}

decltype(&::FindFirstFileW) systemsFirstListed;

// Gives every entry a name that is not valid text.
HANDLE WINAPI FirstWithLoneSurrogate(LPCWSTR pattern, LPWIN32_FIND_DATAW found) {
    const HANDLE search = systemsFirstListed(pattern, found);
    found->cFileName[0] = 0xD800;
    found->cAlternateFileName[0] = 0;
    return search;
}

TEST_F(Utf8Names, AreNotThoseWithALoneSurrogate) {
    this->Make(L"tree/file", "1");
    const eReplacedCall listed("qzl_io.dll", "FindFirstFileW", &FirstWithLoneSurrogate, &systemsFirstListed);
    EXPECT_FALSE(IO::eSearch(Below("tree/"), "file").Valid());
    EXPECT_TRUE(IO::eSearchW(eFileNameW(this->temp.NameW(L"root/tree/")), L"file").Valid());
}

// Names of Japanese Windows, where the second byte of a character may look like a slash.
using JapaneseNames = NamesOfPage<932>;

TEST_F(JapaneseNames, AreFoundAndOpenedByTheirBytes) {
    this->Make(L"tree/" + kSun + L".txt", "1");
    this->Make(L"tree/\x30DD", "22"); // its second byte is a vertical bar
    EXPECT_EQ((std::map<std::string, unsigned long long>{{"\x93\xFA.txt", 1}, {"\x83|", 2}}),
              Found<IO::eSearch>(Below("tree/"), std::string("*.*")));
    EXPECT_EQ(1u, IO::System::File::Size(Below("tree/\x93\xFA.txt")));
    EXPECT_EQ(2u, IO::System::File::Size(Below("tree/\x83|")));
}

TEST_F(JapaneseNames, WithAHalfThatAFileNameWouldTurnAreGivenByTheirShortNames) {
    this->Make(L"tree/\x8868.txt", "1");  // its second byte is a backslash
    this->Make(L"tree/\x00A5.txt", "22"); // its best fit is a backslash
    const auto found = Found<IO::eSearch>(Below("tree/"), std::string("*.*"));
    if (found.empty())
        GTEST_SKIP() << "the volume keeps no short names";
    EXPECT_EQ(2u, found.size());
    for (const auto& [name, size] : found) {
        EXPECT_EQ(name.npos, name.find_first_of("\\/")) << name;
        EXPECT_EQ(size, IO::System::File::Size(Below("tree/" + name))) << name;
    }
}

TEST_F(JapaneseNames, ThatAreIllFormedNameNothing) {
    for (const char* name : {"\x81", "\x93 .txt", "\x81\x20"}) {
        EXPECT_FALSE(IO::System::File::Access(Below(name), IO::System::File::Exist)) << name;
        EXPECT_FALSE(IO::System::Path::Create(Below(name))) << name;
        IO::eFileStream stream(Below(name), IO::StreamMode::Write);
        EXPECT_FALSE(stream.IsOpen()) << name;
    }
}

// --- The running program ---

std::wstring programName, programShortName;

DWORD GiveName(const std::wstring& name, LPWSTR room, DWORD size) {
    if (name.size() >= size)
        return name.empty() ? 0 : size;
    std::copy_n(name.c_str(), name.size() + 1, room);
    return static_cast<DWORD>(name.size());
}

DWORD WINAPI GiveModuleName(HMODULE, LPWSTR room, DWORD size) {
    return GiveName(programName, room, size);
}
DWORD WINAPI GiveShortName(LPCWSTR, LPWSTR room, DWORD size) {
    return GiveName(programShortName, room, size);
}

TEST(WorkingDirOutsideTheCodePage, HoldsShortNamesOrIsEmpty) {
    if (IsInNarrowCodePage(kSun))
        GTEST_SKIP() << "the characters of this test are for another code page";
    decltype(&::GetModuleFileNameW) systemsName;
    decltype(&::GetShortPathNameW) systemsShortName;
    const eReplacedCall named("qzl_io.dll", "GetModuleFileNameW", &GiveModuleName, &systemsName);
    const eReplacedCall shortened("qzl_io.dll", "GetShortPathNameW", &GiveShortName, &systemsShortName);
    const struct {
        std::wstring name, shortName;
        std::string narrow;
        std::wstring wide;
    } rows[] = {
        {L"C:\\Prog\\tool.exe", L"", "C:/Prog/", L"C:/Prog/"},
        {L"C:\\" + kEAcute + L"\\tool.exe", L"", "C:/\xE9/", L"C:/" + kEAcute + L"/"},
        {L"C:\\" + kSun + L"\\tool.exe", L"C:\\B2C4~1\\tool.exe", "C:/B2C4~1/", L"C:/" + kSun + L"/"},
        {L"C:\\" + kSun + L"\\tool.exe", L"C:\\" + kSun + L"\\tool.exe", "", L"C:/" + kSun + L"/"},
        {L"C:\\" + kSlashLike + L"x\\tool.exe", L"", "", L"C:/" + kSlashLike + L"x/"},
        {L"C:\\x\\" + std::wstring(600, L't'), L"C:\\x\\T", "", L""},
    };
    for (const auto& row : rows) {
        programName = row.name;
        programShortName = row.shortName;
        EXPECT_EQ(row.narrow, IO::System::Path::WorkingDir());
        EXPECT_EQ(row.wide, IO::System::PathW::WorkingDir());
    }
}

// --- Bare drives ---

TYPED_TEST(WindowsNames, ForABareDriveNothingIsDone) {
    this->Make(L"other/file", "other");
    const eStrictNames strict;
    const typename TypeParam::Name bare(TypeParam::Of("1:")); // a drive that nobody has, should the test fail
    TypeParam::Delete(bare, true);
    TypeParam::Delete(bare, false);
    TypeParam::Copy(this->Below(TypeParam::Of("other")), bare);
    TypeParam::Copy(bare, this->Below(TypeParam::Of("other")));
    EXPECT_EQ(std::vector<std::wstring>(), strict.Given());
    EXPECT_EQ("other", this->Content(L"other/file"));
}

// --- Too long ---

// Twenty components of a hundred characters.
const std::string deepFolder = Repeated(std::string(99, 'd') + "/", 20);
const std::wstring deepFolderW(deepFolder.begin(), deepFolder.end());

TYPED_TEST(WindowsNames, LongFoldersAreMadeAndDeleted) {
    const eStrictNames strict;
    const auto deep = this->Below(TypeParam::Of("tree/" + deepFolder));
    EXPECT_TRUE(TypeParam::Create(deep));
    EXPECT_TRUE(this->Stands(L"tree/" + deepFolderW));
    EXPECT_TRUE(TypeParam::MayAccess(deep, 0));
    EXPECT_TRUE(TypeParam::Create(deep));
    EXPECT_TRUE(TypeParam::Create(this->Below(TypeParam::Of("tree/" + deepFolder + "more"))));
    TypeParam::Delete(this->Below(TypeParam::Of("tree/" + deepFolder + "more")), false);
    EXPECT_FALSE(this->Stands(L"tree/" + deepFolderW + L"more"));
    TypeParam::Delete(this->Below(TypeParam::Of("tree")), true);
    EXPECT_FALSE(this->Stands(L"tree"));
}

TYPED_TEST(WindowsNames, LongFoldersAreSearchedCopiedAndPurged) {
    const eStrictNames strict;
    this->Make(L"from/" + deepFolderW + L"file.txt", "content");
    this->Make(L"from/" + deepFolderW + L"empty/", "");
    const auto found =
        Found<typename TypeParam::Search>(this->Below(TypeParam::Of("from/" + deepFolder)), TypeParam::Of("f*.txt"));
    EXPECT_EQ((std::map<typename TypeParam::Text, unsigned long long>{{TypeParam::Of("file.txt"), 7}}), found);
    TypeParam::Copy(this->Below(TypeParam::Of("from")), this->Below(TypeParam::Of("to")));
    EXPECT_EQ("content", this->Content(L"to/" + deepFolderW + L"file.txt"));
    EXPECT_TRUE(this->Stands(L"to/" + deepFolderW + L"empty"));
    TypeParam::PurgeEmpty(this->Below(TypeParam::Of("to/" + deepFolder)));
    EXPECT_FALSE(this->Stands(L"to/" + deepFolderW + L"empty"));
    EXPECT_EQ("content", this->Content(L"to/" + deepFolderW + L"file.txt"));
    EXPECT_TRUE(TypeParam::DeleteFile(this->Below(TypeParam::Of("to/" + deepFolder + "file.txt"))));
    TypeParam::PurgeEmpty(this->Below(TypeParam::Of("to/")));
    EXPECT_TRUE(this->Stands(L"to"));
    EXPECT_FALSE(this->Stands(L"to/" + std::wstring(99, L'd')));
}

TYPED_TEST(WindowsNames, LongFilesAreTestedCopiedMeasuredAndDeleted) {
    const eStrictNames strict;
    this->Make(L"tree/" + deepFolderW, "");
    const auto file = this->Below(TypeParam::Of("tree/" + deepFolder + "file"));
    const auto copy = this->Below(TypeParam::Of("tree/" + deepFolder + "copy"));
    const auto other = this->Below(TypeParam::Of("tree/" + deepFolder + "other"));
    this->Make(L"tree/" + deepFolderW + L"file", "content");
    bool cancel = false;
    EXPECT_TRUE(TypeParam::MayAccess(file, 6));
    EXPECT_EQ(7u, TypeParam::Size(file));
    EXPECT_TRUE(TypeParam::CopyFile(file, copy));
    EXPECT_EQ("content", this->Content(L"tree/" + deepFolderW + L"copy"));
    EXPECT_TRUE(TypeParam::CopyFileEx(copy, other, &cancel));
    EXPECT_EQ("content", this->Content(L"tree/" + deepFolderW + L"other"));
    EXPECT_TRUE(TypeParam::DeleteFile(file));
    EXPECT_FALSE(this->Stands(L"tree/" + deepFolderW + L"file"));
}

// --- Ends that the plain form loses, and names of devices ---

const char* const oddNames[] = {"dot.", "dots..", "blank ", "dot .", "...", ". ", "a.b."};

TYPED_TEST(WindowsNames, FilesWithADotOrABlankAtTheEndAreFiles) {
    const eStrictNames strict;
    this->Make(L"tree/", "");
    for (const std::string odd : oddNames) {
        const std::wstring oddW(odd.begin(), odd.end());
        const auto file = this->Below(TypeParam::Of("tree/" + odd));
        const auto copy = this->Below(TypeParam::Of("tree/copy of " + odd));
        this->Make(L"tree/" + oddW, "content");
        EXPECT_TRUE(TypeParam::MayAccess(file, 0)) << odd;
        EXPECT_EQ(7u, TypeParam::Size(file)) << odd;
        EXPECT_TRUE(TypeParam::CopyFile(file, copy)) << odd;
        EXPECT_EQ("content", this->Content(L"tree/copy of " + oddW)) << odd;
        const auto found = Found<typename TypeParam::Search>(this->Below(TypeParam::Of("tree/")), TypeParam::Of(odd));
        EXPECT_EQ(1u, found.size()) << odd;
        EXPECT_EQ(1u, found.count(TypeParam::Of(odd))) << odd;
        EXPECT_TRUE(TypeParam::DeleteFile(file)) << odd;
        EXPECT_FALSE(this->Stands(L"tree/" + oddW)) << odd;
    }
}

TYPED_TEST(WindowsNames, FoldersWithADotOrABlankAtTheEndAreFolders) {
    const eStrictNames strict;
    for (const std::string odd : oddNames) {
        const std::wstring oddW(odd.begin(), odd.end());
        const auto folder = this->Below(TypeParam::Of(odd + "/x"));
        EXPECT_TRUE(TypeParam::Create(folder)) << odd;
        EXPECT_TRUE(this->Stands(oddW + L"/x")) << odd;
        this->Make(oddW + L"/" + oddW + L"/" + oddW, "content");
        EXPECT_EQ(2u,
                  Found<typename TypeParam::Search>(this->Below(TypeParam::Of(odd + "/")), TypeParam::Of("*.*")).size())
            << odd;
        TypeParam::Copy(this->Below(TypeParam::Of(odd)), this->Below(TypeParam::Of("copy/" + odd)));
        EXPECT_EQ("content", this->Content(L"copy/" + oddW + L"/" + oddW + L"/" + oddW)) << odd;
        TypeParam::PurgeEmpty(this->Below(TypeParam::Of(odd + "/")));
        EXPECT_FALSE(this->Stands(oddW + L"/x")) << odd;
        TypeParam::Delete(this->Below(TypeParam::Of(odd)), true);
        EXPECT_FALSE(this->Stands(oddW)) << odd;
    }
    TypeParam::Delete(this->Below(TypeParam::Of("copy")), true);
    EXPECT_FALSE(this->Stands(L"copy"));
}

TYPED_TEST(WindowsNames, AFolderOfDotsDoesNotLeadUp) {
    this->Make(L"victim", kVictim);
    this->Make(L"tree/.../victim", "odd");
    this->Make(L"from/.../victim", "odd");
    TypeParam::Delete(this->Below(TypeParam::Of("tree")), true);
    TypeParam::Copy(this->Below(TypeParam::Of("from")), this->Below(TypeParam::Of("to")));
    EXPECT_EQ(kVictim, this->Content(L"victim"));
    EXPECT_FALSE(this->Stands(L"tree"));
    EXPECT_EQ("odd", this->Content(L"to/.../victim"));
}

TYPED_TEST(WindowsNames, FilesNamedAsDevicesAreFilesInATree) {
    for (const wchar_t* device : {L"con", L"nul.txt", L"aux", L"com1"}) {
        this->Make(L"from/" + std::wstring(device), "content");
        this->Make(L"from/sub/" + std::wstring(device) + L"/file", "content");
    }
    const eStrictNames strict;
    TypeParam::Copy(this->Below(TypeParam::Of("from")), this->Below(TypeParam::Of("to")));
    for (const std::wstring device : {L"con", L"nul.txt", L"aux", L"com1"}) {
        EXPECT_EQ("content", this->Content(L"to/" + device));
        EXPECT_EQ("content", this->Content(L"to/sub/" + device + L"/file"));
    }
    TypeParam::Delete(this->Below(TypeParam::Of("to")), true);
    EXPECT_FALSE(this->Stands(L"to"));
}

TYPED_TEST(WindowsNames, ShortNamesReachTheSystemUnchanged) {
    const eStrictNames strict;
    for (const std::string name : {"nul", "con", "aux.txt", "q:missing/x", "missing/../x", "//./nul"}) {
        const typename TypeParam::Name given(TypeParam::Of(name));
        TypeParam::Size(given);
        TypeParam::MayAccess(given, 0);
        EXPECT_EQ((std::vector<std::wstring>(2, eWide::Of(name))),
                  std::vector<std::wstring>(strict.Given().end() - 2, strict.Given().end()));
    }
}

TYPED_TEST(WindowsNames, RelativeNamesStartAtTheCurrentFolder) {
    const std::wstring folder = L"tree/" + std::wstring(120, L'c');
    const std::string longName(120, 'x'), odd = "x.";
    this->Make(folder + L"/", "");
    const eCurrentFolder current(this->temp.NameW(L"root/" + folder));
    const eStrictNames strict;
    const std::string drive(1, static_cast<char>(std::filesystem::current_path().native()[0]));
    const std::string rooted = std::filesystem::current_path().relative_path().generic_string();
    for (const std::string& start : {std::string(), drive + ":", "/" + rooted + "/"})
        for (const std::string& name : {longName, odd}) {
            const auto relative = TypeParam::Of(start + name);
            // Walks that would create the root first are refused.
            EXPECT_EQ(!start.starts_with('/'), TypeParam::Create(relative + TypeParam::Of("/sub"))) << start;
            this->Make(folder + L"/" + eWide::Of(name) + L"/sub/", "");
            EXPECT_TRUE(TypeParam::MayAccess(relative, 0)) << start;
            EXPECT_EQ(1u, Found<typename TypeParam::Search>(typename TypeParam::Name(relative).Path(),
                                                            typename TypeParam::Name(TypeParam::Of("*.*")))
                              .size())
                << start;
            TypeParam::Delete(relative, true);
            EXPECT_FALSE(this->Stands(folder + L"/" + eWide::Of(name))) << start;
        }
}

using LongNames = WindowsNames<eNarrow>;

TEST_F(LongNames, AreRenamed) {
    const eStrictNames strict;
    this->Make(L"tree/" + deepFolderW + L"file", "content");
    this->Make(L"tree/dot.", "odd");
    EXPECT_TRUE(IO::System::File::Rename(Below("tree/" + deepFolder + "file"), Below("tree/" + deepFolder + "new")));
    EXPECT_EQ("content", Content(L"tree/" + deepFolderW + L"new"));
    EXPECT_TRUE(IO::System::File::Rename(Below("tree/dot."), Below("tree/blank ")));
    EXPECT_EQ("odd", Content(L"tree/blank "));
}

} // namespace
