// SPDX-License-Identifier: BSL-1.0
#include "sdl/current_token.h"

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "sdl/scan.h"

namespace {

using xSDL::eCurrentToken;
using ePlace = eCurrentToken::ePlace;

constexpr std::size_t kLongest = 40;

// Two texts of each length in one source, which ends like that of a parser.
class eSource {
public:
    eSource() {
        for (std::size_t at = 0; at < kLongest; ++at)
            text += static_cast<char>('a' + at % 26);
        for (std::size_t at = 0; at < kLongest; ++at)
            text += static_cast<char>('A' + at % 26);
        text.append(xSDL::kTextEnd, '\0');
    }

    std::string_view Lower(std::size_t length) const { return {text.data(), length}; }
    std::string_view Upper(std::size_t length) const { return {text.data() + kLongest, length}; }
    const char* Begin() const { return text.data(); }

private:
    std::string text;
};

const eSource source;

void Accept(eCurrentToken& token, std::string_view text, int line = 1) {
    token.Accept(sdlIdent, text, line, text.data() + text.size());
}

// A token with the text "abc" in the source, or with its own text "own".
eCurrentToken TokenIn(ePlace place) {
    eCurrentToken token;
    token.Start(source.Begin());
    Accept(token, source.Lower(3));
    if (place == ePlace::Copied)
        token.String();
    if (place == ePlace::Own)
        token.OwnString() = "own";
    return token;
}

struct eEvent {
    const char* name;
    std::function<void(eCurrentToken&)> happen;
};

const eEvent accept{"a token is cut", [](eCurrentToken& token) { Accept(token, source.Upper(5)); }};
const eEvent acceptEnd{"the source has ended", [](eCurrentToken& token) { token.AcceptEnd(1, source.Begin()); }};
const eEvent string{"the string is asked for", [](eCurrentToken& token) { token.String(); }};
const eEvent ownString{"the string is to be changed", [](eCurrentToken& token) { token.OwnString() += '!'; }};
const eEvent acceptAndBack{"it is before another and comes back", [](eCurrentToken& token) {
                               accept.happen(token);
                               token.Back();
                           }};
const eEvent jump{"reading goes on elsewhere", [](eCurrentToken& token) { token.JumpTo(source.Begin(), 7); }};

} // namespace

TEST(CurrentToken, HasItsTextWhereTheTableSays) {
    const struct {
        ePlace from;
        const eEvent& event;
        ePlace to;
        ePlace toWhenLent;
        const char* text;
    } rows[] = {
        {ePlace::Source, accept, ePlace::Source, ePlace::Copied, "ABCDE"},
        {ePlace::Copied, accept, ePlace::Source, ePlace::Copied, "ABCDE"},
        {ePlace::Own, accept, ePlace::Source, ePlace::Copied, "ABCDE"},
        {ePlace::Source, acceptEnd, ePlace::Source, ePlace::Copied, "abc"},
        {ePlace::Copied, acceptEnd, ePlace::Copied, ePlace::Copied, "abc"},
        {ePlace::Own, acceptEnd, ePlace::Own, ePlace::Own, "own"},
        {ePlace::Source, string, ePlace::Copied, ePlace::Copied, "abc"},
        {ePlace::Copied, string, ePlace::Copied, ePlace::Copied, "abc"},
        {ePlace::Own, string, ePlace::Own, ePlace::Own, "own"},
        {ePlace::Source, ownString, ePlace::Own, ePlace::Own, "abc!"},
        {ePlace::Copied, ownString, ePlace::Own, ePlace::Own, "abc!"},
        {ePlace::Own, ownString, ePlace::Own, ePlace::Own, "own!"},
        {ePlace::Source, acceptAndBack, ePlace::Source, ePlace::Copied, "abc"},
        {ePlace::Copied, acceptAndBack, ePlace::Source, ePlace::Copied, "abc"},
        {ePlace::Own, acceptAndBack, ePlace::Own, ePlace::Own, "own"},
        {ePlace::Source, jump, ePlace::Source, ePlace::Copied, "abc"},
        {ePlace::Copied, jump, ePlace::Copied, ePlace::Copied, "abc"},
        {ePlace::Own, jump, ePlace::Own, ePlace::Own, "own"},
    };
    for (const auto& row : rows)
        for (const bool lent : {false, true}) {
            SCOPED_TRACE(std::string(row.event.name) + ", from " + std::to_string(static_cast<int>(row.from)) +
                         (lent ? ", lent" : ""));
            eCurrentToken token = TokenIn(row.from);
            if (lent)
                token.Lend();
            row.event.happen(token);
            EXPECT_EQ(token.Place(), lent ? row.toWhenLent : row.to);
            EXPECT_EQ(token.Text(), row.text);
            if (lent) {
                EXPECT_EQ(token.Token().text, row.text);
            }
            EXPECT_EQ(token.String(), row.text);
        }
}

