// SPDX-License-Identifier: BSL-1.0
#include <string>
#include <string_view>
#include <thread>

#include <windows.h>

#include <gtest/gtest.h>

#include <qzl_io/system.h>

#include "support/platform/windows/import_table.h"
#include "support/temp_folder.h"

// Facts of machines, and refusals, that Wine never tells: the library's calls go to a stand-in.

namespace {

constexpr const char* kLibrary = "qzl_io.dll";

std::string_view theMissing; // a function that this system does not have
USHORT theMachine = 0;       // what its processor is

BOOL WINAPI TellMachine(HANDLE, USHORT* process, USHORT* native) {
    *process = 0;
    *native = theMachine;
    return TRUE;
}

decltype(&::GetProcAddress) systemsFind;
FARPROC WINAPI FindInstead(HMODULE library, LPCSTR name) {
    if (theMissing == name)
        return nullptr;
    if (std::string_view(name) == "IsWow64Process2")
        return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&TellMachine));
    return systemsFind(library, name);
}

class OtherSystem : public testing::Test {
protected:
    void SetUp() override { theMissing = {}; }

    const eReplacedCall<decltype(&::GetProcAddress)> found{kLibrary, "GetProcAddress", &FindInstead, &systemsFind};
};

TEST_F(OtherSystem, TellsTheProcessorThatAnotherOneIsEmulatedOn) {
    struct eRow {
        USHORT machine;
        const char* name;
    };
    for (const eRow& row : {eRow{0x014c, "x86"}, {0x8664, "x86_64"}, {0xaa64, "aarch64"}, {0x01c4, ""}}) {
        theMachine = row.machine;
        const IO::System::eSystemFacts facts = IO::System::SystemFacts("test");
        EXPECT_EQ(row.name, facts.machineArchitecture);
        EXPECT_EQ("x86_64", facts.architecture);
    }
}

TEST_F(OtherSystem, ThatEmulatesNoneHasTheProcessorThatItShows) {
    theMissing = "IsWow64Process2";
    EXPECT_EQ("x86_64", IO::System::SystemFacts("test").machineArchitecture);
}

TEST_F(OtherSystem, WithoutTheFunctionForItTellsNoFolders) {
    for (const char* missing : {"SHGetKnownFolderPath", "CoTaskMemFree"}) {
        theMissing = missing;
        EXPECT_TRUE(IO::System::UserFolder(IO::System::eUserFolder::Settings).empty()) << missing;
        EXPECT_TRUE(IO::System::UserFolderW(IO::System::eUserFolder::Documents).empty()) << missing;
    }
}

decltype(&::GetActiveProcessorCount) systemsCount;
DWORD WINAPI CountNone(WORD) {
    return 0;
}

TEST(Processors, AreThoseOfItsOwnGroupWhereTheSystemDoesNotTellItsGroups) {
    const eReplacedCall counted(kLibrary, "GetActiveProcessorCount", &CountNone, &systemsCount);
    EXPECT_GE(IO::System::SystemFacts("test").processors, std::thread::hardware_concurrency());
}

// --- The registry ---

decltype(&::RegOpenKeyExA) systemsOpenKey;
LSTATUS WINAPI NoKey(HKEY, LPCSTR, DWORD, REGSAM, PHKEY) {
    return ERROR_FILE_NOT_FOUND;
}

LSTATUS theStatus = ERROR_SUCCESS;
DWORD theType = REG_SZ;
decltype(&::RegQueryValueExA) systemsQuery;
LSTATUS WINAPI QueryInstead(HKEY, LPCSTR, LPDWORD, LPDWORD type, LPBYTE value, LPDWORD size) {
    constexpr std::string_view kId = "0123ABCD-EF00";
    *type = theType;
    kId.copy(reinterpret_cast<char*>(value), *size);
    return theStatus;
}

TEST(MachineId, IsEmptyWhereTheRegistryHasNone) {
    {
        const eReplacedCall opened(kLibrary, "RegOpenKeyExA", &NoKey, &systemsOpenKey);
        EXPECT_EQ("", IO::System::SystemFacts("test").machineId);
    }
    const eReplacedCall asked(kLibrary, "RegQueryValueExA", &QueryInstead, &systemsQuery);
    theStatus = ERROR_SUCCESS;
    theType = REG_SZ;
    EXPECT_EQ("0123abcd-ef00", IO::System::SystemFacts("test").machineId);
    theStatus = ERROR_FILE_NOT_FOUND;
    EXPECT_EQ("", IO::System::SystemFacts("test").machineId);
    theStatus = ERROR_SUCCESS;
    theType = REG_DWORD;
    EXPECT_EQ("", IO::System::SystemFacts("test").machineId);
}

// --- The room on a volume ---

decltype(&::GetVolumePathNameW) systemsVolume;
BOOL WINAPI NoVolume(LPCWSTR, LPWSTR, DWORD) {
    ::SetLastError(ERROR_ACCESS_DENIED);
    return FALSE;
}

decltype(&::GetDiskFreeSpaceExW) systemsSpace;
BOOL WINAPI NoSpace(LPCWSTR, PULARGE_INTEGER, PULARGE_INTEGER, PULARGE_INTEGER) {
    ::SetLastError(ERROR_NOT_READY);
    return FALSE;
}

TEST(Space, IsNotWrittenWhereTheSystemDoesNotTellIt) {
    const eTempFolder folder;
    IO::System::eSpace space{1, 2};
    {
        const eReplacedCall asked(kLibrary, "GetVolumePathNameW", &NoVolume, &systemsVolume);
        EXPECT_FALSE(IO::System::GetSpace(eFileName(folder.Name("")), &space));
    }
    {
        const eReplacedCall asked(kLibrary, "GetDiskFreeSpaceExW", &NoSpace, &systemsSpace);
        EXPECT_FALSE(IO::System::GetSpaceW(eFileNameW(folder.NameW(L"")), &space));
    }
    EXPECT_EQ(1u, space.free);
    EXPECT_EQ(2u, space.total);
    EXPECT_TRUE(IO::System::GetSpace(eFileName(folder.Name("")), &space));
    EXPECT_LE(space.free, space.total);
}

} // namespace
