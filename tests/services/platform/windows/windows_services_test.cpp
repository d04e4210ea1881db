// SPDX-License-Identifier: BSL-1.0
#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <windows.h>

#include <gtest/gtest.h>

#include "support/platform/windows/import_table.h"
#include "support/wine.h"

#include "../../real_tree.h"

// Trees with features of this system: attributes, locks, junctions and other reparse points.

namespace {

std::string UnixName(const std::filesystem::path& path) {
    using eUnixName = char*(CDECL*)(const wchar_t*);
    const FARPROC found = ::GetProcAddress(::GetModuleHandleW(L"kernel32.dll"), "wine_get_unix_file_name");
    const auto unixName = reinterpret_cast<eUnixName>(reinterpret_cast<void*>(found));
    char* name = unixName ? unixName(path.c_str()) : nullptr;
    const std::string text = name ? name : "";
    if (name)
        ::HeapFree(::GetProcessHeap(), 0, name);
    return text;
}

bool IsShownAsLink(const std::filesystem::path& name) {
    const DWORD attributes = ::GetFileAttributesW(name.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
}

// Runs a program of the system below Wine.
void RunBelowWine(const std::wstring& program, const std::vector<std::string>& arguments) {
    std::wstring command = L"\\\\?\\unix\\bin\\" + program;
    for (const std::string& argument : arguments)
        command += L" \"" + std::wstring(argument.begin(), argument.end()) + L"\"";
    STARTUPINFOW start{};
    start.cb = sizeof(start);
    PROCESS_INFORMATION process{};
    if (!::CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &process))
        return;
    ::WaitForSingleObject(process.hProcess, 5000);
    ::CloseHandle(process.hThread);
    ::CloseHandle(process.hProcess);
}

void WaitUntil(const std::function<bool()>& reached) {
    for (int wait = 0; wait < 300 && !reached(); ++wait)
        ::Sleep(10);
}

// Creates links to folders and removes those that are left. Wine creates none itself, but shows those of the system
// below it as reparse points.
class eFolderLinks {
public:
    eFolderLinks() = default;
    eFolderLinks(const eFolderLinks&) = delete;
    eFolderLinks& operator=(const eFolderLinks&) = delete;
    ~eFolderLinks() {
        for (const auto& link : links)
            if (IsShownAsLink(link))
                Remove(link);
    }

    bool Make(const std::filesystem::path& target, const std::filesystem::path& link) {
        constexpr DWORD kFolder = 1, kUnprivileged = 2;
        links.push_back(link);
        if (!IsUnderWine())
            return ::CreateSymbolicLinkW(link.c_str(), target.c_str(), kFolder | kUnprivileged) != 0;
        const std::string place = UnixName(link.parent_path()) + "/" + link.filename().string();
        RunBelowWine(L"ln", {"-s", UnixName(target), place});
        WaitUntil([&] { return IsShownAsLink(link); });
        return IsShownAsLink(link);
    }

    // Makes a link lead elsewhere.
    bool Lead(const std::filesystem::path& target, const std::filesystem::path& link) {
        Remove(link);
        return Make(target, link);
    }

private:
    static void Remove(const std::filesystem::path& link) {
        if (!IsUnderWine()) {
            ::RemoveDirectoryW(link.c_str());
            return;
        }
        RunBelowWine(L"rm", {UnixName(link.parent_path()) + "/" + link.filename().string()});
        WaitUntil([&] { return !IsShownAsLink(link); });
    }

    std::vector<std::filesystem::path> links;
};

template <class Width>
class WindowsServices : public eRealTree<Width> {
protected:
    void SetAttributes(std::string_view name, DWORD attributes) const {
        ASSERT_TRUE(::SetFileAttributesW(this->At(name).c_str(), attributes));
    }
    bool MakeLink(std::string_view target, std::string_view link) {
        return links.Make(this->At(target), this->At(link));
    }

