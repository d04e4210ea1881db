// SPDX-License-Identifier: BSL-1.0
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include <qzl_io/sdl.h>
#include <qzl_io/streams.h>

#include "real_tree.h"

// The system would take such a name up to the NUL, and another file than the one that was meant.

namespace {

template <class Width>
class NulInName : public eRealTree<Width> {};
TYPED_TEST_SUITE(NulInName, eWidths, eWidthNames);

} // namespace

TYPED_TEST(NulInName, NamesNothing) {
    using eGiven = typename TypeParam::Name;
    using eChars = typename TypeParam::Text;
    this->MakeFile("folder/file");
    this->MakeFolder("folder/empty");
    const auto cut = [&](const char* shown) {
        return eGiven(this->Named(shown).str() + eChars(1, 0) + TypeParam::Of("rest"));
    };
    EXPECT_FALSE(TypeParam::MayAccess(cut("folder/file"), 0));
    EXPECT_FALSE(TypeParam::CopyFile(cut("folder/file"), this->Named("copy")));
    TypeParam::CopyFile(this->Named("folder/file"), cut("copy"));
    bool flag = false;
    EXPECT_FALSE(TypeParam::CopyFileEx(cut("folder/file"), this->Named("copy"), &flag));
    EXPECT_FALSE(TypeParam::Rename(cut("folder/file"), this->Named("copy")));
    EXPECT_FALSE(TypeParam::Rename(this->Named("folder/file"), cut("copy")));
    EXPECT_FALSE(TypeParam::Replace(this->Named("folder/file"), cut("copy")));
    EXPECT_FALSE(TypeParam::DeleteFile(cut("folder/file")));
    EXPECT_EQ(0u, TypeParam::Size(cut("folder/file")));
    EXPECT_FALSE(TypeParam::Create(cut("new")));
    TypeParam::Delete(cut("folder"), true);
    TypeParam::Copy(cut("folder"), this->Named("copy"));
    TypeParam::Copy(this->Named("folder"), cut("copy"));
    TypeParam::PurgeEmpty(eGiven(this->Folder("folder").str() + eChars(1, 0) + TypeParam::Of("/")));
    EXPECT_FALSE(typename TypeParam::Search(cut("folder/"), TypeParam::Of("/*.*")).Valid());
    EXPECT_FALSE(
        typename TypeParam::Search(this->Folder("folder"), eGiven(TypeParam::Of("*.*") + eChars(1, 0))).Valid());
    {
        const std::unique_ptr<IO::eStream> reader(IO::GetStream(cut("folder/file"), IO::StreamMode::Read));
        const std::unique_ptr<IO::eStream> writer(
            IO::GetStream(cut("folder/file"), IO::StreamMode::Write | IO::StreamMode::Create));
        EXPECT_FALSE(reader->IsOpen() || writer->IsOpen());
        EXPECT_TRUE(writer->Failure());
        IO::eSaveFile save(cut("folder/file"));
        EXPECT_FALSE(save.IsOpen());
        EXPECT_TRUE(save.Failure());
        eSDLWriter document(cut("folder/file"));
        EXPECT_TRUE(document.Failure());
    }
    EXPECT_EQ("content", this->Content("folder/file"));
    EXPECT_EQ((eNames{"folder/", "folder/empty/", "folder/file"}), this->Tree(""));
}
