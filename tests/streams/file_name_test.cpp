// SPDX-License-Identifier: BSL-1.0
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <type_traits>
#include <utility>

#include <qzl_io/file_name.h>
#include <qzl_io/streams.h>

#include "support/self_move.h"

namespace {

template <class N>
using eTextOf = typename N::eText;

// The ASCII text in the class's character type.
template <class N>
eTextOf<N> T(const std::string& text) {
    return {text.begin(), text.end()};
}

} // namespace

static_assert(!std::has_virtual_destructor_v<eFileName> && !std::has_virtual_destructor_v<eFileNameW>);
static_assert(sizeof(eFileName) == sizeof(void*) + sizeof(std::string));
static_assert(std::is_nothrow_move_constructible_v<eFileName> && std::is_nothrow_move_assignable_v<eFileNameW>);

template <class N>
class FileNames : public testing::Test {};
using eBothNames = testing::Types<eFileName, eFileNameW>;
TYPED_TEST_SUITE(FileNames, eBothNames);

TYPED_TEST(FileNames, ItemsHaveTheirNumbers) {
    EXPECT_EQ(Folder, 0);
    EXPECT_EQ(Title, 1);
    EXPECT_EQ(Extension, 2);
    EXPECT_EQ(ExtensionOrWhole, 3);
    EXPECT_EQ(NameExt, 4);
}

TYPED_TEST(FileNames, HoldForwardSlashesHoweverTheyAreMade) {
    using N = TypeParam;
    const eTextOf<N> backward = T<N>("C:\\dir\\sub\\");
    const eTextOf<N> forward = T<N>("C:/dir/sub/");
    N assigned, assignedPointer;
    assigned = backward;
    assignedPointer = backward.c_str();
    const N copied(assigned);
    for (const N& name : {N(backward), N(backward.c_str()), assigned, assignedPointer, copied}) {
        EXPECT_EQ(name.str(), forward);
        EXPECT_TRUE(name.IsPath());
        EXPECT_FALSE(name.IsRoot());
    }
    EXPECT_EQ(N(T<N>("a/b")), N(T<N>("a\\b")));
}

TYPED_TEST(FileNames, AreOtherwiseKeptAsGiven) {
    for (const char* text : {"a//b/../c/./d", "C:/x", "//server/share", " a ", "..", "A/a"})
        EXPECT_EQ(TypeParam(T<TypeParam>(text)).str(), T<TypeParam>(text));
}

TYPED_TEST(FileNames, ANullPointerIsTheEmptyText) {
    using N = TypeParam;
    using C = typename N::eText::value_type;
    EXPECT_TRUE(N(static_cast<const C*>(nullptr)).empty());
    N name(T<N>("abc"));
    name = static_cast<const C*>(nullptr);
    EXPECT_TRUE(name.empty());
    name = T<N>("abc");
    EXPECT_EQ(&name.clear(), &name);
    EXPECT_EQ(name.size(), 0u);
    EXPECT_EQ(name.clear().Path().str(), T<N>("/"));
}

TYPED_TEST(FileNames, MovingLeavesTheOtherEmpty) {
    using N = TypeParam;
    N name(T<N>("some/where/that/is/long/enough"));
    N taken(std::move(name));
    EXPECT_TRUE(name.empty());
    name = std::move(taken);
    EXPECT_EQ(name.str(), T<N>("some/where/that/is/long/enough"));
    EXPECT_TRUE(taken.empty());
}

TYPED_TEST(FileNames, MovedOntoThemselvesKeepTheirText) {
    for (const char* text : {"a", "some/where/that/is/long/enough"}) {
        TypeParam name(T<TypeParam>(text));
        MoveOntoItself(name);
        EXPECT_EQ(name.str(), T<TypeParam>(text));
    }
}

