// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <initializer_list>
#include <ranges>
#include <set>
#include <string>
#include <system_error>
#include <utility>

#include <gtest/gtest.h>

#include "real_tree.h"

namespace {

template <class Width>
class TreeSearch : public eRealTree<Width> {
protected:
    using Search = std::conditional_t<sizeof(typename Width::Char) == 1, IO::eTreeSearch, IO::eTreeSearchW>;
    using Masks = std::initializer_list<typename Width::Name>;

    void MakeSample() const {
        this->MakeFile("root/one.txt", "1");
        this->MakeFile("root/a/two.TXT", "22");
        this->MakeFile("root/a/b/three.c", "333");
        this->MakeFile("root/a/b/four.h", "4444");
        this->MakeFolder("root/docs.txt/inner");
    }

    Search Of(Masks masks) const { return Search(this->Named("root"), masks); }

    // The paths that a search lists, sorted; folders end in "/".
    static eNames Listed(Search search) {
        eNames names;
        for (; search.Valid(); search.Next())
            names.push_back(std::filesystem::path(search.Path()).generic_string() + (search.IsSubfolder() ? "/" : ""));
        std::sort(names.begin(), names.end());
        return names;
    }
};
TYPED_TEST_SUITE(TreeSearch, eWidths, eWidthNames);

static_assert(std::ranges::input_range<IO::eTreeSearch> && std::ranges::input_range<IO::eTreeSearchW>);
static_assert(!std::is_copy_constructible_v<IO::eTreeSearch> && std::is_nothrow_move_assignable_v<IO::eTreeSearch>);

} // namespace

TYPED_TEST(TreeSearch, ListsWhatMatchesOneOfTheMasksAtAnyDepth) {
    this->MakeSample();
    using eSearcher = typename TestFixture::Search;
    const auto of = [](const char* mask) { return typename TypeParam::Name(TypeParam::Of(mask)); };
    const eNames all = {"a/",        "a/b/",      "a/b/four.h",      "a/b/three.c",
                        "a/two.TXT", "docs.txt/", "docs.txt/inner/", "one.txt"};
    EXPECT_EQ(all, this->Listed(this->Of({of("*.*")})));
    EXPECT_EQ(all, this->Listed(this->Of({of("*.c"), of("*")})));
    EXPECT_EQ((eNames{"a/b/four.h", "a/b/three.c"}), this->Listed(this->Of({of("*.h"), of("*.c")})));
    EXPECT_EQ((eNames{"a/two.TXT", "docs.txt/", "one.txt"}), this->Listed(this->Of({of("*.txt")})));
    EXPECT_EQ(eNames{"a/b/four.h"}, this->Listed(this->Of({of("four.h")})));
    EXPECT_EQ(eNames(), this->Listed(this->Of({of("b/four.h")})));
    EXPECT_EQ(eNames(), this->Listed(this->Of({of("")})));
    EXPECT_EQ(eNames(), this->Listed(this->Of({})));
    EXPECT_EQ(eNames{"a/b/four.h"}, this->Listed(eSearcher(this->Folder("root"), of("*.h"))));
    EXPECT_EQ((eNames{"a/b/four.h", "a/b/three.c"}),
              this->Listed(eSearcher(this->Folder("root"), {of("*.h"), of("*.c")})));
}

TYPED_TEST(TreeSearch, ListsAFolderBeforeWhatIsInIt) {
    this->MakeSample();
    std::set<std::string> before = {""};
    for (const auto& entry : this->Of({TypeParam::Of("*")})) {
        const auto path = std::filesystem::path(entry.Path());
        EXPECT_TRUE(before.contains(path.parent_path().generic_string())) << path;
        before.insert(path.generic_string());
    }
    EXPECT_EQ(9u, before.size());
}

