// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <cstddef>
#include <string>

#include <windows.h>

#include <gtest/gtest.h>

#include "support/long_tests.h"
#include "support/wine.h"

#include "../../real_tree.h"

// A tree as deep as the system makes one: its names have at most 32,767 characters, so folders have one character.

namespace {

class DeepTree : public eRealTree<eWide> {
protected:
    void TearDown() override {
        for (const char* const name : {"t", "c"})
            eWide::Delete(Folder(name), true);
    }

    std::wstring OnDisk(std::string_view relative) const {
        std::wstring name = L"\\\\?\\" + At(relative).wstring();
        std::replace(name.begin(), name.end(), L'/', L'\\');
        return name;
    }

    // Returns the number of levels. The lowest one has a file, as have those above it with `files`.
    std::size_t MakeTree(bool files) const {
        const std::size_t wanted = !LongTests() ? 50 : IsUnderWine() ? 300 : 10'000; // Wine takes minutes for 300
        std::wstring name = OnDisk("t");
        ::CreateDirectoryW(name.c_str(), nullptr);
        std::size_t levels = 0;
        while (levels < wanted && ::CreateDirectoryW((name + L"\\d").c_str(), nullptr)) {
            name += L"\\d";
            ++levels;
            if (files)
                Touch(name + L"\\f");
        }
        return levels;
    }

    static void Touch(const std::wstring& name) {
        ::CloseHandle(::CreateFileW(name.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
    }

    static constexpr std::size_t kFewest = 50;
};

} // namespace

TEST_F(DeepTree, IsCopiedSearchedAndDeletedWhole) {
    const std::size_t levels = MakeTree(true);
    ASSERT_GE(levels, kFewest);
    RecordProperty("levels", static_cast<int>(levels));
    const auto copied = eWide::CopyTree(Folder("t"), Folder("c"));
    EXPECT_TRUE(copied);
    EXPECT_EQ(levels + 1, copied.done.folders);
    std::size_t deepest = 0;
    for (const auto& entry : IO::eTreeSearchW(Folder("c"), L"d"))
        deepest = std::max(deepest, entry.Depth() + 1);
    EXPECT_EQ(levels, deepest);
    EXPECT_TRUE(eWide::DeleteTree(Folder("c")));
    eWide::Delete(Folder("t"), true);
    EXPECT_FALSE(Exists("t") || Exists("c"));
}

TEST_F(DeepTree, OfEmptyFoldersIsPurgedUpToItsRoot) {
    const std::size_t levels = MakeTree(false);
    ASSERT_GE(levels, kFewest);
    const auto purged = eWide::PurgeTree(Folder("t"));
    EXPECT_TRUE(purged);
    EXPECT_EQ(levels, purged.done.folders);
    EXPECT_EQ(eNames(), Tree("t"));
}
