// SPDX-License-Identifier: BSL-1.0
#include "support/platform/windows/import_table.h"

#include <stdexcept>

#include <windows.h>

#include <gtest/gtest.h>

#include <qzl_io/system.h>

#include "support/temp_folder.h"

namespace {

decltype(&::DeleteFileW) systemsDelete;
int refusals;

BOOL WINAPI Refuse(LPCWSTR) {
    ++refusals;
    ::SetLastError(ERROR_SHARING_VIOLATION);
    return FALSE;
}

BOOL WINAPI PassOn(LPCWSTR name) {
    return systemsDelete(name);
}

TEST(ReplacedCall, IsMadeInPlaceOfTheSystemsDuringTheObjectsLife) {
    const eTempFolder temp;
    temp.Write("file", "content");
    refusals = 0;
    {
        const eReplacedCall refusing("qzl_io.dll", "DeleteFileW", &Refuse, &systemsDelete);
        EXPECT_FALSE(IO::System::FileW::Delete(temp.NameW(L"file")));
        EXPECT_TRUE(temp.Exists("file"));
    }
    EXPECT_TRUE(IO::System::FileW::Delete(temp.NameW(L"file")));
    EXPECT_EQ(1, refusals);
}

TEST(ReplacedCall, ReachesTheSystemsByThePointer) {
    const eTempFolder temp;
    temp.Write("file", "content");
    const eReplacedCall passing("qzl_io.dll", "DeleteFileW", &PassOn, &systemsDelete);
    EXPECT_TRUE(IO::System::FileW::Delete(temp.NameW(L"file")));
    EXPECT_FALSE(temp.Exists("file"));
}

TEST(ReplacedCall, IsRefusedWhereTheModuleDoesNotImportIt) {
    decltype(&::DeleteFileW) original = nullptr;
    EXPECT_THROW(eReplacedCall("qzl_io.dll", "NoSuchCall", &Refuse, &original), std::runtime_error);
    EXPECT_THROW(eReplacedCall("no_such_module.dll", "DeleteFileW", &Refuse, &original), std::runtime_error);
}

} // namespace