TYPED_TEST(FileNames, PathAddsOneSlashAndUnpathRemovesOne) {
    using N = TypeParam;
    struct eRow {
        const char *text, *path, *unpath;
    };
    for (const eRow& row : {eRow{"", "/", ""}, eRow{"a", "a/", "a"}, eRow{"a/", "a/", "a"}, eRow{"a//", "a//", "a/"},
                            eRow{"/", "/", ""}}) {
        const N name(T<N>(row.text));
        EXPECT_EQ(name.GetPath().str(), T<N>(row.path)) << row.text;
        EXPECT_EQ(name.GetUnpath().str(), T<N>(row.unpath)) << row.text;
        N changed(name);
        EXPECT_EQ(&changed.Path(), &changed);
        EXPECT_EQ(changed.str(), T<N>(row.path));
        changed = name;
        EXPECT_EQ(&changed.Unpath(), &changed);
        EXPECT_EQ(changed.str(), T<N>(row.unpath));
    }
    const N root = N().Path();
    EXPECT_TRUE(root.IsRoot() && root.IsPath());
    EXPECT_FALSE(N().IsRoot() || N().IsPath());
}

TYPED_TEST(FileNames, AddInsertsNothing) {
    using N = TypeParam;
    EXPECT_EQ(N(T<N>("a")).Add(T<N>("x")).str(), T<N>("ax"));
    EXPECT_EQ(N(T<N>("a/")).GetAdd(T<N>("x")).str(), T<N>("a/x"));
    EXPECT_EQ(N(T<N>("a")).GetPath().Add(T<N>("x")).str(), T<N>("a/x"));
    N twice(T<N>("ab"));
    EXPECT_EQ(twice.Add(twice).str(), T<N>("abab"));
}

TYPED_TEST(FileNames, TrimRemovesAPrefixOfTheSameCase) {
    using N = TypeParam;
    struct eRow {
        const char *text, *base, *rest;
    };
    for (const eRow& row : {eRow{"c:/a/b.txt", "c:/a", "/b.txt"}, eRow{"c:/a/b.txt", "c:/a/", "b.txt"},
                            eRow{"c:/a/b.txt", "C:/a", "c:/a/b.txt"}, eRow{"abc", "abcd", "abc"},
                            eRow{"abc", "abc", ""}, eRow{"abc", "", "abc"}, eRow{"abc", "bc", "abc"}})
        EXPECT_EQ(N(T<N>(row.text)).Trim(T<N>(row.base)).str(), T<N>(row.rest)) << row.text << " by " << row.base;
}

TYPED_TEST(FileNames, TrimComparesUpToANulAndRemovesTheBasesLength) {
    using N = TypeParam;
    using namespace std::string_literals;
    EXPECT_EQ(N(T<N>("ab\0cd/e"s)).Trim(T<N>("ab\0xy"s)).str(), T<N>("/e"));
    EXPECT_EQ(N(T<N>("ab\0cd/e"s)).Trim(T<N>("aB\0cd"s)).str(), T<N>("ab\0cd/e"s));
}

TYPED_TEST(FileNames, PiecesOfAName) {
    using N = TypeParam;
    struct eRow {
        const char *text, *folder, *title, *extension, *extensionOrWhole, *nameExt;
    };
    const eRow rows[] = {
        {"c:/data/file.txt", "c:/data/", "file", ".txt", ".txt", "file.txt"},
        {"c:/data/archive.tar.gz", "c:/data/", "archive", ".gz", ".gz", "archive.tar.gz"},
        {"c:/data/readme", "c:/data/", "readme", "", "c:/data/readme", "readme"},
        {"c:/data/", "c:/data/", "", "", "c:/data/", ""},
        {"file.txt", "", "file", ".txt", ".txt", "file.txt"},
        {"readme", "", "readme", "", "", "readme"},
        {"a.b/c", "a.b/", "c", "", "a.b/c", "c"},
        {"", "", "", "", "", ""},
        {"a/b.tar.gz", "a/", "b", ".gz", ".gz", "b.tar.gz"},
        {".hidden", "", "", ".hidden", ".hidden", ".hidden"},
        {"a/.", "a/", "", ".", ".", "."},
        {"/", "/", "", "", "/", ""},
    };
    for (const eRow& row : rows) {
        const N name(T<N>(row.text));
        const char* const pieces[] = {row.folder, row.title, row.extension, row.extensionOrWhole, row.nameExt};
        for (int i = 0; i < 5; ++i) {
            const auto item = static_cast<eFileNameItem>(i);
            EXPECT_EQ(name.GetItem(item).str(), T<N>(pieces[i])) << row.text << ", piece " << i;
            N self(name), target(T<N>("before"));
            EXPECT_EQ(self.Item(item).str(), T<N>(pieces[i])) << row.text << ", piece " << i;
            name.GetItemTo(&target, item);
            EXPECT_EQ(target.str(), T<N>(pieces[i])) << row.text << ", piece " << i;
            self = name;
            self.GetItemTo(&self, item);
            EXPECT_EQ(self.str(), T<N>(pieces[i])) << row.text << ", piece " << i;
        }
    }
}