TEST(CurrentToken, StartsCopiedAndWithNothingBefore) {
    eCurrentToken token = TokenIn(ePlace::Own);
    token.Lend();
    Accept(token, source.Upper(4), 9);
    token.Start(source.Begin());
    token.Back();
    EXPECT_EQ(token.Place(), ePlace::Copied);
    EXPECT_EQ(token.Token().text, "");
    EXPECT_EQ(token.Type(), sdlNone);
    EXPECT_EQ(token.Line(), 1);
    EXPECT_EQ(token.Position(), source.Begin());
}

TEST(CurrentToken, TextsOfAllLengthsFollowEachOtherInOneString) {
    for (const bool lent : {false, true})
        for (std::size_t first = 0; first <= kLongest; ++first)
            for (std::size_t second = 0; second <= kLongest; ++second) {
                eCurrentToken token;
                token.Start(source.Begin());
                if (lent)
                    token.Lend();
                Accept(token, source.Lower(first));
                ASSERT_EQ(token.String(), source.Lower(first));
                Accept(token, source.Upper(second));
                ASSERT_EQ(token.String(), source.Upper(second)) << first << " before " << second;
                token.Back();
                ASSERT_EQ(token.String(), source.Lower(first)) << first << " before " << second;
            }
}

TEST(CurrentToken, ALentOneIsKeptAsItHasBeenChanged) {
    for (std::size_t length = 1; length <= kLongest; ++length)
        for (std::size_t at = 0; at < length; ++at) {
            eCurrentToken token;
            token.Start(source.Begin());
            token.Lend();
            Accept(token, source.Lower(length));
            std::string changed(source.Lower(length));
            changed[at] = '?';
            token.Token().text = changed;
            Accept(token, source.Upper(2));
            ASSERT_EQ(token.Token().text, "AB");
            token.Back();
            ASSERT_EQ(token.Token().text, changed);
            ASSERT_EQ(token.Place(), ePlace::Own);
            token.AcceptEnd(1, source.Begin());
            ASSERT_EQ(token.Token().text, changed);
        }
}

TEST(CurrentToken, GoesBackOnceToTypeValuesLineAndPlace) {
    eCurrentToken token;
    token.Start(source.Begin());
    token.Accept(sdlInt, source.Lower(3), 4, source.Begin() + 3);
    token.SetInt(-7);
    token.Accept(sdlFloat, source.Upper(3), 5, source.Begin() + 9);
    token.SetFloat(2.5f);
    EXPECT_EQ(token.Int(), 2);
    for (int times = 0; times < 2; ++times) {
        token.Back();
        EXPECT_EQ(token.Type(), sdlInt);
        EXPECT_EQ(token.Int(), -7);
        EXPECT_EQ(token.Float(), -7.0f);
        EXPECT_EQ(token.Line(), 4);
        EXPECT_EQ(token.Position(), source.Begin() + 3);
    }
    Accept(token, source.Upper(3));
    token.ForgetBefore();
    token.Back();
    EXPECT_EQ(token.Text(), "ABC");
}

