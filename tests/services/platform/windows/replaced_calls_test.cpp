// SPDX-License-Identifier: BSL-1.0
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <windows.h>

#include <io.h>

#include <gtest/gtest.h>

#include "support/platform/windows/import_table.h"

#include "../../real_tree.h"

// Answers that Windows gives on real machines and Wine never gives: the library's calls go to a stand-in.

namespace {

constexpr const char* kLibrary = "qzl_io.dll";

enum class eCall { Any, DeleteFile, RemoveDirectory, CreateDirectory, CopyFile, CreateFile };

// The answers of the stand-ins. A call for a name that contains `part` fails `times` times.
struct eSystem {
    eCall call = eCall::Any;
    std::wstring part;
    DWORD error = 0;
    int times = 0;
    int calls = 0; // for that name, whether they fail or not

    bool numbersFolders = true;
    bool tellsFinalNames = true;
    bool tellsTags = true;
    bool listsTags = true;
};

eSystem theSystem;

bool Fails(eCall call, std::wstring_view name) {
    if ((theSystem.call != eCall::Any && theSystem.call != call) || name.find(theSystem.part) == name.npos)
        return false;
    ++theSystem.calls;
    if (theSystem.times == 0)
        return false;
    --theSystem.times;
    ::SetLastError(theSystem.error);
    return true;
}

decltype(&::DeleteFileW) systemsDeleteFile;
BOOL WINAPI DeleteFileInstead(LPCWSTR name) {
    return !Fails(eCall::DeleteFile, name) && systemsDeleteFile(name);
}

decltype(&::RemoveDirectoryW) systemsRemoveDirectory;
BOOL WINAPI RemoveDirectoryInstead(LPCWSTR name) {
    return !Fails(eCall::RemoveDirectory, name) && systemsRemoveDirectory(name);
}

decltype(&::CreateDirectoryW) systemsCreateDirectory;
BOOL WINAPI CreateDirectoryInstead(LPCWSTR name, LPSECURITY_ATTRIBUTES security) {
    return !Fails(eCall::CreateDirectory, name) && systemsCreateDirectory(name, security);
}

decltype(&::CopyFileW) systemsCopyFile;
BOOL WINAPI CopyFileInstead(LPCWSTR from, LPCWSTR to, BOOL failIfExists) {
    return !Fails(eCall::CopyFile, from) && systemsCopyFile(from, to, failIfExists);
}

decltype(&::CreateFileW) systemsCreateFile;
HANDLE WINAPI CreateFileInstead(LPCWSTR name, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security, DWORD creation,
                                DWORD flags, HANDLE model) {
    return Fails(eCall::CreateFile, name) ? INVALID_HANDLE_VALUE
                                          : systemsCreateFile(name, access, share, security, creation, flags, model);
}

class BusySystem : public eRealTree<eWide> {
protected:
    BusySystem() { theSystem = {}; }

    void Refuse(eCall call, const wchar_t* part, DWORD error, int times) {
        theSystem.call = call;
        theSystem.part = part;
        theSystem.error = error;
        theSystem.times = times;
        theSystem.calls = 0;
    }

