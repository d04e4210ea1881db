// SPDX-License-Identifier: BSL-1.0
// Saving on a system where others hold files open, and where a file has more than its content.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <thread>

#include <windows.h>

#include <qzl_io/streams.h>

#include "streams/whole_document.h"
#include "support/long_tests.h"
#include "support/platform/windows/import_table.h"
#include "support/temp_folder.h"
#include "support/wine.h"

namespace fs = std::filesystem;

namespace {

class SavedFile : public testing::Test {
protected:
    eFileName Name(const std::string& name) const { return eFileName(folder.Name(name)); }
    std::wstring NameW(const std::string& name) const { return (folder.Path() / name).wstring(); }

    bool Save(const std::string& name, std::string_view document, std::string* failure = nullptr) const {
        IO::eSaveFile file(Name(name));
        file.Write(document.data(), document.size());
        const bool saved = file.Commit();
        if (failure)
            *failure = file.Failure().text;
        return saved;
    }

    std::set<std::string> Entries() const {
        std::set<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder.Path()))
            names.insert(entry.path().filename().string());
        return names;
    }

    HANDLE Hold(const std::string& name, DWORD access, DWORD share) const {
        return ::CreateFileW(NameW(name).c_str(), access, share, nullptr, OPEN_EXISTING, 0, nullptr);
    }

    eTempFolder folder;
};

} // namespace