TYPED_TEST(FileNames, AnUnknownPieceIsEmptyAndLeavesATargetAlone) {
    using N = TypeParam;
    const auto unknown = static_cast<eFileNameItem>(5);
    N name(T<N>("a/b.c")), target(T<N>("before"));
    name.GetItemTo(&target, unknown);
    EXPECT_EQ(target.str(), T<N>("before"));
    EXPECT_TRUE(name.GetItem(unknown).empty());
    EXPECT_TRUE(name.Item(unknown).empty());
}

TYPED_TEST(FileNames, ValidNames) {
    using N = TypeParam;
    struct eRow {
        const char* text;
        bool narrow, wide;
    };
    const eRow rows[] = {
        {"", false, false},     {".", false, false},   {"..", false, false},   {"...", true, true},
        {"a.b", true, true},    {"a b!", true, true},  {"a:b", false, false},  {"a*b", false, false},
        {"a/b", false, false},  {"a\tb", false, true}, {"a\\b", false, false}, {"a?", false, false},
        {"a\"b", false, false}, {"<a>", false, false}, {"a|b", false, false},  {"[](){}@$%^-+._ !", true, true},
        {"azAZ09", true, true}, {"a#b", false, true},  {"a,b", false, true},
    };
    for (const eRow& row : rows)
        EXPECT_EQ(N(T<N>(row.text)).IsValidName(), (std::is_same_v<N, eFileName> ? row.narrow : row.wide)) << row.text;
}

TEST(FileName, NarrowCharactersAreAWhiteListWithoutAnythingFrom128Up) {
    const std::string valid = "[](){}@$%^-+._ !0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    const eFileName name;
    for (int byte = 0; byte < 256; ++byte) {
        const char character = static_cast<char>(byte);
        EXPECT_EQ(name.IsCharValidForName(character), valid.find(character) != std::string::npos) << byte;
    }
}

TEST(FileName, WideCharactersAreABlackList) {
    const std::wstring invalid = L"\\/:*?\"<>|";
    const eFileNameW name;
    for (int unit = 0; unit < 0x10000; ++unit) {
        const auto character = static_cast<wchar_t>(unit);
        EXPECT_EQ(name.IsCharValidForName(character), invalid.find(character) == std::wstring::npos) << unit;
    }
    EXPECT_TRUE(eFileNameW(L"\x17Elu\x165ou\x10Dk\xFD").IsValidName());
}

TYPED_TEST(FileNames, CompareExactly) {
    using N = TypeParam;
    const N upper(T<N>("A.txt")), lower(T<N>("a.txt")), prefix(T<N>("a"));
    EXPECT_TRUE(upper != lower);
    EXPECT_FALSE(upper == lower);
    EXPECT_TRUE(upper < lower);
    EXPECT_FALSE(lower < upper);
    EXPECT_TRUE(prefix < lower);
    EXPECT_TRUE(lower == N(lower));
    EXPECT_EQ(lower.length(), 5u);
    EXPECT_EQ(eTextOf<N>(lower.c_str()), lower.str());
}

