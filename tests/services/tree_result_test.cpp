// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "real_tree.h"
#include "support/wine.h"

// The operations on trees that tell what has become of them.

namespace {

using IO::System::eTreeCount;
using IO::System::eTreeProgress;
using IO::System::eTreeStep;
using IO::System::eTreeTask;

std::vector<unsigned long long> Numbers(const eTreeCount& count) {
    return {count.folders, count.files, count.bytes};
}

template <class Width>
class TreeResult : public eRealTree<Width> {
protected:
    // 4 folders with the root, 3 files of 10 bytes in all.
    void MakeSample(const std::string& root) const {
        this->MakeFile(root + "/one", "1");
        this->MakeFile(root + "/a/two", "22");
        this->MakeFile(root + "/a/b/seven", "7777777");
        this->MakeFolder(root + "/empty");
    }
    static eNames Sample() { return {"a/", "a/b/", "a/b/seven", "a/two", "empty/", "one"}; }
};
TYPED_TEST_SUITE(TreeResult, eWidths, eWidthNames);

// A task that writes down how far it has come, and goes on `calls` times.
struct eFollowed {
    explicit eFollowed(std::size_t calls = 1000) {
        task.progress = [this, calls](const eTreeProgress& at) {
            seen.push_back(at);
            return seen.size() < calls;
        };
    }

    eTreeTask task;
    std::vector<eTreeProgress> seen;
};

} // namespace

TYPED_TEST(TreeResult, OfACopyCountsWhatWasCopied) {
    this->MakeSample("from");
    this->MakeFile("to/old");
    const auto result = TypeParam::CopyTree(this->Named("from"), this->Named("to"));
    EXPECT_TRUE(result);
    EXPECT_EQ((std::vector<unsigned long long>{4, 3, 10}), Numbers(result.done));
    EXPECT_FALSE(result.cancelled);
    EXPECT_TRUE(result.failures.empty());
    EXPECT_EQ(this->Sample(), this->Tree("to"));
}

TYPED_TEST(TreeResult, OfADeletionCountsWhatWasRemoved) {
    this->MakeSample("root");
    const auto result = TypeParam::DeleteTree(this->Named("root"));
    EXPECT_TRUE(result);
    EXPECT_EQ((std::vector<unsigned long long>{4, 3, 10}), Numbers(result.done));
    EXPECT_FALSE(this->Exists("root"));
}

TYPED_TEST(TreeResult, OfAPurgeCountsTheFoldersThatWereRemoved) {
    this->MakeSample("root");
    this->MakeFolder("root/x/y");
    for (const auto& name : {this->Named("root"), this->Folder("root")}) {
        const auto result = TypeParam::PurgeTree(name);
        EXPECT_TRUE(result);
        EXPECT_EQ(name.IsPath() ? 0u : 3u, result.done.folders);
        EXPECT_EQ(0u, result.done.files);
    }
    EXPECT_EQ((eNames{"a/", "a/b/", "a/b/seven", "a/two", "one"}), this->Tree("root"));
}

TYPED_TEST(TreeResult, OfAMissingFolderNamesItWithTheSystemsReason) {
    this->MakeFile("to/old");
    const auto missing = this->Named("missing");
    for (const auto& result : {TypeParam::DeleteTree(missing), TypeParam::PurgeTree(missing),
                               TypeParam::CopyTree(missing, this->Named("to"))}) {
        EXPECT_FALSE(result);
        EXPECT_EQ(1u, result.failed);
        ASSERT_EQ(1u, result.failures.size());
        EXPECT_EQ(missing.GetPath(), result.failures[0].name);
        EXPECT_EQ(eTreeStep::Open, result.failures[0].step);
        EXPECT_EQ(2, result.failures[0].reason.number);
        EXPECT_TRUE(result.failures[0].reason.text.starts_with("The folder could not be read: "));
        EXPECT_TRUE(result.failures[0].reason.text.ends_with("."));
    }
    EXPECT_EQ(eNames{"old"}, this->Tree("to"));
}

TYPED_TEST(TreeResult, OfAFileThatIsTakenForAFolderIsAFailureAndLeavesTheFile) {
    this->MakeFile("file");
    this->MakeFile("to/old");
    const auto file = this->Named("file");
    for (const auto& result :
         {TypeParam::DeleteTree(file), TypeParam::PurgeTree(file), TypeParam::CopyTree(file, this->Named("to"))}) {
        ASSERT_EQ(1u, result.failures.size());
        EXPECT_EQ(eTreeStep::Open, result.failures[0].step);
        EXPECT_NE(0, result.failures[0].reason.number);
    }
    EXPECT_EQ((eNames{"file", "to/", "to/old"}), this->Tree(""));
}