TEST_F(SavedFile, KeepsItsAttributesAndItsTimeOfCreation) {
    folder.Write("file", "old");
    const std::wstring name = NameW("file");
    ASSERT_TRUE(::SetFileAttributesW(name.c_str(), FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_ARCHIVE));
    const FILETIME created{123456, 30000000};
    const HANDLE file = ::CreateFileW(name.c_str(), FILE_WRITE_ATTRIBUTES, 7, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_TRUE(::SetFileTime(file, &created, nullptr, nullptr));
    ::CloseHandle(file);
    ASSERT_TRUE(Save("file", "new"));
    EXPECT_EQ("new", folder.Read("file"));
    WIN32_FILE_ATTRIBUTE_DATA facts{};
    ASSERT_TRUE(::GetFileAttributesExW(name.c_str(), GetFileExInfoStandard, &facts));
    if (IsUnderWine())
        GTEST_SKIP() << "files have no time of creation under Wine";
    EXPECT_EQ(DWORD{FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_ARCHIVE}, facts.dwFileAttributes);
    EXPECT_EQ(created.dwHighDateTime, facts.ftCreationTime.dwHighDateTime);
}

TEST_F(SavedFile, KeepsItsOtherStreams) {
    folder.Write("file", "old");
    const HANDLE stream =
        ::CreateFileW((NameW("file") + L":notes").c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    if (stream == INVALID_HANDLE_VALUE || Entries().size() != 1) {
        ::CloseHandle(stream);
        GTEST_SKIP() << "this volume's files have no other streams";
    }
    DWORD written = 0;
    ::WriteFile(stream, "kept", 4, &written, nullptr);
    ::CloseHandle(stream);
    ASSERT_TRUE(Save("file", "new"));
    const HANDLE again =
        ::CreateFileW((NameW("file") + L":notes").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    char text[8] = {};
    EXPECT_TRUE(::ReadFile(again, text, sizeof(text), &written, nullptr));
    ::CloseHandle(again);
    EXPECT_STREQ("kept", text);
}

TEST_F(SavedFile, AReadOnlyFileIsRefused) {
    folder.Write("file", "old");
    ASSERT_TRUE(::SetFileAttributesW(NameW("file").c_str(), FILE_ATTRIBUTE_READONLY));
    {
        IO::eSaveFile file(Name("file"));
        EXPECT_FALSE(file.IsOpen());
        EXPECT_TRUE(file.Failure());
    }
    ::SetFileAttributesW(NameW("file").c_str(), FILE_ATTRIBUTE_NORMAL);
    EXPECT_EQ("old", folder.Read("file"));
    EXPECT_EQ((std::set<std::string>{"file"}), Entries());
}

TEST_F(SavedFile, HeldByAnotherIsTheOldDocumentOrTheNewOne) {
    for (const DWORD access : {DWORD{GENERIC_READ}, DWORD{GENERIC_READ | GENERIC_WRITE}, DWORD{GENERIC_READ | DELETE}})
        for (DWORD share = 0; share < 8; ++share) {
            SCOPED_TRACE(std::to_string(access) + " shared " + std::to_string(share));
            folder.Write("file", "old");
            const HANDLE held = Hold("file", access, share);
            ASSERT_NE(INVALID_HANDLE_VALUE, held);
            std::string failure;
            const bool saved = Save("file", "new", &failure);
            ::CloseHandle(held);
            EXPECT_EQ(saved ? "new" : "old", folder.Read("file"));
            EXPECT_EQ(saved, failure.empty());
            const bool kept = folder.Exists("file.unsaved");
            EXPECT_EQ(kept, failure.find("file.unsaved\"") != std::string::npos) << failure;
            EXPECT_TRUE(!kept || folder.Read("file.unsaved") == "new");
            fs::remove(folder.Path() / "file.unsaved");
            EXPECT_EQ((std::set<std::string>{"file"}), Entries());
        }
}

TEST_F(SavedFile, NobodyCanExchangeItsFolderMeanwhile) {
    for (const bool exists : {true, false}) {
        fs::create_directories(folder.Path() / "docs/inner");
        if (exists)
            folder.Write("docs/inner/file", "old");
        {
            IO::eSaveFile file(Name("docs/inner/file"));
            file.Write("new", 3);
            EXPECT_FALSE(::MoveFileExW(NameW("docs/inner").c_str(), NameW("docs/moved").c_str(), 0)) << exists;
            EXPECT_TRUE(file.Commit()) << file.Failure().text;
        }
        EXPECT_EQ("new", folder.Read("docs/inner/file"));
        EXPECT_TRUE(::MoveFileExW(NameW("docs/inner").c_str(), NameW("docs/moved").c_str(), 0)) << exists;
        fs::remove_all(folder.Path() / "docs");
    }
}

// The document of a target with two names is written into it: not into another file that has taken its name.
TEST_F(SavedFile, IsKeptWhenAnotherFileHasTakenTheNameOfATargetWithTwo) {
    folder.Write("file", "old");
    folder.Write("precious", "precious");
    fs::create_hard_link(folder.Path() / "file", folder.Path() / "other");
    IO::eSaveFile file(Name("file"));
    file.Write("new", 3);
    ASSERT_TRUE(::DeleteFileW(NameW("file").c_str()));
    fs::create_hard_link(folder.Path() / "precious", folder.Path() / "file");
    EXPECT_FALSE(file.Commit());
    EXPECT_NE(std::string::npos, file.Failure().text.find("/file.unsaved")) << file.Failure().text;
    EXPECT_EQ("precious", folder.Read("precious"));
    EXPECT_EQ("old", folder.Read("other"));
    EXPECT_EQ("new", folder.Read("file.unsaved"));
}

TEST_F(SavedFile, IsSavedWhenAnotherLetsGoInTime) {
    folder.Write("file", "old");
    const HANDLE held = Hold("file", GENERIC_READ, 0);
    std::thread other([held] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        ::CloseHandle(held);
    });
    std::string failure;
    EXPECT_TRUE(Save("file", "new", &failure)) << failure;
    other.join();
    EXPECT_EQ("new", folder.Read("file"));
}

// --- What the system says and Wine never does ---

namespace {

decltype(&::MoveFileExW) systemsMove;
DWORD refusal = 0;
int refusals = 0;

BOOL WINAPI RefuseToReplace(LPCWSTR from, LPCWSTR to, DWORD flags) {
    if ((flags & MOVEFILE_REPLACE_EXISTING) == 0 || refusals-- <= 0)
        return systemsMove(from, to, flags);
    ::SetLastError(refusal);
    return FALSE;
}

class RefusedReplacement : public SavedFile {
protected:
    void Refuse(DWORD error, int times) {
        refusal = error;
        refusals = times;
    }

    const eReplacedCall<decltype(&::MoveFileExW)> replaced{"qzl_io.dll", "MoveFileExW", &RefuseToReplace, &systemsMove};
};

} // namespace

// Windows moves no file in place of a stream. (Under Wine a stream is a file of its own.)
TEST_F(RefusedReplacement, DoesNotConcernAStreamOfAFileWhichIsWrittenDirectly) {
    folder.Write("file", "precious");
    Refuse(ERROR_INVALID_NAME, 2);
    if (!Save("file:notes", "old") && !IsUnderWine())
        GTEST_SKIP() << "this volume's files have no other streams";
    EXPECT_TRUE(Save("file:notes", "new"));
    for (const std::string& name : Entries())
        EXPECT_TRUE(name == "file" || (IsUnderWine() && name == "file:notes")) << name;
    EXPECT_EQ("precious", folder.Read("file"));
    IO::eFileStream notes(Name("file:notes"), IO::StreamMode::Read);
    std::string content(notes.Size(), '\0');
    notes.Read(content.data(), content.size());
    EXPECT_EQ("new", content);
}

TEST_F(RefusedReplacement, IsTriedAgainForHalfASecond) {
    for (const DWORD error : {5u, 32u, 33u, 303u}) {
        SCOPED_TRACE(error);
        folder.Write("file", "old");
        Refuse(error, 6);
        EXPECT_TRUE(Save("file", "new"));
        EXPECT_EQ(-1, refusals);
        EXPECT_EQ("new", folder.Read("file"));
    }
}

TEST_F(RefusedReplacement, KeepsTheDocumentWhenItIsGivenUp) {
    for (const DWORD error : {5u, 32u, 33u, 303u}) {
        SCOPED_TRACE(error);
        folder.Write("file", "old");
        Refuse(error, 1000);
        std::string failure;
        const auto begin = std::chrono::steady_clock::now();
        EXPECT_FALSE(Save("file", "new", &failure));
        EXPECT_LT(std::chrono::milliseconds(450), std::chrono::steady_clock::now() - begin);
        EXPECT_EQ("old", folder.Read("file"));
        EXPECT_EQ("new", folder.Read("file.unsaved"));
        EXPECT_NE(std::string::npos, failure.find("/file.unsaved\".")) << failure;
        EXPECT_EQ(std::string::npos, failure.find("?")) << failure;
        Refuse(0, 0);
        EXPECT_TRUE(Save("file", "newer"));
        EXPECT_EQ("new", folder.Read("file.unsaved")) << "what was kept is not removed by the next save";
        fs::remove(folder.Path() / "file.unsaved");
        EXPECT_EQ((std::set<std::string>{"file"}), Entries());
    }
}

TEST_F(RefusedReplacement, IsGivenUpAtOnceForWhatDoesNotPass) {
    for (const DWORD error : {1u, 17u, 112u}) {
        folder.Write("file", "old");
        Refuse(error, 1000);
        EXPECT_FALSE(Save("file", "new")) << error;
        EXPECT_EQ(999, refusals);
        EXPECT_EQ("old", folder.Read("file"));
        EXPECT_EQ("new", folder.Read("file.unsaved"));
        fs::remove(folder.Path() / "file.unsaved");
    }
}

namespace {

BOOL WINAPI RefuseToRename(LPCWSTR from, LPCWSTR to, DWORD flags) {
    if (flags != 0)
        return systemsMove(from, to, flags);
    ::SetLastError(ERROR_GEN_FAILURE);
    return FALSE;
}

} // namespace

TEST_F(SavedFile, WhatCannotBeKeptUnderALastingNameIsNotWrittenInPlace) {
    folder.Write("file", "old");
    fs::create_hard_link(folder.Path() / "file", folder.Path() / "other");
    const eReplacedCall renaming("qzl_io.dll", "MoveFileExW", &RefuseToRename, &systemsMove);
    std::string failure;
    EXPECT_FALSE(Save("file", "new", &failure));
    EXPECT_EQ("old", folder.Read("other"));
    EXPECT_EQ("new", folder.Read(".file.saving"));
    EXPECT_NE(std::string::npos, failure.find("/.file.saving\".")) << failure;
}

namespace {

decltype(&::CreateFileW) systemsCreate;
std::wstring theTarget;
int exchanges = 0;

// Another program that puts a file in the target's place after that was opened and before its folder is held.
HANDLE WINAPI ExchangeBeforeTheFolderIsHeld(LPCWSTR name, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                                            DWORD creation, DWORD flags, HANDLE model) {
    if (std::wstring_view(name).ends_with(L'\\') && exchanges > 0) {
        const std::wstring older = theTarget + L".older" + std::to_wstring(exchanges--);
        EXPECT_TRUE(::MoveFileExW(theTarget.c_str(), older.c_str(), 0));
        ::CloseHandle(systemsCreate(theTarget.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
    }
    return systemsCreate(name, access, share, security, creation, flags, model);
}

decltype(&::GetFileInformationByHandle) systemsFacts;
BOOL WINAPI TellNothing(HANDLE, LPBY_HANDLE_FILE_INFORMATION) {
    ::SetLastError(ERROR_NOT_SUPPORTED);
    return FALSE;
}

BOOL WINAPI RefuseToMove(LPCWSTR, LPCWSTR, DWORD) {
    ADD_FAILURE() << "a file is moved";
    return FALSE;
}

decltype(&::WriteFile) systemsWrite;
BOOL WINAPI WriteNothing(HANDLE, LPCVOID, DWORD, LPDWORD written, LPOVERLAPPED) {
    *written = 0;
    ::SetLastError(ERROR_DISK_FULL);
    return FALSE;
}

} // namespace

TEST_F(SavedFile, WhichAnotherFileHasReplacedSinceItWasOpenedIsOpenedAgain) {
    const eReplacedCall creating("qzl_io.dll", "CreateFileW", &ExchangeBeforeTheFolderIsHeld, &systemsCreate);
    for (const int times : {1, 3}) {
        folder.Write("file", "old");
        theTarget = NameW("file");
        exchanges = times;
        std::string failure;
        EXPECT_TRUE(Save("file", "new", &failure)) << failure;
        EXPECT_EQ(0, exchanges);
        EXPECT_EQ("new", folder.Read("file"));
        for (int number = 1; number <= times; ++number) {
            EXPECT_EQ(number == times ? "old" : "", folder.Read("file.older" + std::to_string(number)));
            fs::remove(folder.Path() / ("file.older" + std::to_string(number)));
        }
        EXPECT_EQ((std::set<std::string>{"file"}), Entries());
    }
}

TEST_F(SavedFile, WhoseFactsTheSystemDoesNotTellIsLeftAlone) {
    folder.Write("file", "old");
    {
        const eReplacedCall asking("qzl_io.dll", "GetFileInformationByHandle", &TellNothing, &systemsFacts);
        IO::eSaveFile file(Name("file"));
        EXPECT_FALSE(file.IsOpen());
        EXPECT_FALSE(file.Commit());
        EXPECT_EQ(ERROR_NOT_SUPPORTED, file.Failure().number);
    }
    EXPECT_EQ("old", folder.Read("file"));
    EXPECT_EQ((std::set<std::string>{"file"}), Entries());
}

TEST_F(SavedFile, ADeviceIsWrittenDirectly) {
    const eReplacedCall moving("qzl_io.dll", "MoveFileExW", &RefuseToMove, &systemsMove);
    IO::eSaveFile device(eFileName("//./NUL"));
    ASSERT_TRUE(device.IsOpen()) << device.Failure().text;
    device.Write("new", 3);
    EXPECT_TRUE(device.Commit()) << device.Failure().text;
}

TEST_F(SavedFile, WithTwoNamesIsKeptBesideWhereTheDiskTakesNoMore) {
    folder.Write("file", "old");
    fs::create_hard_link(folder.Path() / "file", folder.Path() / "other");
    const eReplacedCall writing("qzl_io.dll", "WriteFile", &WriteNothing, &systemsWrite);
    std::string failure;
    EXPECT_FALSE(Save("file", "new", &failure));
    EXPECT_EQ("new", folder.Read("file.unsaved"));
    EXPECT_NE(std::string::npos, failure.find("/file.unsaved\".")) << failure;
}

// --- Programs that end in the middle ---

namespace {

constexpr char kTargetVariable[] = "QZL_TEST_SAVE_TARGET";

// This program once more, running the test below.
HANDLE StartSaver() {
    wchar_t program[1024];
    ::GetModuleFileNameW(nullptr, program, 1024);
    std::wstring command = L"\"" + std::wstring(program) +
                           L"\" --gtest_also_run_disabled_tests --gtest_filter=Saver.DISABLED_SavesForever";
    STARTUPINFOW start{};
    start.cb = sizeof(start);
    PROCESS_INFORMATION started{};
    if (!::CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW, nullptr, nullptr, &start,
                          &started))
        return nullptr;
    ::CloseHandle(started.hThread);
    return started.hProcess;
}

} // namespace

// Only started by the test of killed programs. Sizes from 1 KB to 20 MB.
TEST(Saver, DISABLED_SavesForever) {
    const char* const target = std::getenv(kTargetVariable);
    ASSERT_NE(nullptr, target) << "not meant to be run by itself";
    std::mt19937 random(::GetCurrentProcessId());
    for (unsigned seed = ::GetCurrentProcessId();; ++seed) {
        IO::eSaveFile file(eFileName{target}, seed % 2 ? IO::eSaveEnd::OnDisk : IO::eSaveEnd::InMemory);
        const std::string document = WholeDocument(seed, std::size_t{1000} << random() % 15);
        file.Write(document.data(), document.size());
        ASSERT_TRUE(file.Commit()) << file.Failure().text;
    }
}

TEST_F(SavedFile, AKilledProgramLosesNoDocument) {
    ASSERT_TRUE(Save("file", WholeDocument(0, 1000)));
    ASSERT_TRUE(::SetEnvironmentVariableA(kTargetVariable, folder.Name("file").c_str()));
    const int kills = LongTests() ? 1000 : 20;
    std::mt19937 random(2026);
    std::set<char> seen;
    for (int round = 0; round < kills; ++round) {
        const HANDLE saver = StartSaver();
        ASSERT_NE(nullptr, saver);
        const std::string before = folder.Read("file");
        const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (fs::file_size(folder.Path() / "file") == before.size() && std::chrono::steady_clock::now() < giveUp)
            ::Sleep(1);
        ::Sleep(random() % 30);
        ASSERT_TRUE(::TerminateProcess(saver, 77));
        ::WaitForSingleObject(saver, INFINITE);
        DWORD code = 0;
        ::GetExitCodeProcess(saver, &code);
        ::CloseHandle(saver);
        ASSERT_EQ(77u, code) << "the program ended by itself in round " << round;
        const std::string document = folder.Read("file");
        ASSERT_TRUE(IsWhole(document)) << round;
        seen.insert(document.back());
    }
    EXPECT_LT(5u, seen.size()) << "hardly anything was saved between the kills";
    EXPECT_TRUE(Save("file", "last"));
    EXPECT_EQ((std::set<std::string>{"file"}), Entries());
}