    eFolderLinks links;
};
TYPED_TEST_SUITE(WindowsServices, eWidths, eWidthNames);

TYPED_TEST(WindowsServices, DeletionLeavesAReadOnlyFileWithItsParents) {
    this->MakeFile("root/a/kept");
    this->MakeFile("root/a/b/gone");
    this->MakeFile("root/gone");
    this->SetAttributes("root/a/kept", FILE_ATTRIBUTE_READONLY);
    TypeParam::Delete(this->Named("root"), true);
    EXPECT_EQ((eNames{"root/", "root/a/", "root/a/kept"}), this->Tree(""));
    this->SetAttributes("root/a/kept", FILE_ATTRIBUTE_NORMAL);
}

TYPED_TEST(WindowsServices, DeletionLeavesAnOpenFileWithItsParents) {
    this->MakeFile("root/a/open");
    this->MakeFile("root/b/gone");
    const HANDLE held = ::CreateFileW(this->At("root/a/open").c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                      OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(INVALID_HANDLE_VALUE, held);
    TypeParam::Delete(this->Named("root"), true);
    EXPECT_EQ((eNames{"root/", "root/a/", "root/a/open"}), this->Tree(""));
    ::CloseHandle(held);
}

TYPED_TEST(WindowsServices, CopyOntoAReadOnlyFileIsTrueAndLeavesIt) {
    if (IsUnderWine())
        GTEST_SKIP() << "Wine copies onto read-only files";
    this->MakeFile("from", "new");
    this->MakeFile("to", "old");
    this->SetAttributes("to", FILE_ATTRIBUTE_READONLY);
    EXPECT_TRUE(TypeParam::CopyFile(this->Named("from"), this->Named("to")));
    EXPECT_EQ("old", this->Content("to"));
    this->SetAttributes("to", FILE_ATTRIBUTE_NORMAL);
}

TYPED_TEST(WindowsServices, AccessTellsThatAReadOnlyFileMayNotBeWritten) {
    this->MakeFile("file");
    this->SetAttributes("file", FILE_ATTRIBUTE_READONLY);
    EXPECT_TRUE(TypeParam::MayAccess(this->Named("file"), 0));
    EXPECT_TRUE(TypeParam::MayAccess(this->Named("file"), 4));
    EXPECT_FALSE(TypeParam::MayAccess(this->Named("file"), 2));
    EXPECT_FALSE(TypeParam::MayAccess(this->Named("file"), 6));
    EXPECT_FALSE(TypeParam::DeleteFile(this->Named("file")));
    this->SetAttributes("file", FILE_ATTRIBUTE_NORMAL);
}

TYPED_TEST(WindowsServices, CreateOfARootedNameWithoutADriveDoesWhatTheSystemAllows) {
    EXPECT_TRUE(TypeParam::Create(TypeParam::Of("/")));
    EXPECT_FALSE(TypeParam::Create(TypeParam::Of("/qzl_io_not_made/x")));
    EXPECT_FALSE(TypeParam::Create(TypeParam::Of("//qzl_io_no_server/share/x")));
}

TYPED_TEST(WindowsServices, DeletionRemovesLinksAndNeverWhatTheyPointTo) {
    this->MakeFile("outside/file", "precious");
    this->MakeFile("root/sub/file");
    if (!this->MakeLink("outside", "root/link") || !this->MakeLink("root", "root/sub/cycle"))
        GTEST_SKIP() << "no symbolic links can be made here";
    TypeParam::Delete(this->Named("root"), true);
    EXPECT_EQ("precious", this->Content("outside/file"));
    if (IsUnderWine())
        GTEST_SKIP() << "what becomes of links themselves: Wine does not remove them";
    EXPECT_EQ((eNames{"outside/", "outside/file"}), this->Tree(""));
}

TYPED_TEST(WindowsServices, DeletionOfALinkSparesWhatItPointsTo) {
    this->MakeFile("outside/file", "precious");
    if (!this->MakeLink("outside", "link"))
        GTEST_SKIP() << "no symbolic links can be made here";
    TypeParam::Delete(this->Named("link"), true);
    EXPECT_EQ("precious", this->Content("outside/file"));
}

TYPED_TEST(WindowsServices, CopyingFollowsNoLink) {
    this->MakeFile("outside/file");
    this->MakeFile("from/sub/file");
    if (!this->MakeLink("outside", "from/link") || !this->MakeLink("from", "from/sub/cycle"))
        GTEST_SKIP() << "no symbolic links can be made here";
    TypeParam::Copy(this->Named("from"), this->Named("to"));
    EXPECT_EQ("content", this->Content("to/sub/file"));
    for (const char* copy : {"to/link", "to/sub/cycle"}) {
        EXPECT_EQ(!IsUnderWine(), this->Exists(copy)) << copy;
        EXPECT_EQ(!IsUnderWine(), IsShownAsLink(this->At(copy))) << copy;
    }
    TypeParam::Delete(this->Named("to"), true);
    EXPECT_EQ("content", this->Content("outside/file"));
}

// What happens when the library next begins a listing.
std::function<void()> atNextListing;

decltype(&::FindFirstFileW) systemsFindFirstFile;
HANDLE WINAPI FindFirstFileAfterwards(LPCWSTR pattern, LPWIN32_FIND_DATAW found) {
    if (const auto happens = std::exchange(atNextListing, nullptr))
        happens();
    return systemsFindFirstFile(pattern, found);
}

TYPED_TEST(WindowsServices, AWalkStaysInItsTreeThoughALinkAboveIsLedElsewhere) {
    this->MakeFile("outside/root/sub/file", "precious");
    this->MakeFile("outside/root/file", "precious");
    this->MakeFile("real/root/sub/file");
    this->MakeFile("real/root/file");
    if (!this->MakeLink("real", "way"))
        GTEST_SKIP() << "no symbolic links can be made here";
    const eReplacedCall listing("qzl_io.dll", "FindFirstFileW", &FindFirstFileAfterwards, &systemsFindFirstFile);
    bool led = false;
    // The first search looks whether the root is a link, before the root is held.
    atNextListing = [&] { atNextListing = [&] { led = this->links.Lead(this->At("outside"), this->At("way")); }; };
    TypeParam::Delete(this->Named("way/root"), true);
    EXPECT_TRUE(led);
    EXPECT_EQ((eNames{"root/", "root/file", "root/sub/", "root/sub/file"}), this->Tree("outside"));
    EXPECT_EQ(eNames{"root/"}, this->Tree("real"));
}

TYPED_TEST(WindowsServices, PurgingLeavesLinksAndWhatTheyPointToAlone) {
    this->MakeFolder("outside/empty");
    this->MakeFolder("root/empty");
    if (!this->MakeLink("outside", "root/link"))
        GTEST_SKIP() << "no symbolic links can be made here";
    TypeParam::PurgeEmpty(this->Folder("root"));
    EXPECT_TRUE(this->Exists("outside/empty"));
    EXPECT_TRUE(this->Exists("root/link"));
    EXPECT_FALSE(this->Exists("root/empty"));
}

TYPED_TEST(WindowsServices, SearchShowsALinkToAFolder) {
    this->MakeFolder("outside");
    this->MakeFolder("root");
    if (!this->MakeLink("outside", "root/link"))
        GTEST_SKIP() << "no symbolic links can be made here";
    const typename TypeParam::Search search(this->Folder("root"), TypeParam::Of("link"));
    EXPECT_TRUE(search.IsSubfolder());
    EXPECT_TRUE(search.IsLink());
    EXPECT_FALSE(search.IsFile());
}

TYPED_TEST(WindowsServices, SearchFindsAnEntryByItsShortNameToo) {
    this->MakeFile("root/a page of many words.html");
    WIN32_FIND_DATAW found{};
    ::FindClose(::FindFirstFileW(this->At("root/a page*").c_str(), &found));
    const std::wstring shortName = found.cAlternateFileName;
    if (shortName.empty())
        GTEST_SKIP() << "the volume keeps no short names";
    const std::string mask(shortName.begin(), shortName.end());
    for (const std::string& each : {mask, std::string("*.htm")}) {
        const typename TypeParam::Search search(this->Folder("root"), TypeParam::Of(each));
        EXPECT_EQ(TypeParam::Of("a page of many words.html"), search.Name()) << each;
    }
}

TYPED_TEST(WindowsServices, AFileTimeConvertsToTheSystems) {
    this->MakeFile("root/file");
    const typename TypeParam::Search search(this->Folder("root"), TypeParam::Of("file"));
    FILETIME time = search.ModifyTime();
    time = search.ModifyTime();
    SYSTEMTIME shown{};
    EXPECT_TRUE(::FileTimeToSystemTime(&time, &shown));
    EXPECT_GE(shown.wYear, 2020);
}

} // namespace