TYPED_TEST(TreeResult, OfATargetThatCannotBeAFolderNamesTheTarget) {
    this->MakeSample("from");
    this->MakeFile("file");
    const auto result = TypeParam::CopyTree(this->Named("from"), this->Named("file/to"));
    ASSERT_EQ(1u, result.failures.size());
    EXPECT_EQ(this->Folder("file/to"), result.failures[0].name);
    EXPECT_EQ(eTreeStep::Create, result.failures[0].step);
    EXPECT_EQ("content", this->Content("file"));
}

TYPED_TEST(TreeResult, OfACopyIntoItselfCountsWhatWasThereBefore) {
    this->MakeFile("from/a/file", "1");
    const auto result = TypeParam::CopyTree(this->Named("from"), this->Named("from/a/copy"));
    EXPECT_TRUE(result);
    EXPECT_EQ(result.done.files, 1u);
    EXPECT_EQ((eNames{"a/", "a/copy/", "a/copy/a/", "a/copy/a/file", "a/file"}), this->Tree("from"));
}

TYPED_TEST(TreeResult, OfANameThatNamesNothingSaysSo) {
    using eGiven = typename TypeParam::Name;
    using eChars = typename TypeParam::Text;
    const eChars cut = this->Named("root").str() + eChars(1, 0) + TypeParam::Of("x");
    this->MakeSample("root");
    for (const eGiven& name : {eGiven(), eGiven(TypeParam::Of("q:")), eGiven(cut)})
        for (const auto& result :
             {TypeParam::DeleteTree(name), TypeParam::PurgeTree(name), TypeParam::CopyTree(name, this->Named("root")),
              TypeParam::CopyTree(this->Named("root"), name)}) {
            EXPECT_FALSE(result);
            ASSERT_EQ(1u, result.failures.size());
            EXPECT_EQ(name, result.failures[0].name);
            EXPECT_EQ(0, result.failures[0].reason.number);
            EXPECT_EQ("The name names no folder.", result.failures[0].reason.text);
        }
    EXPECT_EQ(this->Sample(), this->Tree("root"));
}

TYPED_TEST(TreeResult, ProgressGrowsFromTheCountToAllOfIt) {
    this->MakeSample("from");
    eFollowed copy, erase, purge;
    EXPECT_TRUE(TypeParam::CopyTree(this->Named("from"), this->Named("to"), copy.task));
    EXPECT_TRUE(TypeParam::PurgeTree(this->Named("from"), purge.task));
    EXPECT_TRUE(TypeParam::DeleteTree(this->Named("to"), erase.task));
    for (const eFollowed* followed : {&copy, &purge, &erase}) {
        ASSERT_FALSE(followed->seen.empty());
        EXPECT_TRUE(followed->seen.front().counting);
        EXPECT_FALSE(followed->seen.back().counting);
        EXPECT_EQ(Numbers(followed->seen.back().all), Numbers(followed->seen.back().now));
        unsigned long long bytes = 0;
        for (const eTreeProgress& at : followed->seen) {
            EXPECT_LE(bytes, at.now.bytes);
            EXPECT_LE(at.now.bytes, at.all.bytes);
            EXPECT_TRUE(!at.counting || (at.now.files == 0 && at.now.folders == 0));
            bytes = at.now.bytes;
        }
    }
    EXPECT_EQ((std::vector<unsigned long long>{4, 3, 10}), Numbers(copy.seen.back().all));
    EXPECT_EQ((std::vector<unsigned long long>{4, 3, 10}), Numbers(erase.seen.back().all));
    EXPECT_EQ((std::vector<unsigned long long>{3, 3, 0}), Numbers(purge.seen.back().all));
}

TYPED_TEST(TreeResult, ProgressWithoutACountTellsOfNoWhole) {
    this->MakeSample("from");
    eFollowed copy;
    copy.task.countFirst = false;
    EXPECT_TRUE(TypeParam::CopyTree(this->Named("from"), this->Named("to"), copy.task));
    for (const eTreeProgress& at : copy.seen) {
        EXPECT_FALSE(at.counting);
        EXPECT_EQ((std::vector<unsigned long long>{0, 0, 0}), Numbers(at.all));
    }
    EXPECT_EQ((std::vector<unsigned long long>{4, 3, 10}), Numbers(copy.seen.back().now));
}

