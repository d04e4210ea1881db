// SPDX-License-Identifier: BSL-1.0
// The headers of Windows' shell have a type Folder. While they are read, it is called ShellFolder.
#define Folder ShellFolder
#include <windows.h>
// After windows.h:
#include <shlobj.h>
#undef Folder

#include <gtest/gtest.h>

#include <qzl_io/qzl_io.h>

namespace {

TEST(ClashingNames, FolderIsThatOfFileNamesBesideTheShell) {
    EXPECT_EQ(eFileName("C:\\data\\map.sdl").GetItem(Folder), eFileName("C:/data/"));
    ShellFolder* shell = nullptr;
    EXPECT_EQ(shell, nullptr);
}

} // namespace
