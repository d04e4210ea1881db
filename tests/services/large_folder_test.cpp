// SPDX-License-Identifier: BSL-1.0
#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "support/fast_folder.h"
#include "support/long_tests.h"

#include "real_tree.h"

namespace {

// What takes the square of the number of files takes hours in full.
int FileCount() {
    return LongTests() ? 1'000'000 : 2'000;
}

template <class Width>
int CountFiles(const typename Width::Name& folder, const char* mask) {
    int count = 0;
    for (typename Width::Search search(folder, Width::Of(mask)); search.Valid(); search.Next())
        count += search.IsFile();
    return count;
}

class LargeFolder : public eRealTree<eNarrow> {
protected:
    LargeFolder() : eRealTree(FastFolder()) {}
};

} // namespace

TEST_F(LargeFolder, IsSearchedCopiedAndDeleted) {
    MakeFolder("folder");
    for (int file = 0; file < FileCount(); ++file)
        std::ofstream(At("folder") / std::to_string(file));
    EXPECT_EQ(CountFiles<eNarrow>(Folder("folder"), "*.*"), FileCount());
    EXPECT_EQ(CountFiles<eWide>(eFileNameW(eWide::OfPath(At("folder"))).GetPath(), "*7"), FileCount() / 10);
    eNarrow::PurgeEmpty(Folder("folder"));
    eNarrow::Copy(Folder("folder"), Folder("copy"));
    EXPECT_EQ(CountFiles<eNarrow>(Folder("copy"), "*.*"), FileCount());
    for (const char* folder : {"folder", "copy"}) {
        eNarrow::Delete(Folder(folder), true);
        EXPECT_FALSE(Exists(folder)) << folder;
    }
}
