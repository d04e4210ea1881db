// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <concepts>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "real_tree.h"
#include "support/current_folder.h"
#include "support/wine.h"

namespace {

template <class Width>
class PathServices : public eRealTree<Width> {
protected:
    using Name = typename Width::Name;

    void MakeSample(const std::string& root) const {
        this->MakeFile(root + "/file.txt", "1");
        this->MakeFile(root + "/two words", "22");
        this->MakeFile(root + "/a/b/c/deep.bin", std::string(5000, 'x'));
        this->MakeFolder(root + "/empty/inner");
    }
    static eNames Sample() {
        return {"a/", "a/b/", "a/b/c/", "a/b/c/deep.bin", "empty/", "empty/inner/", "file.txt", "two words"};
    }
};
TYPED_TEST_SUITE(PathServices, eWidths, eWidthNames);

TYPED_TEST(PathServices, CreateMakesEveryMissingParent) {
    for (const std::string_view folder : {"a", "b/c", "d/e/f/", "two words/x.y/..z", "g/h//i/"}) {
        EXPECT_TRUE(TypeParam::Create(this->Named(folder))) << folder;
        EXPECT_TRUE(std::filesystem::is_directory(this->At(folder))) << folder;
    }
}

TYPED_TEST(PathServices, CreateOfNothingAndOfWhatExistsIsTrue) {
    this->MakeFile("folder/file");
    EXPECT_TRUE(TypeParam::Create(typename TypeParam::Name()));
    EXPECT_TRUE(TypeParam::Create(this->Named("folder")));
    EXPECT_TRUE(TypeParam::Create(this->Folder("folder")));
    EXPECT_TRUE(TypeParam::Create(this->Named("folder/file")));
    EXPECT_EQ((eNames{"folder/", "folder/file"}), this->Tree(""));
}

TYPED_TEST(PathServices, CreateBelowAFileIsFalse) {
    this->MakeFile("file");
    EXPECT_FALSE(TypeParam::Create(this->Named("file/b")));
    EXPECT_FALSE(TypeParam::Create(this->Named("file/b/c/")));
    EXPECT_EQ(eNames{"file"}, this->Tree(""));
}

TYPED_TEST(PathServices, BackSlashesAreSlashesInEveryFunction) {
    const auto named = [this](std::string_view relative) {
        return eRawName<TypeParam>(this->Folder("").str() + TypeParam::Of(relative));
    };
    EXPECT_TRUE(TypeParam::Create(named("x\\y\\z")));
    EXPECT_EQ((eNames{"x/", "x/y/", "x/y/z/"}), this->Tree(""));
    this->MakeFile("x/y/file");
    TypeParam::PurgeEmpty(named("x\\y\\"));
    EXPECT_EQ((eNames{"x/", "x/y/", "x/y/file"}), this->Tree(""));
    TypeParam::Copy(named("x\\y"), named("x\\copy"));
    TypeParam::Delete(named("x\\y"), true);
    EXPECT_EQ((eNames{"x/", "x/copy/", "x/copy/file"}), this->Tree(""));
    EXPECT_TRUE(typename TypeParam::Search(named("x\\copy\\"), TypeParam::Of("file")).IsFile());
    EXPECT_TRUE(typename TypeParam::Search(named(""), eRawName<TypeParam>(TypeParam::Of("x\\copy\\f*"))).IsFile());
}

TYPED_TEST(PathServices, CreateOfARelativeNameStartsAtTheCurrentFolder) {
    const eCurrentFolder current(this->temp.Path());
    EXPECT_TRUE(TypeParam::Create(TypeParam::Of("x/y")));
    EXPECT_EQ((eNames{"x/", "x/y/"}), this->Tree(""));
}

TYPED_TEST(PathServices, DeleteRemovesTheWholeTree) {
    this->MakeSample("root");
    this->MakeFile("neighbour");
    TypeParam::Delete(this->Named("root"), true);
    EXPECT_EQ(eNames{"neighbour"}, this->Tree(""));
    this->MakeSample("root");
    TypeParam::Delete(this->Folder("root"), true);
    EXPECT_EQ(eNames{"neighbour"}, this->Tree(""));
}

TYPED_TEST(PathServices, DeleteWithoutRecursionRemovesOnlyAnEmptyFolder) {
    this->MakeSample("root");
    TypeParam::Delete(this->Named("root"), false);
    EXPECT_EQ(TestFixture::Sample(), this->Tree("root"));
    TypeParam::Delete(this->Folder("root/empty/inner"), false);
    EXPECT_FALSE(this->Exists("root/empty/inner"));
    TypeParam::Delete(this->Named("root/empty"), false);
    EXPECT_FALSE(this->Exists("root/empty"));
}

TYPED_TEST(PathServices, DeleteOfAFileOrOfNothingLeavesEverythingInPlace) {
    this->MakeSample("root");
    const eCurrentFolder current(this->At("root"));
    for (const bool recursive : {false, true}) {
        TypeParam::Delete(this->Named("root/file.txt"), recursive);
        TypeParam::Delete(this->Named("root/missing"), recursive);
        TypeParam::Delete(typename TypeParam::Name(), recursive);
    }
    EXPECT_EQ(TestFixture::Sample(), this->Tree("root"));
}

TYPED_TEST(PathServices, NamesThatEndInADotMeanTheFolderItself) {
    for (const std::string end : {"/.", "/./", "//.//", "/././."}) {
        this->MakeSample("root");
        TypeParam::Delete(this->Named("root" + end), false);
        EXPECT_EQ(TestFixture::Sample(), this->Tree("root")) << end;
        TypeParam::Copy(this->Named("root" + end), this->Named("copy" + end));
        EXPECT_EQ(TestFixture::Sample(), this->Tree("copy")) << end;
        TypeParam::Delete(this->Named("root/empty/inner" + end), false);
        EXPECT_FALSE(this->Exists("root/empty/inner")) << end;
        TypeParam::PurgeEmpty(this->Folder("root" + end));
        EXPECT_FALSE(this->Exists("root/empty")) << end;
        TypeParam::Delete(this->Named("root" + end), true);
        EXPECT_FALSE(this->Exists("root")) << end;
        TypeParam::Delete(this->Named("copy" + end), true);
        EXPECT_EQ(eNames(), this->Tree("")) << end;
    }
}

TYPED_TEST(PathServices, NamesThatGoUpAndDownAreFollowed) {
    this->MakeFolder("a");
    EXPECT_TRUE(TypeParam::Create(this->Named("a/../b/./c")));
    this->MakeFile("b/file");
    TypeParam::Copy(this->Named("a/../b"), this->Named("./a/../copy"));
    EXPECT_EQ((eNames{"a/", "b/", "b/c/", "b/file", "copy/", "copy/c/", "copy/file"}), this->Tree(""));
    TypeParam::PurgeEmpty(this->Folder("a/../b"));
    TypeParam::Delete(this->Named("a/.././copy"), true);
    EXPECT_EQ((eNames{"a/", "b/", "b/file"}), this->Tree(""));
}

TYPED_TEST(PathServices, TheCurrentFolderIsEmptiedAndStays) {
    this->MakeSample("root/within");
    const eCurrentFolder current(this->At("root"));
    TypeParam::Delete(TypeParam::Of("."), true);
    EXPECT_EQ(eNames{"root/"}, this->Tree(""));
}

TYPED_TEST(PathServices, PurgeWithoutANameIsOfTheCurrentFolder) {
    this->MakeSample("root");
    const eCurrentFolder current(this->At("root"));
    TypeParam::PurgeEmpty(typename TypeParam::Name());
    EXPECT_FALSE(this->Exists("root/empty"));
    EXPECT_EQ("1", this->Content("root/file.txt"));
}

TYPED_TEST(PathServices, DeleteWorksFiftyLevelsDeep) {
    std::string folder = "root";
    for (int level = 0; level < 50; ++level) {
        folder += "/d";
        this->MakeFile(folder + "/f");
    }
    TypeParam::Delete(this->Named("root"), true);
    EXPECT_FALSE(this->Exists("root"));
}

// Twenty thousand files by narrow names. Both widths walk in the same way, so a tenth is enough for the wide names.
TYPED_TEST(PathServices, LargeTreesAreCopiedAndDeleted) {
    // Wine takes minutes for the larger one.
    const auto filesInFolder = std::same_as<TypeParam, eNarrow> && !IsUnderWine() ? 1000u : 100u;
    for (int folder = 0; folder < 20; ++folder)
        for (unsigned file = 0; file < filesInFolder; ++file)
            this->MakeFile("root/" + std::to_string(folder) + "/" + std::to_string(file), "x");
    TypeParam::Copy(this->Named("root"), this->Named("copy"));
    const eNames copied = this->Tree("copy");
    EXPECT_EQ(20u * (filesInFolder + 1u), copied.size());
    EXPECT_EQ(this->Tree("root"), copied);
    TypeParam::Delete(this->Named("root"), true);
    TypeParam::Delete(this->Named("copy"), true);
    EXPECT_EQ(eNames(), this->Tree(""));
}

TYPED_TEST(PathServices, CopyBringsTheWholeTree) {
    this->MakeSample("from");
    TypeParam::Copy(this->Named("from"), this->Named("to/deeper"));
    EXPECT_EQ(TestFixture::Sample(), this->Tree("to/deeper"));
    EXPECT_EQ(TestFixture::Sample(), this->Tree("from"));
    EXPECT_EQ("22", this->Content("to/deeper/two words"));
    EXPECT_EQ(std::string(5000, 'x'), this->Content("to/deeper/a/b/c/deep.bin"));
}

TYPED_TEST(PathServices, CopyFirstDeletesWhatTheTargetHeld) {
    this->MakeSample("from");
    this->MakeFile("to/extra/file");
    this->MakeFile("to/a/old");
    this->MakeFile("to/file.txt", "something longer than before");
    TypeParam::Copy(this->Folder("from"), this->Folder("to"));
    EXPECT_EQ(TestFixture::Sample(), this->Tree("to"));
    EXPECT_EQ("1", this->Content("to/file.txt"));
}

TYPED_TEST(PathServices, CopyOfAMissingFolderLeavesAnEmptyTarget) {
    this->MakeFile("to/file");
    TypeParam::Copy(this->Named("missing"), this->Named("to"));
    EXPECT_EQ(eNames{"to/"}, this->Tree(""));
}

TYPED_TEST(PathServices, CopyToANameThatAFileHasLeavesThatFile) {
    this->MakeSample("from");
    this->MakeFile("to", "old");
    TypeParam::Copy(this->Named("from"), this->Named("to"));
    TypeParam::Copy(this->Named("from"), this->Named("to/deeper"));
    EXPECT_EQ("old", this->Content("to"));
    EXPECT_EQ(TestFixture::Sample(), this->Tree("from"));
}

TYPED_TEST(PathServices, CopyWithAnEmptyNameDoesNothing) {
    this->MakeSample("root");
    const eCurrentFolder current(this->At("root"));
    TypeParam::Copy(typename TypeParam::Name(), this->Named("root/a"));
    TypeParam::Copy(this->Named("root/a"), typename TypeParam::Name());
    TypeParam::Copy(typename TypeParam::Name(), typename TypeParam::Name());
    EXPECT_EQ(TestFixture::Sample(), this->Tree("root"));
}

TYPED_TEST(PathServices, CopyOntoItselfDestroysTheSource) {
    this->MakeSample("root");
    TypeParam::Copy(this->Named("root"), this->Folder("root"));
    EXPECT_EQ(eNames{"root/"}, this->Tree(""));
}

TYPED_TEST(PathServices, CopyIntoAnOwnSubfolderDestroysWhatThatHeldAndEnds) {
    this->MakeSample("root");
    TypeParam::Copy(this->Named("root"), this->Named("root/a/b"));
    const eNames expected = {"a/",           "a/b/",          "a/b/a/", "a/b/empty/",   "a/b/empty/inner/",
                             "a/b/file.txt", "a/b/two words", "empty/", "empty/inner/", "file.txt",
                             "two words"};
    EXPECT_EQ(expected, this->Tree("root"));
}

TYPED_TEST(PathServices, CopyIntoANewSubfolderOfItsOwnEnds) {
    this->MakeFile("root/file", "1");
    TypeParam::Copy(this->Named("root"), this->Named("root/new/deep"));
    EXPECT_EQ((eNames{"file", "new/", "new/deep/", "new/deep/file", "new/deep/new/"}), this->Tree("root"));
}

TYPED_TEST(PathServices, CopyOverAFolderThatContainsTheSourceDestroysBoth) {
    this->MakeSample("root");
    TypeParam::Copy(this->Named("root/a"), this->Named("root"));
    EXPECT_EQ(eNames{"root/"}, this->Tree(""));
}

TYPED_TEST(PathServices, PurgeRemovesFoldersWithoutFilesAndKeepsTheRest) {
    this->MakeFolder("root/a/b");
    this->MakeFile("root/c/file");
    this->MakeFolder("root/c/empty/x/y");
    this->MakeFile("root/top");
    TypeParam::PurgeEmpty(this->Folder("root"));
    EXPECT_EQ((eNames{"c/", "c/file", "top"}), this->Tree("root"));
}

TYPED_TEST(PathServices, NamesThatBeginWithDotsAreNamesLikeAnyOther) {
    std::vector<std::string> names = {".a", "..a", ".a.", "..."};
    if (kHasDrives)
        names = {".a", "..a", "...a"};
    eNames expected;
    for (const std::string& name : names) {
        this->MakeFile("root/" + name + "/" + name);
        this->MakeFolder("empty/" + name + "/" + name);
        expected.insert(expected.end(), {name + "/", name + "/" + name});
    }
    std::sort(expected.begin(), expected.end());
    TypeParam::Copy(this->Named("root"), this->Named("copy"));
    EXPECT_EQ(expected, this->Tree("copy"));
    TypeParam::Delete(this->Named("copy"), true);
    EXPECT_FALSE(this->Exists("copy"));
    TypeParam::PurgeEmpty(this->Folder("root"));
    EXPECT_EQ(expected, this->Tree("root"));
    TypeParam::PurgeEmpty(this->Folder("empty"));
    EXPECT_EQ(eNames(), this->Tree("empty"));
}

TYPED_TEST(PathServices, PurgeNeverRemovesTheFolderItself) {
    this->MakeFolder("root/a");
    TypeParam::PurgeEmpty(this->Folder("root"));
    EXPECT_EQ(eNames{"root/"}, this->Tree(""));
    TypeParam::PurgeEmpty(this->Folder("missing"));
    EXPECT_EQ(eNames{"root/"}, this->Tree(""));
}

TYPED_TEST(PathServices, PurgeTakesTheNameAsItIsGiven) {
    this->MakeFolder("root/inside");
    this->MakeFolder("rootroot/inside");
    TypeParam::PurgeEmpty(this->Named("root"));
    // The pattern "root*.*" found the entry "root", which was appended to "root" again.
    EXPECT_EQ((eNames{"root/", "root/inside/"}), this->Tree(""));
}

TYPED_TEST(PathServices, WorkingDirIsTheProgramsFolder) {
    const typename TypeParam::Text folder = TypeParam::WorkingDir();
    ASSERT_FALSE(folder.empty());
    EXPECT_EQ(typename TypeParam::Char('/'), folder.back());
    EXPECT_EQ(folder.npos, folder.find(typename TypeParam::Char('\\')));
    const auto program = TypeParam::Of(kHasDrives ? "service_tests.exe" : "service_tests");
    EXPECT_TRUE(TypeParam::MayAccess(typename TypeParam::Name(folder + program), 0));
}

TYPED_TEST(PathServices, WorkingPathsAreTheWorkingDirInEveryRole) {
    using WorkingPaths = typename TypeParam::WorkingPaths;
    for (const char* application : {"", "an application"}) {
        const WorkingPaths paths(TypeParam::Of(application));
        for (const auto role : {&WorkingPaths::AppDataAllUsers, &WorkingPaths::AppDataUser, &WorkingPaths::MyDocuments,
                                &WorkingPaths::Working})
            EXPECT_EQ(TypeParam::WorkingDir(), (paths.*role)());
    }
}

TYPED_TEST(PathServices, WorkingPathsMakeNoFolder) {
    const std::string application = this->temp.Path().filename().string() + " application";
    const typename TypeParam::WorkingPaths paths(TypeParam::Of(application));
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::path(paths.Working()) / application));
    EXPECT_FALSE(std::filesystem::exists(application));
}