// The type, values, line, place in the source and text, of the token and of the one before it.
std::vector<std::string> Described(eCurrentToken token) {
    std::vector<std::string> all;
    for (int times = 0; times < 2; ++times) {
        all.push_back(std::to_string(token.Type()) + " " + std::to_string(token.Int()) + " " +
                      std::to_string(token.Float()) + " in line " + std::to_string(token.Line()) + " to " +
                      std::to_string(token.Position() - source.Begin()) + ": " + std::string(token.Text()));
        token.Back();
    }
    return all;
}

TEST(CurrentToken, IsPlainUnlessItIsLentOrHasATextOfItsOwn) {
    for (const ePlace place : {ePlace::Source, ePlace::Copied, ePlace::Own}) {
        eCurrentToken token = TokenIn(place);
        EXPECT_EQ(token.IsPlain(), place != ePlace::Own);
        token.Lend();
        EXPECT_FALSE(token.IsPlain());
    }
}

TEST(CurrentToken, PlainOnesAreAcceptedLikeOthers) {
    for (const ePlace place : {ePlace::Source, ePlace::Copied}) {
        eCurrentToken plain = TokenIn(place);
        plain.SetFloat(2.5f);
        eCurrentToken other = plain;
        plain.AcceptPlain(sdlString, source.Upper(5), 7, source.Begin() + 50);
        other.Accept(sdlString, source.Upper(5), 7, source.Begin() + 50);
        EXPECT_EQ(Described(plain), Described(other));
    }
}

TEST(CurrentToken, APlainBlockIsItsBraceAndThenItsKeyword) {
    for (const ePlace place : {ePlace::Source, ePlace::Copied}) {
        eCurrentToken plain = TokenIn(place);
        plain.SetFloat(2.5f);
        eCurrentToken other = plain;
        const std::string_view keyword = source.Lower(9).substr(6);
        const char* const brace = keyword.data() - 1;
        plain.AcceptPlainBlock(brace, 8, keyword, 42);
        other.Accept(sdlBlockStart, {brace, 0}, 8, brace + 1);
        other.Accept(sdlBlockId, keyword, 8, keyword.data() + keyword.size());
        other.SetId(42);
        EXPECT_EQ(Described(plain), Described(other));
    }
}

TEST(CurrentToken, TheOneBeforeIsTakenAndGivenWithItsText) {
    for (const ePlace place : {ePlace::Source, ePlace::Copied, ePlace::Own}) {
        eCurrentToken token = TokenIn(place);
        accept.happen(token);
        const eCurrentToken::eBefore before = token.Before();
        EXPECT_EQ(before.place, place == ePlace::Own ? ePlace::Own : ePlace::Source);
        EXPECT_EQ(before.state.token.text, place == ePlace::Own ? "own" : "");
        acceptEnd.happen(token);
        token.SetBefore(before);
        token.Back();
        EXPECT_EQ(token.Text(), place == ePlace::Own ? "own" : "abc");
        EXPECT_EQ(token.Place(), before.place);
        EXPECT_EQ(token.Position(), before.state.position);
    }
}

TEST(CurrentToken, TheOneBeforeCanBeReplacedByAStateWithItsOwnText) {
    eCurrentToken token = TokenIn(ePlace::Source);
    accept.happen(token);
    eSDLParserState state;
    state.token.text = "other";
    state.position = source.Begin();
    token.SetBefore(state);
    token.Back();
    EXPECT_EQ(token.Text(), "other");
    EXPECT_EQ(token.Place(), ePlace::Own);
    EXPECT_EQ(token.Position(), source.Begin());
}

TEST(CurrentToken, ACopyOfItGoesOnInACopyOfTheSource) {
    eCurrentToken token = TokenIn(ePlace::Source);
    accept.happen(token);
    const eSource copied;
    eCurrentToken copy(token);
    copy.MoveSource(source.Begin(), copied.Begin());
    EXPECT_EQ(copy.Text().data(), copied.Upper(5).data());
    EXPECT_EQ(copy.Position(), copied.Upper(5).data() + 5);
    copy.Back();
    EXPECT_EQ(copy.Text().data(), copied.Lower(3).data());
    EXPECT_EQ(copy.Position(), copied.Begin() + 3);
    EXPECT_EQ(token.Text(), "ABCDE");
}