TYPED_TEST(TreeSearch, TellsNamesSizesTimesAndDepths) {
    this->MakeSample();
    std::size_t found = 0;
    for (const auto& entry : this->Of({TypeParam::Of("*.c")})) {
        ++found;
        EXPECT_EQ(TypeParam::Of("three.c"), entry.Name());
        EXPECT_EQ(TypeParam::Of("a/b/three.c"), entry.Path());
        EXPECT_EQ(this->Named("root/a/b/three.c"), entry.FullName());
        EXPECT_EQ(2u, entry.Depth());
        EXPECT_EQ(3u, entry.Size());
        EXPECT_TRUE(entry.IsFile() && !entry.IsSubfolder() && !entry.IsLink());
        const typename TypeParam::Search same(this->Folder("root/a/b"), TypeParam::Of("three.c"));
        EXPECT_EQ(same.ModifyTime().Ticks(), entry.ModifyTime().Ticks());
    }
    EXPECT_EQ(1u, found);
}

TYPED_TEST(TreeSearch, SkipKeepsItOutOfAFolder) {
    this->MakeSample();
    eNames names;
    for (auto& entry : this->Of({TypeParam::Of("*")})) {
        names.push_back(std::filesystem::path(entry.Path()).generic_string());
        if (entry.Name() == TypeParam::Of("a"))
            entry.Skip();
    }
    std::sort(names.begin(), names.end());
    EXPECT_EQ((eNames{"a", "docs.txt", "docs.txt/inner", "one.txt"}), names);
}

TYPED_TEST(TreeSearch, OfAMissingFolderHasNoEntriesAndSaysSo) {
    using eSearcher = typename TestFixture::Search;
    for (const auto& name : {this->Named("missing"), typename TypeParam::Name()}) {
        eSearcher search(name, TypeParam::Of("*"));
        EXPECT_FALSE(search.Valid() || search.IsFile() || search.IsSubfolder() || search.IsLink());
        EXPECT_EQ(1u, search.Unread());
        EXPECT_EQ(TypeParam::Of(""), search.Name());
        EXPECT_TRUE(search.Path().empty() && search.FullName().empty());
        EXPECT_EQ(0u, search.Size() + search.Depth() + search.ModifyTime().Ticks());
        search.Next();
        EXPECT_FALSE(search.Valid());
    }
}

TYPED_TEST(TreeSearch, GoesOnAfterAMove) {
    using eSearcher = typename TestFixture::Search;
    this->MakeSample();
    eSearcher first = this->Of({TypeParam::Of("*.txt")});
    first.Next();
    eSearcher second = std::move(first);
    EXPECT_FALSE(first.Valid()); // NOLINT(bugprone-use-after-move)
    first.Next();
    first.Skip();
    EXPECT_EQ(0u, first.Unread());
    EXPECT_EQ(2u, this->Listed(std::move(second)).size());
}

TYPED_TEST(TreeSearch, ListsLinksAndEntersNone) {
    this->MakeSample();
    std::error_code refused;
    std::filesystem::create_directory_symlink("..", this->At("root/a/loop"), refused);
    if (refused)
        GTEST_SKIP() << "no links here";
    std::filesystem::create_symlink("one.txt", this->At("root/alias"));
    std::filesystem::create_symlink("missing", this->At("root/lost"));
    EXPECT_EQ((eNames{"a/", "a/b/", "a/b/four.h", "a/b/three.c", "a/loop/", "a/two.TXT", "alias", "docs.txt/",
                      "docs.txt/inner/", "lost", "one.txt"}),
              this->Listed(this->Of({TypeParam::Of("*")})));
    for (const auto& entry : this->Of({TypeParam::Of("l*")})) {
        EXPECT_TRUE(entry.IsLink());
        EXPECT_EQ(entry.Name() == TypeParam::Of("loop"), entry.IsSubfolder());
        EXPECT_NE(entry.IsSubfolder(), entry.IsFile());
    }
}

TYPED_TEST(TreeSearch, IsSteppedByEitherIncrementAndMoved) {
    this->MakeSample();
    const auto all = [] { return typename TypeParam::Name(TypeParam::Of("*")); };
    typename TestFixture::Search search = this->Of({all()});
    std::size_t entries = 0;
    for (auto at = search.begin(); !(at == search.end()); at++)
        ++entries;
    EXPECT_EQ(8u, entries);
    search = this->Of({all()});
    EXPECT_TRUE(search.Valid());
}
