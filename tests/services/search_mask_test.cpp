// SPDX-License-Identifier: BSL-1.0
#include "platform/pure/search_mask.h"

#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "mask_model.h"
#include "support/long_tests.h"

namespace {

using IO::eSearchMask;
using IO::eSearchPattern;

struct eMaskRow {
    std::wstring_view mask;
    std::wstring_view name;
    bool matches;
};

constexpr eMaskRow kMaskRows[] = {
    {L"*.*", L"a", true},
    {L"*.*", L"a.b", true},
    {L"*.*", L".", true},
    {L"*.*", L"..", true},
    {L"*.*", L".hidden", true},
    {L"*.*", L"trailing.", true},
    {L"*", L"a.b.c", true},
    {L"*", L"a", true},
    {L"", L"a", false},
    {L"", L"", false},
    {L"a", L"a", true},
    {L"a", L"A", true},
    {L"NAME.TXT", L"name.txt", true},
    {L"name.txt", L"name.txt2", false},
    {L"name.txt", L"aname.txt", false},
    {L"*.txt", L"a.txt", true},
    {L"*.txt", L"a.b.txt", true},
    {L"*.txt", L".txt", true},
    {L"*.txt", L"a.txt.bak", false},
    {L"*.txt", L"atxt", false},
    {L"*.t", L"a.txt", false},
    {L"*.*.txt", L"a.b.txt", true},
    {L"a*.*", L"a", true},
    {L"a*.*", L"abc", true},
    {L"a*.*", L"abc.d", true},
    {L"a*.*", L"b.a", false},
    {L"dir*.*", L"dir", true},
    {L"dir*.*", L"Directory", true},
    {L"dir*.*", L"subdir", false},
    {L"a.*", L"a", true},
    {L"a.*", L"a.b", true},
    {L"a.*", L"a.b.c", true},
    {L"a.*", L"ab", false},
    {L"*.", L"name", true},
    {L"*.", L"name.txt", false},
    {L"*.", L"two.dots.here", false},
    {L"?", L"a", true},
    {L"?", L"ab", false},
    {L"?", L".", false},
    {L"??", L"a", true},
    {L"a??.c", L"a.c", true},
    {L"a??.c", L"ab.c", true},
    {L"a??.c", L"abc.c", true},
    {L"a??.c", L"abcd.c", false},
    {L"a?c", L"abc", true},
    {L"a?c", L"ac", false},
    {L"a?c", L"a.c", false},
    {L"a.???", L"a", true},
    {L"a.???", L"a.bc", true},
    {L"a.???", L"a.bcde", false},
    {L"*b*", L"abc", true},
    {L"*b*", L"b", true},
    {L"*b*", L"ac", false},
    {L"**a", L"bba", true},
    {L"*a*b.", L"xaxb", true},
    {L"*a*b.", L"xaxb.", false},
    {L"a*b*.", L"ab.b", true},
    {L"*..", L"name", true},
    {L"*..", L"name.txt", false},
    {L"*. .", L"name.txt", false},
    {L"*. ", L"name.txt", true},
    {L"*.*.", L"name.txt", true},
    {L"*.*.", L"name", true},
    {L"?.", L"a", true},
    {L"?.", L".", false},
    {L"a?.", L"ab", true},
    {L"a*b. ", L"axb", true},
    {L"a*b. ", L"axb. ", false},
    {L"a.", L"a", false},
    {L"a.", L"a.", true},
    {L"a ", L"a", false},
    {L"a ", L"a ", true},
    {L".", L".", true},
    {L".", L"a", false},
    {L"..", L"..", true},
    {L"...", L"...", true},
    {L"a[b]", L"a[b]", true},
    {L"a b.c", L"A B.C", true},
    {L"\u00e4?", L"\u00e4\u00f6", true},
    {L"\u00e4", L"\u00c4", false},
};

std::string Shown(std::wstring_view text) {
    std::string shown;
    for (const wchar_t letter : text)
        shown += letter < 128 ? static_cast<char>(letter) : '#';
    return '"' + shown + '"';
}

TEST(SearchMask, FollowsTheRulesOfTheWindowsFileSearch) {
    for (const eMaskRow& row : kMaskRows)
        EXPECT_EQ(row.matches, eSearchMask(row.mask).Matches(row.name)) << Shown(row.mask) << " " << Shown(row.name);
}

TEST(SearchMask, IgnoresTheCaseOfEveryAsciiLetterAndOfNothingElse) {
    const auto isLetter = [](wchar_t c) { return (c | 0x20) >= L'a' && (c | 0x20) <= L'z'; };
    for (wchar_t inMask = 0x21; inMask < 0x7F; ++inMask)
        for (wchar_t inName = 0x21; inName < 0x7F; ++inName) {
            if (inMask == L'*' || inMask == L'?')
                continue;
            const bool cases = isLetter(inMask) && isLetter(inName) && (inMask | 0x20) == (inName | 0x20);
            EXPECT_EQ(inMask == inName || cases, eSearchMask({&inMask, 1}).Matches({&inName, 1}))
                << Shown({&inMask, 1}) << " " << Shown({&inName, 1});
        }
}

TEST(SearchMask, KnowsWhenItMatchesAll) {
    EXPECT_TRUE(eSearchMask(L"*.*").MatchesAll());
    EXPECT_TRUE(eSearchMask(L"*").MatchesAll());
    for (const std::wstring_view mask : {L"", L"*.", L"a*", L"*a", L"?", L"*.*.*", L".*"})
        EXPECT_FALSE(eSearchMask(mask).MatchesAll()) << Shown(mask);
}

// All texts over the letters up to the given length, including the empty one.
std::vector<std::wstring> AllTexts(std::wstring_view letters, std::size_t longest) {
    std::vector<std::wstring> texts{L""};
    for (std::size_t begin = 0, length = 0; length < longest; ++length) {
        const std::size_t end = texts.size();
        for (; begin < end; ++begin)
            for (const wchar_t letter : letters)
                texts.push_back(texts[begin] + letter);
    }
    return texts;
}

TEST(SearchMask, AgreesWithTheSystemsOwnRulesOnAllShortMasksAndNames) {
    std::vector<std::wstring> names = AllTexts(L"ab.", LongTests() ? 5 : 4);
    names.erase(names.begin());
    std::vector<std::wstring> masks = AllTexts(L"a.*?", 5);
    for (const std::wstring& mask : AllTexts(L".*? ", 4))
        masks.push_back(mask);
    for (const std::wstring& mask : masks) {
        const eSearchMask ready(mask);
        for (const std::wstring& name : names)
            ASSERT_EQ(MatchesInTheSystem(mask, name), ready.Matches(name)) << Shown(mask) << " " << Shown(name);
    }
}

TEST(SearchMask, AnswersLongHostileMasksAtOnce) {
    std::wstring mask;
    for (int repeat = 0; repeat < 200; ++repeat)
        mask += L"*a";
    EXPECT_FALSE(eSearchMask(mask + L"b").Matches(std::wstring(255, L'a')));
    EXPECT_TRUE(eSearchMask(mask).Matches(std::wstring(255, L'a')));
}

TEST(SearchPattern, IsCutAfterItsLastSlash) {
    struct eRow {
        std::string_view pattern, folder, mask;
    };
    for (const eRow& row : {eRow{"dir/*.*", "dir/", "*.*"}, eRow{"dir*.*", "", "dir*.*"}, eRow{"/*", "/", "*"},
                            eRow{"a/b/", "a/b/", ""}, eRow{"", "", ""}, eRow{"a*/b", "a*/", "b"}}) {
        const eSearchPattern<char> cut(row.pattern);
        EXPECT_EQ(row.folder, cut.folder) << row.pattern;
        EXPECT_EQ(row.mask, cut.mask) << row.pattern;
    }
}

} // namespace
