// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <climits>
#include <filesystem>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "services/real_tree.h"
#include "support/fast_folder.h"
#include "support/platform/posix/open_descriptors.h"

// A tree whose lowest names are many times longer than any name that the system takes.

namespace {

constexpr int kDepth = 10'000;

// Steps down from level to level, each of which is a folder "down" in the one above.
class eDescent {
public:
    explicit eDescent(const std::string& root) : folder(::open(root.c_str(), O_PATH | O_DIRECTORY)) {}
    ~eDescent() { ::close(folder); }
    eDescent(const eDescent&) = delete;
    eDescent& operator=(const eDescent&) = delete;

    bool Make() { return ::mkdirat(folder, kName, S_IRWXU) == 0; }

    void MakeFile() {
        const int file = ::openat(folder, "file", O_WRONLY | O_CREAT | O_EXCL, S_IRUSR | S_IWUSR);
        EXPECT_EQ(::write(file, "content", 7), 7);
        ::close(file);
    }
    bool HasFile() const {
        struct stat status {};
        return ::fstatat(folder, "file", &status, 0) == 0 && status.st_size == 7;
    }

    bool Down() {
        const int next = ::openat(folder, kName, O_PATH | O_DIRECTORY);
        if (next < 0)
            return false;
        ::close(folder);
        folder = next;
        return true;
    }

private:
    static constexpr char kName[] = "down";

    int folder;
};

class DeepTree : public eRealTree<eNarrow> {
protected:
    static_assert(kDepth * 5 > 10 * PATH_MAX);

    DeepTree() : eRealTree(FastFolder()) {}

    // Many tools cannot remove such a tree, but the library can.
    void TearDown() override {
        for (const char* name : {"tree", "copy"})
            eNarrow::Delete(Folder(name), true);
    }

    void MakeTree(int filesFrom) {
        MakeFolder("tree");
        eDescent descent(At("tree").string());
        for (int level = 1; level <= kDepth; ++level) {
            ASSERT_TRUE(descent.Make() && descent.Down()) << level;
            if (level >= filesFrom)
                descent.MakeFile();
        }
    }

    // The number of levels, and of the files on them.
    std::pair<int, int> Count(const char* name) {
        eDescent descent(At(name).string());
        int levels = 0, files = 0;
        for (; descent.Down(); ++levels)
            files += descent.HasFile();
        return {levels, files};
    }
};

template <class Width>
eNames Listed(const typename Width::Name& folder) {
    eNames names;
    for (typename Width::Search search(folder, Width::Of("*.*")); search.Valid(); search.Next())
        if (search.IsFile() || search.IsSubfolder())
            names.push_back(std::filesystem::path(search.Name()).string());
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace

TEST_F(DeepTree, IsCopiedWholeAndDeleted) {
    const int before = OpenDescriptors();
    MakeTree(1);
    eNarrow::Copy(Folder("tree"), Folder("copy"));
    EXPECT_EQ(Count("copy"), std::pair(kDepth, kDepth));
    eNarrow::Delete(Folder("copy"), true);
    EXPECT_FALSE(Exists("copy"));
    EXPECT_EQ(Count("tree"), std::pair(kDepth, kDepth));
    eNarrow::Delete(Folder("tree"), true);
    EXPECT_FALSE(Exists("tree"));
    EXPECT_EQ(OpenDescriptors(), before);
}

TEST_F(DeepTree, OfEmptyFoldersIsPurgedUpToItsRoot) {
    MakeTree(kDepth + 1);
    eNarrow::PurgeEmpty(Folder("tree"));
    EXPECT_TRUE(Exists("tree"));
    EXPECT_EQ(Count("tree"), std::pair(0, 0));
}

TEST_F(DeepTree, WithAFileAtItsLowestLevelIsNotPurged) {
    MakeTree(kDepth);
    eNarrow::PurgeEmpty(Folder("tree"));
    EXPECT_EQ(Count("tree"), std::pair(kDepth, 1));
}

TEST_F(DeepTree, IsSearchedToItsBottomByARecursiveSearch) {
    MakeTree(kDepth);
    const int before = OpenDescriptors();
    IO::eTreeSearch search(Named("tree"), "file");
    ASSERT_TRUE(search.Valid());
    EXPECT_EQ(static_cast<std::size_t>(kDepth), search.Depth());
    EXPECT_EQ(7u, search.Size());
    EXPECT_LT(OpenDescriptors(), before + 30);
    search.Next();
    EXPECT_FALSE(search.Valid());
    EXPECT_EQ(0u, search.Unread());
}

TEST_F(DeepTree, IsSearchedDownToTheLongestNameThatTheSystemTakes) {
    MakeTree(1);
    std::string name = At("tree/down/").string();
    while (name.size() + sizeof("down/*.*") <= PATH_MAX)
        name += "down/";
    EXPECT_EQ(Listed<eNarrow>(eFileName(name)), (eNames{"down", "file"}));
    EXPECT_EQ(Listed<eWide>(eFileNameW(eWide::Of(name))), (eNames{"down", "file"}));
    EXPECT_EQ(Listed<eNarrow>(eFileName(name + "down/down/down/")), eNames());
}
