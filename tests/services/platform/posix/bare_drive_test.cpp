// SPDX-License-Identifier: BSL-1.0
#include "support/current_folder.h"

#include "../../real_tree.h"

namespace {

template <class Width>
class BareDrive : public eRealTree<Width> {
    const eCurrentFolder current{this->temp.Path()};
};
TYPED_TEST_SUITE(BareDrive, eWidths, eWidthNames);

TYPED_TEST(BareDrive, NamesNothingHereEither) {
    this->MakeFile("q:/file", "content");
    this->MakeFile("other/file", "other");
    this->MakeFolder("r:");
    TypeParam::Delete(TypeParam::Of("q:"), true);
    TypeParam::Delete(TypeParam::Of("r:"), false);
    TypeParam::Copy(TypeParam::Of("other"), TypeParam::Of("q:"));
    TypeParam::Copy(TypeParam::Of("q:"), TypeParam::Of("other"));
    EXPECT_EQ((eNames{"other/", "other/file", "q:/", "q:/file", "r:/"}), this->Tree(""));
    EXPECT_EQ("content", this->Content("q:/file"));
    EXPECT_EQ("other", this->Content("other/file"));
}

TYPED_TEST(BareDrive, WithASlashIsAFolderHere) {
    this->MakeFile("q:/file");
    TypeParam::Delete(TypeParam::Of("q:/"), true);
    EXPECT_EQ(eNames(), this->Tree(""));
}

} // namespace
