// SPDX-License-Identifier: BSL-1.0
#include <qzl_base/strings.h>

#include <algorithm>
#include <clocale>
#include <map>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

namespace {

template <class T>
std::basic_string<T> Text(const char* ascii) {
    return {ascii, ascii + std::char_traits<char>::length(ascii)};
}

template <class T>
class Strings : public testing::Test {
protected:
    using eKey = eStringKeyBase<T>;
    using eList = eStringsBase<T>;

    static eList ListOf(std::initializer_list<const char*> texts, bool caseSensitive = true) {
        eList list(caseSensitive);
        for (const char* text : texts)
            list.Add(Text<T>(text));
        return list;
    }
};

using eCharacters = testing::Types<char, wchar_t>;
TYPED_TEST_SUITE(Strings, eCharacters);

static_assert(std::is_same_v<eStringKey, eStringKeyBase<char>> && std::is_same_v<eStringKeyW, eStringKeyBase<wchar_t>>);
static_assert(std::is_same_v<eStrings, eStringsBase<char>> && std::is_same_v<eStringsW, eStringsBase<wchar_t>>);
static_assert(!std::is_convertible_v<bool, eStrings>);
static_assert(std::is_nothrow_move_constructible_v<eStringKey>);
static_assert(sizeof(eStringKey) == sizeof(std::string));

TYPED_TEST(Strings, AKeyHoldsItsText) {
    using T = TypeParam;
    const eStringKeyBase<T> key(Text<T>("ab"));
    EXPECT_EQ(Text<T>("ab"), key.str());
    EXPECT_EQ(Text<T>("ab"), key.c_str());
    EXPECT_EQ(2u, key.size());
    EXPECT_FALSE(key.empty());
}

TYPED_TEST(Strings, ANullOrDefaultKeyIsEmpty) {
    using T = TypeParam;
    const T* const none = nullptr;
    for (const eStringKeyBase<T>& key : {eStringKeyBase<T>(none), eStringKeyBase<T>()}) {
        EXPECT_TRUE(key.empty());
        EXPECT_EQ(0u, key.size());
        EXPECT_EQ(T(), *key.c_str());
    }
}

TYPED_TEST(Strings, AKeyKeepsZeros) {
    using T = TypeParam;
    const std::basic_string<T> text(3, T());
    EXPECT_EQ(3u, eStringKeyBase<T>(text).size());
}

TYPED_TEST(Strings, KeysCompareByCharacters) {
    using T = TypeParam;
    const struct {
        const char* left;
        const char* right;
        int order;
    } rows[] = {{"", "", 0},    {"", "a", -1},  {"a", "a", 0},   {"a", "b", -1},
                {"ab", "a", 1}, {"A", "a", -1}, {"1", "10", -1}, {"10", "2", -1}};
    for (const auto& row : rows) {
        const eStringKeyBase<T> left(Text<T>(row.left));
        const eStringKeyBase<T> right(Text<T>(row.right));
        EXPECT_EQ(row.order == 0, left == right) << row.left << '|' << row.right;
        EXPECT_EQ(row.order != 0, left != right) << row.left << '|' << row.right;
        EXPECT_EQ(row.order < 0, left < right) << row.left << '|' << row.right;
        EXPECT_EQ(row.order > 0, right < left) << row.left << '|' << row.right;
    }
}

TEST(StringKey, ComparesBytesAsUnsigned) {
    EXPECT_LT(eStringKey("z"), eStringKey("\x80"));
}

TEST(StringKey, ComparesWithPlainTexts) {
    const eStringKey key("a");
    EXPECT_TRUE(key == "a");
    EXPECT_TRUE("b" != key);
    EXPECT_TRUE(key == std::string("a"));
    EXPECT_TRUE(key < "b");
}

TEST(StringKey, OrdersAMap) {
    std::map<eStringKey, eStringKey> parameters;
    parameters["10"] = "ten";
    parameters["1"] = "one";
    parameters["1"] = "uno";
    ASSERT_EQ(2u, parameters.size());
    EXPECT_EQ("1", parameters.begin()->first.str());
    EXPECT_EQ("uno", parameters.begin()->second.str());
}

TYPED_TEST(Strings, AnEmptyListHasNothing) {
    using T = TypeParam;
    const eStringsBase<T> list;
    EXPECT_EQ(0u, list.size());
    EXPECT_TRUE(list.empty());
    EXPECT_EQ(list.begin(), list.end());
    EXPECT_EQ(list.npos, list.Find(Text<T>("")));
}

TYPED_TEST(Strings, AddKeepsOrderAndRepetitions) {
    using T = TypeParam;
    const auto list = this->ListOf({"b", "a", "b"});
    ASSERT_EQ(3u, list.size());
    EXPECT_EQ(Text<T>("b"), list[0].str());
    EXPECT_EQ(Text<T>("a"), list[1].str());
    EXPECT_EQ(Text<T>("b"), list[2].str());
    EXPECT_FALSE(list.empty());
}

TYPED_TEST(Strings, AnElementMayBeAddedToItsOwnList) {
    auto list = this->ListOf({"a long text that is not kept inside the object itself"});
    for (int round = 0; round < 20; ++round)
        list.Add(list[0]);
    EXPECT_EQ(21u, list.size());
    EXPECT_TRUE(std::all_of(list.begin(), list.end(), [&list](const auto& key) { return key == list[0]; }));
}

TYPED_TEST(Strings, AddUniqueAndFindHonourLetterCaseAsAsked) {
    using T = TypeParam;
    const struct {
        const char* kept;
        const char* sought;
        bool equalExactly;
        bool equalFolded;
    } rows[] = {{"abc", "abc", true, true}, {"abc", "ABC", false, true}, {"aZ09_[", "Az09_[", false, true},
                {"@", "`", false, false},   {"[", "{", false, false},    {"abc", "ab", false, false},
                {"", "", true, true},       {"a", "", false, false}};
    for (const auto& row : rows)
        for (const bool caseSensitive : {true, false}) {
            auto list = this->ListOf({"first", row.kept}, caseSensitive);
            const bool equal = caseSensitive ? row.equalExactly : row.equalFolded;
            EXPECT_EQ(equal ? 1u : list.npos, list.Find(Text<T>(row.sought))) << row.kept << '|' << row.sought;
            EXPECT_EQ(!equal, list.AddUnique(Text<T>(row.sought))) << row.kept << '|' << row.sought;
            EXPECT_EQ(equal ? 2u : 3u, list.size()) << row.kept << '|' << row.sought;
        }
}

TEST(Strings, FoldAsciiLettersOnly) {
    std::setlocale(LC_ALL, "");
    eStrings narrow(false);
    narrow.Add("\xc4");
    EXPECT_EQ(eStrings::npos, narrow.Find("\xe4"));
    eStringsW wide(false);
    wide.Add(L"\u00c4");
    EXPECT_EQ(eStringsW::npos, wide.Find(L"\u00e4"));
    std::setlocale(LC_ALL, "C");
}

TYPED_TEST(Strings, FindGivesTheFirstOfEquals) {
    using T = TypeParam;
    const auto list = this->ListOf({"x", "A", "a"}, false);
    EXPECT_EQ(1u, list.Find(Text<T>("a")));
}

TYPED_TEST(Strings, DeleteMovesTheRestUp) {
    auto list = this->ListOf({"a", "b", "c"});
    list.Delete(1);
    EXPECT_EQ(this->ListOf({"a", "c"}), list);
    list.Delete(1);
    list.Delete(0);
    EXPECT_TRUE(list.empty());
}

TYPED_TEST(Strings, DeleteBeyondTheEndDoesNothing) {
    auto list = this->ListOf({"a"});
    list.Delete(1);
    list.Delete(list.npos);
    EXPECT_EQ(1u, list.size());
}

TYPED_TEST(Strings, ClearEmptiesAndReserveKeeps) {
    auto list = this->ListOf({"a", "b"});
    list.Reserve(100);
    EXPECT_EQ(this->ListOf({"a", "b"}), list);
    list.Clear();
    EXPECT_TRUE(list.empty());
}

TYPED_TEST(Strings, ElementsMayBeChangedInPlace) {
    using T = TypeParam;
    auto list = this->ListOf({"a", "b"});
    list[1] = Text<T>("c");
    for (auto& key : list)
        if (key == eStringKeyBase<T>(Text<T>("a")))
            key = Text<T>("d");
    EXPECT_EQ(this->ListOf({"d", "c"}), list);
}

TYPED_TEST(Strings, ListsCompareExactlyAndCopyByValue) {
    using T = TypeParam;
    const auto list = this->ListOf({"a"}, false);
    auto copy = list;
    EXPECT_EQ(list, copy);
    EXPECT_FALSE(copy.AddUnique(Text<T>("A")));
    copy.Add(Text<T>("b"));
    EXPECT_NE(list, copy);
    EXPECT_NE(this->ListOf({"A"}, false), list);
}

} // namespace