TYPED_TEST(TreeResult, ProgressTellsOfTheBytesWithinALargeFile) {
    if (IsUnderWine())
        GTEST_SKIP() << "Wine reports no progress within a file";
    constexpr std::size_t kSize = std::size_t{20} << 20;
    this->MakeFile("from/large", std::string(kSize, 'x'));
    eFollowed copy;
    copy.task.countFirst = false;
    EXPECT_TRUE(TypeParam::CopyTree(this->Named("from"), this->Named("to"), copy.task));
    const auto within = [](const eTreeProgress& at) { return at.now.files == 0 && at.now.bytes > 0; };
    EXPECT_TRUE(std::any_of(copy.seen.begin(), copy.seen.end(), within));
    EXPECT_EQ(kSize, copy.seen.back().now.bytes);
}

TYPED_TEST(TreeResult, CancellingStopsAtAnyCallAndIsTold) {
    const std::size_t step = IsUnderWine() ? 5 : 1; // it is slow
    std::size_t most = 1;
    for (bool cancelled = true; cancelled; most += step) {
        this->MakeSample("from");
        eFollowed copy(most);
        const auto result = TypeParam::CopyTree(this->Named("from"), this->Named("to"), copy.task);
        cancelled = result.cancelled;
        EXPECT_EQ(cancelled, !result);
        EXPECT_EQ(0u, result.failed);
        EXPECT_LE(copy.seen.size(), most);
        EXPECT_EQ(this->Sample(), this->Tree("from"));
        for (const std::string& name : this->Exists("to") ? this->Tree("to") : eNames()) {
            EXPECT_TRUE(name.ends_with("/") || this->Content("to/" + name) == this->Content("from/" + name));
        }
        TypeParam::Delete(this->Named("to"), true);
    }
    EXPECT_GT(most, 13u);
    for (std::size_t calls = 1; calls < 14; calls += step) {
        this->MakeSample("root");
        eFollowed erase(calls);
        EXPECT_TRUE(TypeParam::DeleteTree(this->Named("root"), erase.task).cancelled);
        EXPECT_TRUE(this->Exists("root"));
        EXPECT_EQ(calls <= 7, this->Tree("root") == this->Sample());
    }
}

TYPED_TEST(TreeResult, ACopyThatIsCancelledWithinAFileLeavesNoPartOfIt) {
    if (IsUnderWine())
        GTEST_SKIP() << "Wine reports no progress within a file";
    this->MakeFile("from/large", std::string(std::size_t{20} << 20, 'x'));
    eTreeTask task;
    task.progress = [](const eTreeProgress& at) { return at.now.bytes == 0; };
    const auto result = TypeParam::CopyTree(this->Named("from"), this->Named("to"), task);
    EXPECT_TRUE(result.cancelled);
    EXPECT_EQ(0u, result.failed);
    EXPECT_EQ(eNames(), this->Tree("to"));
}

TYPED_TEST(TreeResult, AnExceptionOfTheCallerStopsTheWorkAndReachesTheCaller) {
    if (IsUnderWine())
        GTEST_SKIP() << "Wine reports no progress within a file";
    this->MakeFile("from/large", std::string(std::size_t{20} << 20, 'x'));
    eTreeTask task;
    task.progress = [](const eTreeProgress& at) -> bool {
        return at.now.bytes == 0 ? true : throw std::runtime_error("enough");
    };
    EXPECT_THROW(TypeParam::CopyTree(this->Named("from"), this->Named("to"), task), std::runtime_error);
    EXPECT_EQ(eNames(), this->Tree("to"));
    EXPECT_THROW(TypeParam::DeleteTree(this->Named("from"), task), std::runtime_error);
}

TYPED_TEST(TreeResult, ReplaceTakesThePlaceOfAFileAndRenameOfNone) {
    this->MakeFile("new", "new");
    this->MakeFile("old", "old");
    EXPECT_TRUE(TypeParam::Replace(this->Named("new"), this->Named("old")));
    EXPECT_EQ(eNames{"old"}, this->Tree(""));
    EXPECT_EQ("new", this->Content("old"));
    EXPECT_TRUE(TypeParam::Replace(this->Named("old"), this->Named("moved")));
    EXPECT_TRUE(TypeParam::Rename(this->Named("moved"), this->Named("again")));
    EXPECT_EQ(eNames{"again"}, this->Tree(""));
    EXPECT_FALSE(TypeParam::Replace(this->Named("missing"), this->Named("again")));
    EXPECT_FALSE(TypeParam::Rename(this->Named("missing"), this->Named("other")));
    this->MakeFile("folder/file");
    EXPECT_FALSE(TypeParam::Replace(this->Named("again"), this->Named("folder")));
    EXPECT_EQ((eNames{"again", "folder/", "folder/file"}), this->Tree(""));
    EXPECT_EQ("new", this->Content("again"));
}
