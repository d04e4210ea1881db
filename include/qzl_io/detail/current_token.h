// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include <qzl_io/sdl/token.h>

namespace xSDL {

// The token that a parser has read last, the one before it, and where their texts are.
//
// Most callers take a value or a copy of a text. So a token's text stays in the source, and goes into the token's own
// string (eSDLParserToken::text) only for those who ask for that string.
//
//     place    the text is              the string is
//     Source   in the source            out of date
//     Copied   in the source            a copy of the text, or what a borrower has made of that
//     Own      only in the string       the text
//
//     what happens                        from Source   from Copied                    from Own
//     Accept: a token is cut              Source        Source                         Source
//     AcceptEnd: the source has ended     Source        Copied                         Own
//     String: the string is asked for     Copied        Copied                         Own
//     OwnString: it is to be changed      Own           Own                            Own
//     it becomes the token before         Source        Source; Own where it differs   Own
//     Back: it is the current one again   Source        -                              Own
//
// Lend lends the token for the parser's life: a caller may keep a reference to it, which shows every token that
// follows, and may change it. From then on a token that becomes Source is Copied at once.
//
// The texts of plain tokens are short, but for strings, so these alone are compared with the limit. A limit that
// forbids short texts lends the token, so that no token is plain.
//
// Invariants: a lent token is not Source. The token before is not Copied. If the position of the token before is null,
// there is none. Texts in the source are followed there by kTextEnd characters that may be read.
class eCurrentToken {
public:
    enum class ePlace : unsigned char { Source, Copied, Own };

    // Makes an empty token in line 1 the current one, with none before it.
    void Start(const char* position);

    // Accepts a token of the type with its text in the source; reading continues at `line` and `next`. The values
    // remain those of the token before. False if the text exceeds the limit; the current token is then
    // as it was, with none before it.
    bool Accept(eSDLParserLexType type, std::string_view textInSource, int line, const char* next);
    // Whether a token can be accepted by AcceptPlain: it is not lent, and no string has to be kept.
    bool IsPlain() const { return !lent && text.place != ePlace::Own; }
    // Accept for a plain token, without a call. A text of more than kLongestPlain bytes must be known to be admitted.
    void AcceptPlain(eSDLParserLexType type, std::string_view textInSource, int line, const char* next);
    static constexpr std::size_t kLongestPlain = 16;
    // Accepts the { and the keyword of a block as plain tokens; the current one is then of type sdlBlockId.
    void AcceptPlainBlock(const char* brace, int line, std::string_view keyword, int id);
    // Accepts the end of the source, which is no token. The text also remains that of the token before.
    void AcceptEnd(int line, const char* next);
    // Continues reading elsewhere.
    void JumpTo(const char* next, int line);

    // Makes the token before the current one, and forgets that there was one. Without one, does nothing.
    void Back();
    void ForgetBefore();
    void SetBefore(const eSDLParserState& state);
    // The state before the current token, which can be set again while the source is the same. Its string has its text
    // only if the place is Own.
    struct eBefore {
        eSDLParserState state;
        std::string_view textInSource;
        ePlace place = ePlace::Source;
    };
    eBefore Before() const;
    void SetBefore(eBefore saved);

    // Where the token begins in the source, with its quote or brace; where reading stands if it is no token or did not
    // come from the source. If a caller has changed the type, up to two characters beside that.
    const char* Begin() const;
    // For a token that has become another one: what it stands for in the source. Only if the place is Own.
    void StandFor(std::string_view textInSource) { text.source = textInSource; }

    // The text, wherever it is; as the token's string; as the token's string, about to be changed.
    std::string_view Text() const;
    // The text in the source of the token that was cut last, whatever its string has become.
    std::string_view SourceText() const { return text.source; }
    const std::string& String();
    std::string& OwnString();

    void Lend();
    // From now on texts of more bytes are not accepted. Forgets the token before, which may have such a text.
    void Limit(std::size_t bytes);
    bool Admits(std::size_t bytes) const { return bytes <= longest; }
    bool IsLent() const { return lent; }
    // The current token. Only for a lent token.
    eSDLParserToken& Token() { return now.token; }
    const eSDLParserState& State() const { return now; }

    eSDLParserLexType Type() const { return now.token.type; }
    int Int() const { return now.token.intValue; }
    float Float() const { return now.token.floatValue; }
    int Line() const { return now.line; }
    const char* Position() const { return now.position; }
    // Where reading stands after Back; null if there is no token before.
    const char* PositionBefore() const { return before.position; }
    ePlace Place() const { return text.place; }

    void SetType(eSDLParserLexType type) { now.token.type = type; }
    void SetId(int id) { now.token.intValue = id; }
    // Each function sets both values.
    void SetInt(int value);
    void SetFloat(float value);

    // Redirects what points into the source to a copy of the source.
    void MoveSource(const char* from, const char* to);

private:
    struct eText {
        std::string_view source;
        ePlace place = ePlace::Source;
    };

    void Take(eSDLParserLexType type, std::string_view textInSource, int line, const char* next);
    void Remember();
    void RememberPlain();
    void KeepString();
    bool IsChanged() const;
    bool Fill();
    bool FillLong();
    bool Refuse();

    // The usual libraries keep this many characters in a std::string without allocating memory.
    static constexpr std::size_t kShortText = 15;

    eSDLParserState now;
    eSDLParserState before;
    eText text;
    eText textBefore;
    bool lent = false;
    std::size_t filledInline = kShortText;   // bytes up to which the string is filled without a call
    std::size_t longest = std::string::npos; // of the texts that are accepted
};

} // namespace xSDL
