// SPDX-License-Identifier: BSL-1.0
#include <string>
#include <string_view>

#include <windows.h>

#include <gtest/gtest.h>

#include "support/platform/windows/import_table.h"

#include "../../real_tree.h"

// What the library does where a manifest has made the code page UTF-8, which Wine's settings do not: the conversions of
// the code page go to UTF-8.

namespace {

constexpr const char* kLibrary = "qzl_io.dll";
constexpr char kName[] = "\xce\xbb\xe6\x97\xa5\xf0\x9f\x8c\x8d.txt";

UINT Utf8Instead(UINT page) {
    return page == CP_ACP ? CP_UTF8 : page;
}

decltype(&::GetACP) systemsPage;
UINT WINAPI PageInstead() {
    return CP_UTF8;
}

decltype(&::MultiByteToWideChar) systemsWiden;
int WINAPI WidenInstead(UINT page, DWORD flags, LPCCH text, int size, LPWSTR room, int count) {
    return systemsWiden(Utf8Instead(page), flags, text, size, room, count);
}

decltype(&::WideCharToMultiByte) systemsNarrow;
int WINAPI NarrowInstead(UINT page, DWORD flags, LPCWCH text, int size, LPSTR room, int count, LPCCH instead,
                         LPBOOL used) {
    // As Windows refuses it for this page.
    if (Utf8Instead(page) == CP_UTF8 && (flags & WC_NO_BEST_FIT_CHARS) != 0) {
        ::SetLastError(ERROR_INVALID_FLAGS);
        return 0;
    }
    return systemsNarrow(Utf8Instead(page), flags, text, size, room, count, instead, used);
}

class Utf8CodePage : public eRealTree<eNarrow> {
    const eReplacedCall<decltype(&::GetACP)> asking{kLibrary, "GetACP", &PageInstead, &systemsPage};
    const eReplacedCall<decltype(&::MultiByteToWideChar)> widening{kLibrary, "MultiByteToWideChar", &WidenInstead,
                                                                   &systemsWiden};
    const eReplacedCall<decltype(&::WideCharToMultiByte)> narrowing{kLibrary, "WideCharToMultiByte", &NarrowInstead,
                                                                    &systemsNarrow};
};

} // namespace

TEST_F(Utf8CodePage, MakesNarrowNamesUtf8) {
    using namespace IO::System;
    EXPECT_TRUE(NamesAreUtf8());
    const eFileName name = Folder("").GetAdd(kName);
    EXPECT_EQ(name, NarrowName(WideName(name)));
    EXPECT_EQ(name.str(), NameToUtf8(name));
    MakeFile("plain", "content");
    EXPECT_TRUE(File::Copy(Named("plain"), name));
    EXPECT_EQ(7u, FileW::Size(NameFromUtf8W(name.str())));
    EXPECT_EQ(kName, std::string(IO::eSearch(Folder(""), "*.txt").Name()));
    EXPECT_EQ(kName, IO::eTreeSearch(Folder(""), "*.txt").Path());
    EXPECT_TRUE(Path::DeleteTree(Folder("")));
    EXPECT_FALSE(File::Access(name, File::Exist));
}