    void Delete(std::string_view name) const { eWide::Delete(Named(name), true); }
    void Copy(std::string_view from, std::string_view to) const { eWide::Copy(Named(from), Named(to)); }
};

TEST_F(BusySystem, DeletionTriesAgainWhatIsRefusedForAMoment) {
    const eReplacedCall deleting(kLibrary, "DeleteFileW", &DeleteFileInstead, &systemsDeleteFile);
    const eReplacedCall removing(kLibrary, "RemoveDirectoryW", &RemoveDirectoryInstead, &systemsRemoveDirectory);
    const eReplacedCall opening(kLibrary, "CreateFileW", &CreateFileInstead, &systemsCreateFile);
    struct eRow {
        eCall call;
        const wchar_t* part;
        DWORD error;
    };
    constexpr DWORD kPending = 303;
    for (const eRow& row :
         {eRow{eCall::DeleteFile, L"file", ERROR_SHARING_VIOLATION},
          eRow{eCall::DeleteFile, L"file", ERROR_ACCESS_DENIED}, eRow{eCall::DeleteFile, L"file", kPending},
          eRow{eCall::CreateFile, L"sub", ERROR_SHARING_VIOLATION},
          eRow{eCall::RemoveDirectory, L"sub", ERROR_SHARING_VIOLATION},
          eRow{eCall::RemoveDirectory, L"sub", ERROR_DIR_NOT_EMPTY},
          eRow{eCall::RemoveDirectory, L"empty", ERROR_ACCESS_DENIED},
          eRow{eCall::CreateFile, L"root", ERROR_SHARING_VIOLATION},
          eRow{eCall::RemoveDirectory, L"root", ERROR_DIR_NOT_EMPTY}}) {
        MakeFile("root/sub/file");
        MakeFolder("root/empty");
        Refuse(row.call, row.part, row.error, 2);
        Delete("root");
        EXPECT_EQ(eNames(), Tree("")) << row.error;
        EXPECT_EQ(0, theSystem.times) << row.error;
    }
}

// Windows denies all access to a file whose deletion is not complete, even to its attributes.
decltype(&::GetFileAttributesW) systemsAttributes;
DWORD WINAPI AttributesInstead(LPCWSTR name) {
    if (std::wstring_view(name).find(theSystem.part) == std::wstring_view::npos || theSystem.times == 0)
        return systemsAttributes(name);
    ::SetLastError(ERROR_ACCESS_DENIED);
    return INVALID_FILE_ATTRIBUTES;
}

TEST_F(BusySystem, CopyingWaitsForDeletionsThatAreNotThrough) {
    const eReplacedCall making(kLibrary, "CreateDirectoryW", &CreateDirectoryInstead, &systemsCreateDirectory);
    const eReplacedCall copying(kLibrary, "CopyFileW", &CopyFileInstead, &systemsCopyFile);
    const eReplacedCall asking(kLibrary, "GetFileAttributesW", &AttributesInstead, &systemsAttributes);
    for (const wchar_t* part : {L"to", L"to\\sub", L"from\\sub\\file"}) {
        MakeFile("from/sub/file");
        Refuse(eCall::Any, part, ERROR_ACCESS_DENIED, 2);
        Copy("from", "to");
        EXPECT_EQ((eNames{"sub/", "sub/file"}), Tree("to")) << testing::PrintToString(part);
        EXPECT_EQ(0, theSystem.times);
        Delete("to");
    }
}

TEST_F(BusySystem, CopyingTriesAgainWhatSomebodyHasOpen) {
    const eReplacedCall copying(kLibrary, "CopyFileW", &CopyFileInstead, &systemsCopyFile);
    MakeFile("from/file");
    Refuse(eCall::Any, L"from\\file", ERROR_SHARING_VIOLATION, 3);
    Copy("from", "to");
    EXPECT_EQ(eNames{"file"}, Tree("to"));
    EXPECT_EQ(4, theSystem.calls);
}

TEST_F(BusySystem, PurgingTriesAgainWhereAFolderSeemsFullAfterItsSubfolders) {
    const eReplacedCall removing(kLibrary, "RemoveDirectoryW", &RemoveDirectoryInstead, &systemsRemoveDirectory);
    MakeFolder("root/a/b/c");
    Refuse(eCall::Any, L"root\\a\\b", ERROR_DIR_NOT_EMPTY, 2);
    eWide::PurgeEmpty(Folder("root"));
    EXPECT_EQ(eNames(), Tree("root"));
}

TEST_F(BusySystem, AReadOnlyFileStaysAndIsNotTriedAgain) {
    const eReplacedCall deleting(kLibrary, "DeleteFileW", &DeleteFileInstead, &systemsDeleteFile);
    const eReplacedCall removing(kLibrary, "RemoveDirectoryW", &RemoveDirectoryInstead, &systemsRemoveDirectory);
    MakeFile("root/a/b/kept");
    ASSERT_TRUE(::SetFileAttributesW(At("root/a/b/kept").c_str(), FILE_ATTRIBUTE_READONLY));
    Refuse(eCall::Any, L"root", 0, 0);
    Delete("root");
    EXPECT_EQ((eNames{"a/", "a/b/", "a/b/kept"}), Tree("root"));
    EXPECT_TRUE(::GetFileAttributesW(At("root/a/b/kept").c_str()) & FILE_ATTRIBUTE_READONLY);
    // The file once; "b", "a" and the root once as folders, and the first two once more as possible links.
    EXPECT_EQ(1 + 3 + 2, theSystem.calls);
    ::SetFileAttributesW(At("root/a/b/kept").c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(BusySystem, ManyRefusedFilesDoNotHoldADeletionUpForLong) {
    const eReplacedCall deleting(kLibrary, "DeleteFileW", &DeleteFileInstead, &systemsDeleteFile);
    for (int number = 0; number < 200; ++number)
        MakeFile("root/file" + std::to_string(number), "");
    Refuse(eCall::Any, L"file", ERROR_SHARING_VIOLATION, -1);
    const auto start = std::chrono::steady_clock::now();
    Delete("root");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    EXPECT_EQ(200u, Tree("root").size());
    theSystem.times = 0;
}

// --- Reparse points: an entry named "tag 9000701a ..." is shown as one with that tag ---

DWORD TagIn(std::wstring_view name) {
    const auto at = name.rfind(L"tag ");
    if (at == name.npos || name.find(L'\\', at) != name.npos)
        return 0;
    return static_cast<DWORD>(std::wcstoul(std::wstring(name.substr(at + 4, 8)).c_str(), nullptr, 16));
}

void ShowTag(WIN32_FIND_DATAW* data) {
    if (const DWORD tag = theSystem.listsTags ? TagIn(data->cFileName) : 0) {
        data->dwFileAttributes |= FILE_ATTRIBUTE_REPARSE_POINT;
        data->dwReserved0 = tag;
    }
}

decltype(&::FindFirstFileW) systemsFindFirst;
HANDLE WINAPI FindFirstInstead(LPCWSTR pattern, LPWIN32_FIND_DATAW data) {
    const HANDLE found = systemsFindFirst(pattern, data);
    if (found != INVALID_HANDLE_VALUE)
        ShowTag(data);
    return found;
}

decltype(&::FindNextFileW) systemsFindNext;

// A drive that goes away while a folder is listed.
BOOL WINAPI FindNextBroken(HANDLE, LPWIN32_FIND_DATAW) {
    ::SetLastError(ERROR_NETNAME_DELETED);
    return FALSE;
}

BOOL WINAPI FindNextInstead(HANDLE found, LPWIN32_FIND_DATAW data) {
    const BOOL another = systemsFindNext(found, data);
    if (another)
        ShowTag(data);
    return another;
}

std::wstring OpenedName(HANDLE file) {
    std::wstring name(2000, L'\0');
    name.resize(::GetFinalPathNameByHandleW(file, name.data(), static_cast<DWORD>(name.size()), 0));
    return name;
}

decltype(&::GetFileInformationByHandleEx) systemsInformationEx;
BOOL WINAPI InformationExInstead(HANDLE file, FILE_INFO_BY_HANDLE_CLASS kind, LPVOID told, DWORD size) {
    if (kind == FileIdInfo && !theSystem.numbersFolders) {
        ::SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    if (kind != FileAttributeTagInfo)
        return systemsInformationEx(file, kind, told, size);
    BY_HANDLE_FILE_INFORMATION plain{};
    if (!theSystem.tellsTags || !::GetFileInformationByHandle(file, &plain)) {
        ::SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    auto* const tagged = static_cast<FILE_ATTRIBUTE_TAG_INFO*>(told);
    *tagged = {plain.dwFileAttributes, TagIn(OpenedName(file))};
    if (tagged->ReparseTag != 0)
        tagged->FileAttributes |= FILE_ATTRIBUTE_REPARSE_POINT;
    return TRUE;
}

class ReparsePoints : public BusySystem {
protected:
    eReplacedCall<decltype(&::FindFirstFileW)> first{kLibrary, "FindFirstFileW", &FindFirstInstead, &systemsFindFirst};
    eReplacedCall<decltype(&::FindNextFileW)> next{kLibrary, "FindNextFileW", &FindNextInstead, &systemsFindNext};
    eReplacedCall<decltype(&::GetFileInformationByHandleEx)> information{kLibrary, "GetFileInformationByHandleEx",
                                                                         &InformationExInstead, &systemsInformationEx};
};

TEST_F(ReparsePoints, OfCloudsAndThoseThatAreCompressedAreCopiedPurgedAndDeleted) {
    for (const std::string tag : {"tag 9000701a", "tag 80000013", "tag 80000017", "tag 80000018"}) {
        MakeFile("from/" + tag + " folder/sub/file");
        MakeFile("from/" + tag + " file");
        MakeFolder("from/" + tag + " empty/" + tag + " inner");
    }
    Copy("from", "to");
    EXPECT_EQ(Tree("from"), Tree("to"));
    eWide::PurgeEmpty(Folder("to"));
    EXPECT_FALSE(Exists("to/tag 9000701a empty"));
    EXPECT_TRUE(Exists("to/tag 9000701a folder/sub/file"));
    Delete("to");
    EXPECT_FALSE(Exists("to"));
}

TEST_F(ReparsePoints, ThatAreLinksAreNotEntered) {
    for (const std::string tag : {"tag a0000003", "tag a000000c", "tag a0000027"})
        MakeFile("from/" + tag + " folder/file", "precious");
    MakeFile("from/other");
    Copy("from", "to");
    EXPECT_TRUE(Exists("to/other"));
    EXPECT_FALSE(Exists("to/tag a0000003 folder/file"));
    MakeFolder("from/tag a0000003 empty/inner");
    eWide::PurgeEmpty(Folder("from"));
    EXPECT_TRUE(Exists("from/tag a0000003 empty/inner"));
    Delete("from");
    EXPECT_FALSE(Exists("from/other"));
    for (const std::string tag : {"tag a0000003", "tag a000000c", "tag a0000027"})
        EXPECT_EQ("precious", Content("from/" + tag + " folder/file"));
}

TEST_F(ReparsePoints, ThatBecameLinksAfterTheyWereListedAreNotEntered) {
    theSystem.listsTags = false;
    MakeFile("from/tag a0000003 folder/file", "precious");
    MakeFile("from/other");
    Copy("from", "to");
    EXPECT_FALSE(Exists("to/tag a0000003 folder/file"));
    eWide::PurgeEmpty(Folder("from"));
    Delete("from");
    EXPECT_EQ("precious", Content("from/tag a0000003 folder/file"));
    EXPECT_FALSE(Exists("from/other"));
}

TEST_F(ReparsePoints, AreNotAskedForWhereTheFileSystemHasNone) {
    theSystem.tellsTags = false;
    MakeFile("from/sub/file");
    Copy("from", "to");
    EXPECT_EQ((eNames{"sub/", "sub/file"}), Tree("to"));
    Delete("to");
    EXPECT_FALSE(Exists("to"));
}

TEST_F(ReparsePoints, AreLinksToASearchWhereTheirTagSaysSo) {
    struct eRow {
        std::string name;
        bool folder, link;
    };
    for (const eRow& row :
         {eRow{"tag a000000c f", true, true}, eRow{"tag a000000c", false, true}, eRow{"tag a0000003", true, true},
          eRow{"tag 9000101a", true, false}, eRow{"tag 9000f01a", false, false}, eRow{"tag 80000017", false, false}}) {
        if (row.folder)
            MakeFolder("root/" + row.name);
        else
            MakeFile("root/" + row.name, "12345");
        const IO::eSearchW wide(Folder("root"), eWide::Of(row.name));
        const IO::eSearch narrow(temp.Name("root/"), row.name);
        EXPECT_EQ(row.link, wide.IsLink()) << row.name;
        EXPECT_EQ(row.link, narrow.IsLink()) << row.name;
        EXPECT_EQ(row.folder, wide.IsSubfolder() && narrow.IsSubfolder()) << row.name;
        EXPECT_EQ(row.folder ? 0u : 5u, wide.Size()) << row.name;
    }
}

// --- Links that an ordinary account may not create ---

decltype(&::CopyFileExW) systemsCopyFileEx;
BOOL WINAPI CopyFileExInstead(LPCWSTR from, LPCWSTR to, LPPROGRESS_ROUTINE progress, LPVOID data, LPBOOL cancel,
                              DWORD flags) {
    constexpr DWORD kAsLink = 0x800;
    if ((flags & kAsLink) == 0)
        return systemsCopyFileEx(from, to, progress, data, cancel, flags);
    ::SetLastError(ERROR_PRIVILEGE_NOT_HELD);
    return FALSE;
}

decltype(&::CreateDirectoryExW) systemsCreateDirectoryEx;
BOOL WINAPI CreateDirectoryExInstead(LPCWSTR, LPCWSTR, LPSECURITY_ATTRIBUTES) {
    ::SetLastError(ERROR_PRIVILEGE_NOT_HELD);
    return FALSE;
}

TEST_F(ReparsePoints, OfFileLinksThatMayNotBeMadeTheContentIsCopied) {
    const eReplacedCall linking(kLibrary, "CopyFileExW", &CopyFileExInstead, &systemsCopyFileEx);
    const eReplacedCall making(kLibrary, "CreateDirectoryExW", &CreateDirectoryExInstead, &systemsCreateDirectoryEx);
    const eReplacedCall copying(kLibrary, "CopyFileW", &CopyFileInstead, &systemsCopyFile);
    MakeFile("from/sub/tag a000000c file", "link target");
    MakeFile("from/tag a000000c folder/file");
    MakeFile("from/tag a0000003 junction/file");
    Refuse(eCall::Any, L"from", 0, 0);
    Copy("from", "to");
    EXPECT_EQ((eNames{"sub/", "sub/tag a000000c file"}), Tree("to"));
    EXPECT_EQ("link target", Content("to/sub/tag a000000c file"));
    EXPECT_EQ(1, theSystem.calls);
}

// --- Volumes without file numbers ---

decltype(&::GetFileInformationByHandle) systemsInformation;
BOOL WINAPI InformationInstead(HANDLE file, LPBY_HANDLE_FILE_INFORMATION told) {
    const BOOL done = systemsInformation(file, told);
    if (!theSystem.numbersFolders)
        told->nFileIndexHigh = told->nFileIndexLow = 0;
    return done;
}

decltype(&::GetFinalPathNameByHandleW) systemsFinalName;
DWORD WINAPI FinalNameInstead(HANDLE file, LPWSTR name, DWORD room, DWORD form) {
    if (theSystem.tellsFinalNames)
        return systemsFinalName(file, name, room, form);
    ::SetLastError(ERROR_INVALID_FUNCTION);
    return 0;
}

class Unnumbered : public ReparsePoints {
protected:
    Unnumbered() { theSystem.numbersFolders = false; }

    eReplacedCall<decltype(&::GetFileInformationByHandle)> numbers{kLibrary, "GetFileInformationByHandle",
                                                                   &InformationInstead, &systemsInformation};
    eReplacedCall<decltype(&::GetFinalPathNameByHandleW)> names{kLibrary, "GetFinalPathNameByHandleW",
                                                                &FinalNameInstead, &systemsFinalName};
};

TEST_F(Unnumbered, FoldersAreCopiedWithTheirSubfolders) {
    for (const bool told : {true, false}) {
        theSystem.tellsFinalNames = told;
        MakeFile("from/a/b/file");
        MakeFile("from/c/file");
        Copy("from", "to");
        EXPECT_EQ(Tree("from"), Tree("to")) << told;
    }
}

TEST_F(Unnumbered, FoldersAreNotCopiedIntoThemselves) {
    MakeFile("root/file");
    MakeFile("root/sub/file");
    Copy("root", "root/sub/new");
    EXPECT_EQ((eNames{"file", "sub/", "sub/file", "sub/new/", "sub/new/file", "sub/new/sub/", "sub/new/sub/file"}),
              Tree("root"));
}

// --- Numbers of 128 bits ---

decltype(&::GetFileInformationByHandleEx) systemsLargeNumbers;
BOOL WINAPI LargeNumbersInstead(HANDLE file, FILE_INFO_BY_HANDLE_CLASS kind, LPVOID told, DWORD size) {
    if (kind != FileIdInfo)
        return systemsLargeNumbers(file, kind, told, size);
    // Two folders with this name differ only in the upper half of their numbers.
    const std::wstring name = OpenedName(file);
    auto* const id = static_cast<FILE_ID_INFO*>(told);
    *id = {};
    id->VolumeSerialNumber = 1;
    id->FileId.Identifier[0] = 7;
    id->FileId.Identifier[15] = static_cast<BYTE>(name.find(L"\\new") != name.npos);
    return TRUE;
}

TEST_F(Unnumbered, LargeNumbersTellFoldersApartWhereThereAreSuch) {
    const eReplacedCall large(kLibrary, "GetFileInformationByHandleEx", &LargeNumbersInstead, &systemsLargeNumbers);
    MakeFile("root/sub/file");
    Copy("root", "root/new");
    EXPECT_EQ((eNames{"new/", "new/sub/", "new/sub/file", "sub/", "sub/file"}), Tree("root"));
}

// --- System calls that are made, and calls that are not ---

std::vector<std::wstring> theFolders;

decltype(&::CreateDirectoryW) systemsMakeFolder;
BOOL WINAPI MakeFolderNoted(LPCWSTR name, LPSECURITY_ATTRIBUTES security) {
    theFolders.push_back(name);
    return systemsMakeFolder(name, security);
}

TEST_F(BusySystem, CreateAsksForEachPartAndForNothingWhereTheFolderExists) {
    const eReplacedCall making(kLibrary, "CreateDirectoryW", &MakeFolderNoted, &systemsMakeFolder);
    theFolders.clear();
    EXPECT_TRUE(eWide::Create(Folder("a/b")));
    ASSERT_GE(theFolders.size(), 3u);
    EXPECT_TRUE(theFolders[theFolders.size() - 3].ends_with(L"/a"));
    EXPECT_TRUE(theFolders[theFolders.size() - 2].ends_with(L"/a/b"));
    EXPECT_TRUE(theFolders.back().ends_with(L"/a/b/"));
    theFolders.clear();
    EXPECT_TRUE(eWide::Create(Folder("a/b")));
    EXPECT_TRUE(eWide::Create(L""));
    EXPECT_EQ(0u, theFolders.size());
}

TEST_F(BusySystem, CopyOfAMissingFileAsksForNothing) {
    const eReplacedCall copying(kLibrary, "CopyFileW", &CopyFileInstead, &systemsCopyFile);
    Refuse(eCall::Any, L"", 0, 0);
    EXPECT_FALSE(eWide::CopyFile(Named("missing"), Named("to")));
    EXPECT_EQ(0, theSystem.calls);
}

TEST_F(BusySystem, SingleFilesAreNotWaitedFor) {
    const eReplacedCall deleting(kLibrary, "DeleteFileW", &DeleteFileInstead, &systemsDeleteFile);
    const eReplacedCall copying(kLibrary, "CopyFileW", &CopyFileInstead, &systemsCopyFile);
    MakeFile("file");
    Refuse(eCall::Any, L"file", ERROR_SHARING_VIOLATION, 1);
    EXPECT_FALSE(eWide::DeleteFile(Named("file")));
    Refuse(eCall::Any, L"file", ERROR_SHARING_VIOLATION, 1);
    EXPECT_TRUE(eWide::CopyFile(Named("file"), Named("copy")));
    EXPECT_FALSE(Exists("copy"));
}

// --- A copy that another thread stops ---

struct eStopped {
    DWORD flags;
    bool hasFlag;
    DWORD beforehand, afterwards;
};

eStopped theStopped;

decltype(&::CopyFileExW) systemsStoppable;
BOOL WINAPI StoppableInstead(LPCWSTR, LPCWSTR, LPPROGRESS_ROUTINE progress, LPVOID data, LPBOOL flag, DWORD flags) {
    const LARGE_INTEGER none{};
    const auto look = [&] { return progress(none, none, none, none, 1, 0, nullptr, nullptr, data); };
    theStopped = {flags, flag != nullptr, look(), 0};
    *static_cast<unsigned char*>(data) = 255;
    theStopped.afterwards = look();
    ::SetLastError(ERROR_REQUEST_ABORTED);
    return FALSE;
}

TEST_F(BusySystem, CopyExLooksAtTheFlagWheneverTheSystemReportsProgress) {
    const eReplacedCall copying(kLibrary, "CopyFileExW", &StoppableInstead, &systemsStoppable);
    MakeFile("from");
    bool flag = false;
    EXPECT_TRUE(eWide::CopyFileEx(Named("from"), Named("to"), &flag));
    EXPECT_EQ(0x1000u, theStopped.flags);
    EXPECT_FALSE(theStopped.hasFlag);
    EXPECT_EQ(DWORD{PROGRESS_CONTINUE}, theStopped.beforehand);
    EXPECT_EQ(DWORD{PROGRESS_CANCEL}, theStopped.afterwards);
}

// As Windows reports a copy and what it does when it is stopped.
BOOL WINAPI WatchedInstead(LPCWSTR from, LPCWSTR to, LPPROGRESS_ROUTINE progress, LPVOID data, LPBOOL, DWORD) {
    LARGE_INTEGER all{}, moved{};
    all.QuadPart = 7;
    for (moved.QuadPart = 0; moved.QuadPart <= 6; moved.QuadPart += 3)
        if (progress(all, moved, all, moved, 1, CALLBACK_CHUNK_FINISHED, nullptr, nullptr, data) != PROGRESS_CONTINUE) {
            ::SetLastError(ERROR_REQUEST_ABORTED);
            return FALSE;
        }
    return ::CopyFileW(from, to, FALSE);
}

TEST_F(BusySystem, ACopyThatTellsShowsItsProgressWithinAFileAndCanBeStoppedThere) {
    const eReplacedCall copying(kLibrary, "CopyFileExW", &WatchedInstead, &systemsStoppable);
    MakeFile("from/file");
    std::vector<unsigned long long> bytes;
    IO::System::eTreeTask task;
    task.countFirst = false;
    task.progress = [&](const IO::System::eTreeProgress& at) { return bytes.push_back(at.now.bytes), true; };
    EXPECT_TRUE(eWide::CopyTree(Named("from"), Named("to"), task));
    EXPECT_EQ((std::vector<unsigned long long>{0, 3, 6, 7, 7}), bytes);
    EXPECT_EQ(eNames{"file"}, Tree("to"));
    task.progress = [](const IO::System::eTreeProgress& at) { return at.now.bytes < 3; };
    const auto result = eWide::CopyTree(Named("from"), Named("other"), task);
    EXPECT_TRUE(result.cancelled);
    EXPECT_EQ(0u, result.failed);
    EXPECT_EQ(eNames(), Tree("other"));
}

TEST_F(BusySystem, ADeletionThatTellsNamesAReadOnlyFileWithTheSystemsError) {
    MakeFile("root/a/kept");
    MakeFile("root/gone");
    ASSERT_TRUE(::SetFileAttributesW(At("root/a/kept").c_str(), FILE_ATTRIBUTE_READONLY));
    const auto result = eWide::DeleteTree(Named("root"));
    ::SetFileAttributesW(At("root/a/kept").c_str(), FILE_ATTRIBUTE_NORMAL);
    EXPECT_EQ(1u, result.failed);
    ASSERT_EQ(1u, result.failures.size());
    EXPECT_EQ(Named("root/a/kept"), result.failures[0].name);
    EXPECT_EQ(IO::System::eTreeStep::Remove, result.failures[0].step);
    EXPECT_EQ(ERROR_ACCESS_DENIED, result.failures[0].reason.number);
    EXPECT_TRUE(result.failures[0].reason.text.starts_with("It could not be removed: "));
}

TEST_F(BusySystem, AListingThatBreaksOffIsAFailure) {
    const eReplacedCall listing(kLibrary, "FindNextFileW", &FindNextBroken, &systemsFindNext);
    MakeFile("root/file");
    const auto result = eWide::CopyTree(Named("root"), Named("to"));
    ASSERT_EQ(1u, result.failures.size());
    EXPECT_EQ(Named("root").GetPath(), result.failures[0].name);
    EXPECT_EQ(IO::System::eTreeStep::Open, result.failures[0].step);
    EXPECT_EQ(ERROR_NETNAME_DELETED, result.failures[0].reason.number);
    IO::eTreeSearchW search(Named("root"), L"*");
    EXPECT_FALSE(search.Valid());
    EXPECT_EQ(1u, search.Unread());
}

decltype(&::MoveFileExW) systemsMove;
BOOL WINAPI MoveInstead(LPCWSTR from, LPCWSTR to, DWORD flags) {
    return !Fails(eCall::Any, from) && systemsMove(from, to, flags);
}

TEST_F(BusySystem, ReplaceTriesAgainWhatSomebodyHasOpen) {
    const eReplacedCall moving(kLibrary, "MoveFileExW", &MoveInstead, &systemsMove);
    MakeFile("new", "new");
    MakeFile("old", "old");
    Refuse(eCall::Any, L"new", ERROR_SHARING_VIOLATION, 2);
    EXPECT_TRUE(eWide::Replace(Named("new"), Named("old")));
    EXPECT_EQ(3, theSystem.calls);
    EXPECT_EQ("new", Content("old"));
    Refuse(eCall::Any, L"missing", 0, 0);
    EXPECT_FALSE(eWide::Replace(Named("missing"), Named("old")));
    EXPECT_EQ(1, theSystem.calls);
}

decltype(&::_filelengthi64) systemsLength;
long long __cdecl NoLength(int) {
    errno = EIO;
    return -1;
}

TEST_F(BusySystem, AFileWhoseLengthTheSystemDoesNotTellHasNone) {
    const eReplacedCall asking(kLibrary, "_filelengthi64", &NoLength, &systemsLength);
    MakeFile("file", "content");
    EXPECT_EQ(0u, IO::System::FileW::Size(Named("file")));
}

} // namespace