TEST(FileName, OnAStreamIsATextAndKeepsBackSlashesUntilAssigned) {
    IO::eMemoryStream stream;
    stream << eFileName("a\\b") << "c\\d";
    EXPECT_EQ(stream.Size(), 8u);
    stream.Reset();
    eFileName first, second("before");
    stream >> first >> second;
    EXPECT_EQ(first.str(), "a/b");
    EXPECT_EQ(second.str(), "c\\d");
    eFileName third;
    third = second;
    EXPECT_EQ(third.str(), "c/d");
    const eFileName moved(eFileName(second).Path());
    EXPECT_EQ(moved.str(), "c/d/");
    eFileName source, target;
    stream.Seek(4, IO::eSeekDir::Begin);
    stream >> source;
    target = std::move(source);
    EXPECT_EQ(target.str(), "c/d");
    second = *&second;
    EXPECT_EQ(second.str(), "c/d");
    eFileName again;
    stream.Seek(4, IO::eSeekDir::Begin);
    stream >> again;
    target = static_cast<const eFileNameBase<char>&>(again);
    EXPECT_EQ(again.str(), "c\\d");
    EXPECT_EQ(target.str(), "c/d");
}

TEST(FileName, OnlyConstructionAndAssignmentTurnTheBackSlashesOfAStream) {
    struct eRow {
        const char* operation;
        std::function<std::string(eFileName&)> apply;
        const char* text;
    };
    const eFileName folder("p/");
    const eRow rows[] = {
        {"Path", [](eFileName& raw) { return raw.Path().str(); }, "a\\b/c\\d.e\\f/"},
        {"Unpath", [](eFileName& raw) { return raw.Unpath().str(); }, "a\\b/c\\d.e\\f"},
        {"Add", [](eFileName& raw) { return raw.Add("/g").str(); }, "a\\b/c\\d.e\\f/g"},
        {"Add to itself", [](eFileName& raw) { return raw.Add(raw).str(); }, "a\\b/c\\d.e\\fa\\b/c\\d.e\\f"},
        {"Trim", [](eFileName& raw) { return raw.Trim("a/b/").str(); }, "a\\b/c\\d.e\\f"},
        {"Item", [](eFileName& raw) { return raw.Item(NameExt).str(); }, "c\\d.e\\f"},
        {"GetItem", [](eFileName& raw) { return raw.GetItem(NameExt).str(); }, "c\\d.e\\f"},
        {"GetItem, the folder", [](eFileName& raw) { return raw.GetItem(Folder).str(); }, "a\\b/"},
        {"GetItem, the title", [](eFileName& raw) { return raw.GetItem(Title).str(); }, "c\\d"},
        {"GetItem, the extension", [](eFileName& raw) { return raw.GetItem(Extension).str(); }, ".e\\f"},
        {"Add of it", [&](eFileName& raw) { return eFileName(folder).Add(raw).str(); }, "p/a\\b/c\\d.e\\f"},
        {"GetAdd of it", [&](eFileName& raw) { return folder.GetAdd(raw).str(); }, "p/a\\b/c\\d.e\\f"},
        {"GetAdd", [](eFileName& raw) { return raw.GetAdd("/g").str(); }, "a/b/c/d.e/f/g"},
        {"GetPath", [](eFileName& raw) { return raw.GetPath().str(); }, "a/b/c/d.e/f/"},
        {"GetUnpath", [](eFileName& raw) { return raw.GetUnpath().str(); }, "a/b/c/d.e/f"},
        {"a copy", [](eFileName& raw) { return eFileName(raw).str(); }, "a/b/c/d.e/f"},
        {"a name moved to", [](eFileName& raw) { return eFileName(std::move(raw)).str(); }, "a/b/c/d.e/f"},
    };
    for (const eRow& row : rows) {
        IO::eMemoryStream stream;
        stream << "a\\b/c\\d.e\\f";
        stream.Reset();
        eFileName raw;
        stream >> raw;
        EXPECT_EQ(row.apply(raw), row.text) << row.operation;
    }
}

TEST(FileName, ReturnsAPieceOfATextFromAStreamUnchanged) {
    IO::eMemoryStream stream;
    stream << "a\\b/c\\d";
    stream.Reset();
    eFileName raw, target("before");
    stream >> raw;
    raw.GetItemTo(&target, NameExt);
    EXPECT_EQ(target.str(), "c\\d");
    EXPECT_FALSE(target == raw.GetAdd(""));
    EXPECT_FALSE(raw.IsValidName());
}