TYPED_TEST(PathServices, WorkingPathsAreCopiedByValue) {
    using WorkingPaths = typename TypeParam::WorkingPaths;
    const WorkingPaths first(TypeParam::Of("a"));
    WorkingPaths copy(first);
    EXPECT_NE(&first.Working(), &copy.Working());
    copy = first;
    EXPECT_EQ(first.Working(), copy.Working());
}

TYPED_TEST(PathServices, WorkingPathsComeFromATextAndOutliveWhatTheyWereMadeFrom) {
    using WorkingPaths = typename TypeParam::WorkingPaths;
    const auto workingOf = [](const WorkingPaths& paths) { return paths.Working(); };
    EXPECT_EQ(TypeParam::WorkingDir(), workingOf(TypeParam::Of("an application")));
    auto first = std::make_unique<WorkingPaths>(TypeParam::Of("a"));
    const WorkingPaths copy = *first, moved = std::move(*first);
    EXPECT_EQ(TypeParam::WorkingDir(), first->MyDocuments());
    first.reset();
    EXPECT_EQ(TypeParam::WorkingDir(), copy.AppDataUser());
    EXPECT_EQ(TypeParam::WorkingDir(), moved.AppDataAllUsers());
}

TYPED_TEST(PathServices, WorkingPathsMayBeDeletedThroughTheirBase) {
    using WorkingPaths = typename TypeParam::WorkingPaths;
    struct eOwnPaths : WorkingPaths {
        eOwnPaths(bool* flag) : WorkingPaths(TypeParam::Of("a")), gone(flag) {}
        ~eOwnPaths() override { *gone = true; }
        bool* gone;
    };
    bool gone = false;
    std::unique_ptr<WorkingPaths>(new eOwnPaths(&gone)).reset();
    EXPECT_TRUE(gone);
}

} // namespace
