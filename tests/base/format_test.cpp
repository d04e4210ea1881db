// SPDX-License-Identifier: BSL-1.0
#include <qzl_base/format.h>

#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <qzl_base/strings.h>

namespace {

TEST(Format, PutsArgumentsInTheirPlaces) {
    const struct {
        const char* pattern;
        std::vector<std::string> arguments;
        const char* text;
    } rows[] = {
        {"%1% - open error!", {"a.sdl"}, "a.sdl - open error!"},
        {"", {}, ""},
        {"plain", {}, "plain"},
        {"%1%%2%", {"a", "b"}, "ab"},
        {"%2%%1%%2%", {"a", "b"}, "bab"},
        {"%1%2%3%", {"a", "b", "c"}, "a2c"},
        {"%1%2%", {"a", "b"}, "a2%"},
        {"%9%%1%", {"1", "2", "3", "4", "5", "6", "7", "8", "9"}, "91"},
        {"<%1%>", {""}, "<>"},
        {"%1%", {"a", "unused"}, "a"},
    };
    for (const auto& row : rows) {
        format text(row.pattern);
        for (const auto& argument : row.arguments)
            text = text % argument;
        EXPECT_EQ(row.text, text.str()) << row.pattern;
    }
}

TEST(Format, LeavesEveryOtherPercentSignAlone) {
    for (const char* pattern : {"%", "%%", "%%%", "100%", "%0%", "%10%", "%a%", "%2%", "%1", "1%", "% 1%", "%2%%3%"})
        EXPECT_EQ(pattern, (format(pattern) % "x").str());
    EXPECT_EQ("%x", (format("%%1%") % "x").str());
    EXPECT_EQ("%x%", (format("%%1%%") % "x").str());
    EXPECT_EQ("%1%", format("%1%").str());
    EXPECT_EQ("x", (format(std::string("%1%")) % "x").str());
}

TEST(Format, NeverReadsPlacesInsideArguments) {
    EXPECT_EQ("%2% %1%", (format("%1% %2%") % "%2%" % "%1%").str());
    EXPECT_EQ("%%", (format("%1%%2%") % "%" % "%").str());
    EXPECT_EQ("%1%", (format("%%1%%2%") % "1" % "%").str());
}

TEST(Format, TakesTextsOfEveryKind) {
    const std::wstring wide = L"\u00e4\u20ac";
    EXPECT_EQ("a b c d e",
              (format("%1% %2% %3% %4% %5%") % "a" % std::string("b") % std::string_view("c") % 'd' % L"e").str());
    EXPECT_EQ("\xc3\xa4\xe2\x82\xac", (format("%1%") % wide).str());
    EXPECT_EQ("k w", (format("%1% %2%") % eStringKey("k") % eStringKeyW(L"w")).str());
    const char* const none = nullptr;
    const wchar_t* const noneWide = nullptr;
    EXPECT_EQ("|||", (format("|%1%|%2%|") % none % noneWide).str());
    EXPECT_EQ(std::string("a\0b", 3), (format("%1%") % std::string("a\0b", 3)).str());
}

TEST(Format, TakesNumbersOfEveryKind) {
    EXPECT_EQ("-2147483648", (format("%1%") % std::numeric_limits<int>::min()).str());
    EXPECT_EQ("4294967295", (format("%1%") % std::numeric_limits<unsigned>::max()).str());
    EXPECT_EQ("-9223372036854775808", (format("%1%") % std::numeric_limits<long long>::min()).str());
    EXPECT_EQ("18446744073709551615", (format("%1%") % std::numeric_limits<unsigned long long>::max()).str());
    EXPECT_EQ("7 8 9", (format("%1% %2% %3%") % short{7} % 8l % 9ul).str());
    EXPECT_EQ("1 0", (format("%1% %2%") % true % false).str());
    EXPECT_EQ("0.5 0.1", (format("%1% %2%") % 0.5f % 0.1).str());
}

template <class T>
constexpr bool takes = requires(T value) {
    format("") % value;
};

TEST(Format, TakesPlainEnumerationsAsNumbers) {
    enum eByDefault { Zero, One };
    enum eBelow : long long { Lowest = std::numeric_limits<long long>::min() };
    enum eCharacter : char { LetterA = 'A' };
    enum eSwitch : bool { Off, On };
    enum class eScoped { First };
    EXPECT_EQ("1 -9223372036854775808 65 1", (format("%1% %2% %3% %4%") % One % Lowest % LetterA % On).str());
    EXPECT_FALSE(takes<eScoped>);
}

TEST(Format, BecomesAString) {
    const std::string text = format("%1%") % 5;
    EXPECT_EQ("5", text);
    const auto length = [](const std::string& argument) { return argument.size(); };
    EXPECT_EQ(2u, length(format("%1%") % 12));
}

TEST(Format, IsAValue) {
    const format pattern("%1%-%2%");
    const format first = pattern % "a";
    const format second = first % "b";
    EXPECT_EQ("%1%-%2%", pattern.str());
    EXPECT_EQ("a-%2%", first.str());
    EXPECT_EQ("a-b", second.str());
}

TEST(Format, ANullPatternIsEmpty) {
    EXPECT_EQ("", (format(static_cast<const char*>(nullptr)) % "a").str());
}

} // namespace
