// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <system_error>
#include <thread>

#include <gtest/gtest.h>

#include <qzl_io/streams.h>

#include "support/wine.h"

#include "real_tree.h"

namespace {

namespace File = IO::System::File;

template <class Width>
class FileServices : public eRealTree<Width> {};
TYPED_TEST_SUITE(FileServices, eWidths, eWidthNames);

TEST(FileAccessModes, AreThoseOfTheRunTime) {
    EXPECT_EQ(0, File::Exist);
    EXPECT_EQ(2, File::Write);
    EXPECT_EQ(4, File::Read);
    EXPECT_EQ(6, File::ReadWrite);
    namespace FileW = IO::System::FileW;
    EXPECT_EQ(0, FileW::Exist);
    EXPECT_EQ(2, FileW::Write);
    EXPECT_EQ(4, FileW::Read);
    EXPECT_EQ(6, FileW::ReadWrite);
    static_assert(sizeof(File::eAccessMode) == 4 && sizeof(FileW::eAccessMode) == 4);
}

TYPED_TEST(FileServices, AccessIsTrueForAFileInEveryMode) {
    this->MakeFile("file");
    for (const int mode : {0, 2, 4, 6})
        EXPECT_TRUE(TypeParam::MayAccess(this->Named("file"), mode)) << mode;
}

TYPED_TEST(FileServices, AccessSeesFoldersToo) {
    this->MakeFolder("folder");
    EXPECT_TRUE(TypeParam::MayAccess(this->Named("folder"), File::Exist));
    EXPECT_TRUE(TypeParam::MayAccess(this->Named("folder"), File::Read));
}

TYPED_TEST(FileServices, AccessIsFalseForWhatIsMissing) {
    for (const int mode : {0, 2, 4, 6})
        EXPECT_FALSE(TypeParam::MayAccess(this->Named("missing/file"), mode)) << mode;
    EXPECT_FALSE(TypeParam::MayAccess(typename TypeParam::Name(), File::Exist));
}

TYPED_TEST(FileServices, CopyBringsEveryByte) {
    for (const std::size_t size : {0u, 1u, 4095u, 4096u, 100'000u, 9'000'001u}) {
        std::string content(size, '\0');
        for (std::size_t at = 0; at < size; ++at)
            content[at] = static_cast<char>(at * 7 + at / 256);
        this->MakeFile("from", content);
        EXPECT_TRUE(TypeParam::CopyFile(this->Named("from"), this->Named("to")));
        EXPECT_EQ(content, this->Content("to")) << size;
    }
}

TYPED_TEST(FileServices, CopyOfAMissingSourceIsFalseAndCreatesNothing) {
    EXPECT_FALSE(TypeParam::CopyFile(this->Named("missing"), this->Named("to")));
    EXPECT_FALSE(this->Exists("to"));
    this->MakeFile("old", "old");
    EXPECT_FALSE(TypeParam::CopyFile(this->Named("missing"), this->Named("old")));
    EXPECT_EQ("old", this->Content("old"));
}

TYPED_TEST(FileServices, CopyReplacesALongerTarget) {
    this->MakeFile("from", "new");
    this->MakeFile("to", "something that was longer");
    EXPECT_TRUE(TypeParam::CopyFile(this->Named("from"), this->Named("to")));
    EXPECT_EQ("new", this->Content("to"));
}

TYPED_TEST(FileServices, CopyIntoAMissingFolderIsTrueAllTheSame) {
    this->MakeFile("from");
    EXPECT_TRUE(TypeParam::CopyFile(this->Named("from"), this->Named("missing/to")));
    EXPECT_FALSE(this->Exists("missing"));
}

TYPED_TEST(FileServices, CopyOfAFolderIsTrueAndMakesNothing) {
    this->MakeFolder("folder");
    EXPECT_TRUE(TypeParam::CopyFile(this->Named("folder"), this->Named("to")));
    EXPECT_FALSE(this->Exists("to"));
}

TYPED_TEST(FileServices, CopyOverAFolderLeavesItAlone) {
    this->MakeFile("from");
    this->MakeFile("folder/file");
    EXPECT_TRUE(TypeParam::CopyFile(this->Named("from"), this->Named("folder")));
    EXPECT_EQ(eNames{"file"}, this->Tree("folder"));
}

TYPED_TEST(FileServices, CopyOntoItselfLeavesTheFileWhole) {
    this->MakeFile("file", "precious");
    EXPECT_TRUE(TypeParam::CopyFile(this->Named("file"), this->Named("file")));
    EXPECT_EQ("precious", this->Content("file"));
    bool cancel = false;
    EXPECT_TRUE(TypeParam::CopyFileEx(this->Named("file"), this->Named("file"), &cancel));
    EXPECT_EQ("precious", this->Content("file"));
}

TYPED_TEST(FileServices, CopyKeepsTheLastWriteTime) {
    const auto longAgo = std::chrono::file_clock::now() - std::chrono::hours(1000);
    for (const std::size_t size : {0u, 5u, 300'000u}) {
        this->MakeFile("folder/from", std::string(size, 'x'));
        std::filesystem::last_write_time(this->At("folder/from"), longAgo);
        const auto time = std::filesystem::last_write_time(this->At("folder/from"));
        this->MakeFile("existing", "old");
        std::filesystem::remove(this->At("new"));
        TypeParam::CopyFile(this->Named("folder/from"), this->Named("new"));
        TypeParam::CopyFile(this->Named("folder/from"), this->Named("existing"));
        bool cancel = false;
        TypeParam::CopyFileEx(this->Named("folder/from"), this->Named("stoppable"), &cancel);
        TypeParam::Copy(this->Named("folder"), this->Named("tree"));
        for (const char* copy : {"new", "existing", "stoppable", "tree/from"})
            EXPECT_EQ(time, std::filesystem::last_write_time(this->At(copy))) << copy << ", " << size;
    }
}

TYPED_TEST(FileServices, CopyExBringsEveryByteWhenNobodyStopsIt) {
    std::string content(9'000'001, 'x');
    content.back() = 'y';
    this->MakeFile("from", content);
    this->MakeFile("to", "old");
    bool cancel = false;
    EXPECT_TRUE(TypeParam::CopyFileEx(this->Named("from"), this->Named("to"), &cancel));
    EXPECT_EQ(content, this->Content("to"));
    EXPECT_FALSE(cancel);
}

TYPED_TEST(FileServices, CopyExOfAMissingSourceIsFalse) {
    bool cancel = false;
    EXPECT_FALSE(TypeParam::CopyFileEx(this->Named("missing"), this->Named("to"), &cancel));
    EXPECT_FALSE(this->Exists("to"));
    EXPECT_TRUE((this->MakeFile("from"), TypeParam::CopyFileEx(this->Named("from"), this->Named("no/to"), &cancel)));
}

TYPED_TEST(FileServices, CopyExStoppedBeforehandCopiesNothingAndIsTrue) {
    if (IsUnderWine())
        GTEST_SKIP() << "Wine never calls the progress routine of CopyFileEx";
    this->MakeFile("from", std::string(5'000'000, 'x'));
    for (const int byte : {1, 2, 255}) {
        auto flag = static_cast<unsigned char>(byte);
        EXPECT_TRUE(TypeParam::CopyFileEx(this->Named("from"), this->Named("to"), reinterpret_cast<bool*>(&flag)));
        EXPECT_FALSE(this->Exists("to")) << byte;
    }
}

TYPED_TEST(FileServices, CopyExStoppedBeforehandLeavesNoOldTargetEither) {
    if (IsUnderWine())
        GTEST_SKIP() << "Wine never calls the progress routine of CopyFileEx";
    for (const std::size_t size : {1u, 5'000'000u}) {
        this->MakeFile("from", std::string(size, 'x'));
        this->MakeFile("to", "old");
        bool cancel = true;
        EXPECT_TRUE(TypeParam::CopyFileEx(this->Named("from"), this->Named("to"), &cancel));
        EXPECT_EQ(eNames{"from"}, this->Tree("")) << size;
    }
}

TYPED_TEST(FileServices, CopyExStoppedBeforehandTouchesNothingThatItCannotCopyTo) {
    this->MakeFile("file", "precious");
    this->MakeFile("folder/file");
    bool cancel = true;
    EXPECT_TRUE(TypeParam::CopyFileEx(this->Named("file"), this->Named("file"), &cancel));
    EXPECT_TRUE(TypeParam::CopyFileEx(this->Named("file"), this->Named("folder"), &cancel));
    EXPECT_TRUE(TypeParam::CopyFileEx(this->Named("folder"), this->Named("file"), &cancel));
    EXPECT_FALSE(TypeParam::CopyFileEx(this->Named("missing"), this->Named("file"), &cancel));
    EXPECT_EQ((eNames{"file", "folder/", "folder/file"}), this->Tree(""));
    EXPECT_EQ("precious", this->Content("file"));
}

TYPED_TEST(FileServices, CopyExStoppedMidwayLeavesNoPartialTarget) {
    if (IsUnderWine())
        GTEST_SKIP() << "Wine never calls the progress routine of CopyFileEx";
    constexpr std::uintmax_t kSize = std::uintmax_t{512} << 20;
    this->MakeFile("from", "");
    std::filesystem::resize_file(this->At("from"), kSize);
    alignas(std::atomic_ref<bool>::required_alignment) bool cancel = false;
    std::atomic<bool> done = false;
    std::thread stopper([&] {
        while (!done && !this->Exists("to"))
            std::this_thread::yield();
        std::atomic_ref<bool>{cancel}.store(true);
    });
    EXPECT_TRUE(TypeParam::CopyFileEx(this->Named("from"), this->Named("to"), &cancel));
    done = true;
    stopper.join();
    EXPECT_TRUE(!this->Exists("to") || std::filesystem::file_size(this->At("to")) == kSize);
}

TYPED_TEST(FileServices, DeleteRemovesAFileAndNothingElse) {
    this->MakeFile("file");
    this->MakeFolder("folder");
    EXPECT_TRUE(TypeParam::DeleteFile(this->Named("file")));
    EXPECT_FALSE(this->Exists("file"));
    EXPECT_FALSE(TypeParam::DeleteFile(this->Named("file")));
    EXPECT_FALSE(TypeParam::DeleteFile(this->Named("folder")));
    EXPECT_TRUE(this->Exists("folder"));
    EXPECT_FALSE(TypeParam::DeleteFile(typename TypeParam::Name()));
}

TYPED_TEST(FileServices, SizeIsTheLengthOrZero) {
    this->MakeFile("empty", "");
    this->MakeFile("five", "12345");
    this->MakeFolder("folder");
    EXPECT_EQ(0u, TypeParam::Size(this->Named("empty")));
    EXPECT_EQ(5u, TypeParam::Size(this->Named("five")));
    EXPECT_EQ(0u, TypeParam::Size(this->Named("missing")));
    EXPECT_EQ(0u, TypeParam::Size(this->Named("folder")));
    EXPECT_EQ(0u, TypeParam::Size(typename TypeParam::Name()));
}

TYPED_TEST(FileServices, SizeCountsBeyondFourGigabytes) {
    constexpr unsigned long long kSize = (5ull << 30) + 1;
    this->MakeFile("large", "");
    std::error_code error;
    std::filesystem::resize_file(this->At("large"), kSize, error);
    if (error)
        GTEST_SKIP() << "the disk takes no file of 5 GiB: " << error.message();
    EXPECT_EQ(kSize, TypeParam::Size(this->Named("large")));
}

TYPED_TEST(FileServices, NamesMayHoldBlanksDotsAndTheLongestComponent) {
    for (const std::string& name : {std::string("two words.txt"), std::string("a.b.c..d"), std::string(".hidden"),
                                    std::string(200, 'n') + ".x", std::string("[x] {y} %1%")}) {
        this->MakeFile(name, name);
        EXPECT_TRUE(TypeParam::MayAccess(this->Named(name), File::Exist)) << name;
        EXPECT_EQ(name.size(), TypeParam::Size(this->Named(name))) << name;
        EXPECT_TRUE(TypeParam::CopyFile(this->Named(name), this->Named("copy"))) << name;
        EXPECT_EQ(name, this->Content("copy"));
        EXPECT_TRUE(TypeParam::DeleteFile(this->Named(name))) << name;
        EXPECT_FALSE(this->Exists(name)) << name;
    }
}

TYPED_TEST(FileServices, NamesWithBackSlashesAreTheSameFiles) {
    const auto named = [this](std::string_view relative) {
        std::string text = "\\" + std::string(relative);
        std::replace(text.begin(), text.end(), '/', '\\');
        return eRawName<TypeParam>(this->Named("").GetUnpath().str() + TypeParam::Of(text));
    };
    this->MakeFile("sub/file", "12");
    EXPECT_EQ(2u, TypeParam::Size(named("sub/file")));
    EXPECT_TRUE(TypeParam::MayAccess(named("sub/file"), File::ReadWrite));
    EXPECT_TRUE(TypeParam::CopyFile(named("sub/file"), named("sub/second")));
    bool cancel = false;
    EXPECT_TRUE(TypeParam::CopyFileEx(named("sub/second"), named("sub/third"), &cancel));
    EXPECT_TRUE(TypeParam::DeleteFile(named("sub/file")));
    EXPECT_EQ((eNames{"second", "third"}), this->Tree("sub"));
    EXPECT_EQ("12", this->Content("sub/third"));
    EXPECT_EQ(eNames{"sub/"}, eNames{this->Tree("").front()});
}

class RenameFile : public eRealTree<eNarrow> {};

TEST_F(RenameFile, MovesAFileOrAFolder) {
    MakeFile("from", "content");
    MakeFolder("folder");
    EXPECT_TRUE(File::Rename(Named("from"), Named("folder/to")));
    EXPECT_FALSE(Exists("from"));
    EXPECT_EQ("content", Content("folder/to"));
    EXPECT_TRUE(File::Rename(Named("folder"), Named("other")));
    EXPECT_EQ(eNames{"to"}, Tree("other"));
}

TEST_F(RenameFile, TakesBackSlashesOfAValueFromAStreamForSlashes) {
    MakeFile("sub/from", "content");
    const std::string folder = Folder("").str();
    IO::eMemoryStream stream;
    stream << folder + "sub\\from" << folder + "sub\\to";
    stream.Seek(0, IO::eSeekDir::Begin);
    eFileName from, to;
    stream >> from >> to;
    ASSERT_NE(std::string::npos, from.str().find('\\'));
    EXPECT_TRUE(File::Rename(from, to));
    EXPECT_EQ(eNames{"to"}, Tree("sub"));
}

TEST_F(RenameFile, FailsForAMissingSourceOrTargetFolder) {
    MakeFile("from");
    EXPECT_FALSE(File::Rename(Named("missing"), Named("to")));
    EXPECT_FALSE(File::Rename(Named("from"), Named("missing/to")));
    EXPECT_TRUE(Exists("from"));
}

TEST_F(RenameFile, DoesWithAnExistingTargetWhatTheRunTimeDoes) {
    struct eRow {
        std::string from;
        std::string to;
        bool replacedWithoutDrives;
    };
    const eRow rows[] = {{"file", "other", true},      {"file", "empty", false},     {"file", "full", false},
                         {"folder", "empty", true},    {"folder", "full", false},    {"folder", "other", false},
                         {"full", "full/file", false}, {"full", "full/below", false}};
    for (const eRow& row : rows) {
        const std::string root = row.from + " to " + row.to + "/";
        MakeFile(root + "file", "new");
        MakeFile(root + "other", "old");
        MakeFile(root + "folder/inside");
        MakeFolder(root + "empty");
        MakeFile(root + "full/file");
        const eNames before = Tree(root);
        const bool replaced = File::Rename(Named(root + row.from), Named(root + row.to));
        EXPECT_EQ(row.replacedWithoutDrives && !kHasDrives, replaced) << root;
        EXPECT_EQ(!replaced, Exists(root + row.from)) << root;
        EXPECT_EQ(!replaced, Tree(root) == before) << root;
        EXPECT_EQ(replaced && row.from == "file" ? "new" : "old", Content(root + "other")) << root;
        EXPECT_EQ(replaced && row.from == "folder", Exists(root + "empty/inside")) << root;
    }
}

TEST_F(RenameFile, ChangesTheLetterCaseOfAName) {
    if (IsUnderWine())
        GTEST_SKIP() << "Wine leaves the letter case as it is";
    MakeFile("name", "content");
    EXPECT_TRUE(File::Rename(Named("name"), Named("NAME")));
    EXPECT_EQ(eNames{"NAME"}, Tree(""));
    EXPECT_EQ("content", Content("NAME"));
}

class RenameToAnotherVolume : public RenameFile {
protected:
    // A folder on a volume other than that of the temporary files; empty if there is none.
    static std::filesystem::path OtherVolume() {
        const std::filesystem::path folder = kHasDrives ? "z:/dev/shm" : "/dev/shm";
        std::error_code error;
        const auto other = std::filesystem::space(folder, error);
        const auto own = std::filesystem::space(std::filesystem::temp_directory_path());
        return error || other.capacity == own.capacity ? std::filesystem::path() : folder;
    }
};

TEST_F(RenameToAnotherVolume, MovesFilesWhereThereAreDrivesAndNeverFolders) {
    if (OtherVolume().empty())
        GTEST_SKIP() << "no second volume is known here";
    const auto away = OtherVolume() / temp.Path().filename();
    MakeFile("file", "content");
    MakeFile("folder/file");
    const bool fileMoved = File::Rename(Named("file"), away.generic_string());
    EXPECT_EQ(kHasDrives, fileMoved);
    EXPECT_EQ(!kHasDrives, Exists("file"));
    EXPECT_EQ(kHasDrives, std::filesystem::remove(away));
    EXPECT_FALSE(File::Rename(Named("folder"), away.generic_string()));
    EXPECT_TRUE(Exists("folder/file"));
    EXPECT_FALSE(std::filesystem::exists(away));
}

class WideNames : public eRealTree<eWide> {};

TEST_F(WideNames, MayHoldLettersOfEveryScript) {
    struct eRow {
        std::wstring name;
        std::u8string onDisk;
    };
    for (const eRow& row : {eRow{L"\u00e4\u00f6\u00fc \u00df", u8"\u00e4\u00f6\u00fc \u00df"},
                            eRow{L"\u65e5\u672c\u8a9e.txt", u8"\u65e5\u672c\u8a9e.txt"},
                            eRow{L"\u0444\u0430\u0439\u043b", u8"\u0444\u0430\u0439\u043b"}}) {
        const eFileNameW file(temp.NameW() + row.name);
        MakeFile("from", "1234");
        EXPECT_TRUE(IO::System::FileW::Copy(Named("from"), file));
        EXPECT_TRUE(std::filesystem::exists(temp.Path() / row.onDisk));
        EXPECT_EQ(4u, IO::System::FileW::Size(file));
        IO::eSearchW search(temp.NameW(), row.name);
        EXPECT_TRUE(search.Valid());
        EXPECT_EQ(row.name, search.Name());
        search.End();
        EXPECT_TRUE(IO::System::FileW::Delete(file));
        EXPECT_FALSE(std::filesystem::exists(temp.Path() / row.onDisk));
    }
}

} // namespace
