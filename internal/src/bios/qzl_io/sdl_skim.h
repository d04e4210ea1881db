#pragma once

#include <bit>
#include <string_view>

#include "sdl_lexer.h"

// Passing a block without cutting its tokens.
namespace xSDL {

enum class eSkimEnd {
    Terminator, // the } or ) that matches no { or ( on the way
    Error,      // where the lexer says sdlError
    EndOfText
};

struct eSkimmed {
    eSkimEnd end = eSkimEnd::EndOfText;
    const char* stop = nullptr;        // the terminator, or the character that the lexer would stop at
    const char* anchor = nullptr;      // a place from which cutting tokens gives the last ones before `stop`
    int depth = 0;                     // of blocks open at `stop`
    const char* lastStart = nullptr;   // the { of the last block start, null if there was none
    const char* startBefore = nullptr; // that of the one before
    const char* counted = nullptr;     // a place near the end of the pass
    int lines = 0;                     // line feeds before it
};

// The mark of the block that starts with the brace, without its first #.
inline std::string_view MarkOf(const char* brace) {
    eLexeme mark;
    CutMark(brace + 1, &mark);
    return mark.length == 0 ? std::string_view() : std::string_view(mark.begin + 1, mark.length - 1);
}

// Line feeds from the beginning of the pass to a place near its end.
inline int LinesBefore(const char* place, const eSkimmed& skimmed) {
    return place < skimmed.counted ? skimmed.lines - CountLineFeeds(place, skimmed.counted)
                                   : skimmed.lines + CountLineFeeds(skimmed.counted, place);
}

// Letters, digits and whatever else means nothing to a block's nesting and is no error wherever a token may begin.
inline __m128i IsPlain(__m128i bytes) {
    const __m128i numbers = _mm_andnot_si128(Or(Is(bytes, ','), Is(bytes, '.')), IsFrom(bytes, '*', '9'));
    return Or(Or(IsLetter(bytes), numbers), Or(IsBlank(bytes), Is(bytes, '%')));
}

// One pass over a block. Only strings, comments and block starts are looked at by their characters; between them the
// text is tested 16 bytes at a time for what is neither plain nor harmless.
class eSkim {
public:
    // From the position, a boundary between tokens, with so many blocks open.
    eSkim(const char* position, int depth) : at(position), boundary(position) {
        skimmed.anchor = position;
        skimmed.counted = position;
        skimmed.depth = depth;
    }

    eSkimmed Run() {
        while (PassBlock())
            if (at - skimmed.counted >= kCountedAtOnce)
                CountLines();
        return skimmed;
    }

private:
    // Little enough to be in the nearest cache still.
    static constexpr std::ptrdiff_t kCountedAtOnce = 4096;

    void CountLines() {
        skimmed.lines += CountLineFeeds(skimmed.counted, at);
        skimmed.counted = at;
    }

    // Passes 16 characters, and more where the last token among them is longer. False when the skimming ends.
    bool PassBlock() {
        const char* const block = at;
        for (unsigned stops = Stops(); stops; stops &= ~0u << (at - block)) {
            at = block + std::countr_zero(stops);
            if (!Pass(*at))
                return false;
            if (at - block >= 16)
                return true;
        }
        at = block + 16;
        return true;
    }

    // Which of the next 16 characters have to be looked at.
    unsigned Stops() const {
        const __m128i bytes = Load16(at);
        const unsigned stops = Mask(IsPlain(bytes)) ^ 0xFFFFu;
        const unsigned points = Mask(Is(bytes, '.'));
        return points ? stops & ~(points & AfterPlainIntegers(bytes)) : stops;
    }

    // The places behind digits that follow a blank, or a blank and a sign, where a point is part of a number.
    unsigned AfterPlainIntegers(__m128i bytes) const {
        const unsigned digits = Mask(IsDigit(bytes));
        const unsigned signs = Mask(Or(Is(bytes, '+'), Is(bytes, '-')));
        const unsigned begins = (Mask(IsBlank(bytes)) << 1) | (at == boundary ? 1u : 0u);
        const unsigned integers = digits & (begins | ((signs & begins) << 1));
        return (digits + integers) & ~digits;
    }

    // Passes the character that is not plain. False when it ends the skimming.
    bool Pass(char c) {
        switch (c) {
        case '{':
            return PassMark();
        case '(':
            ++skimmed.depth;
            return PassToken(at + 1);
        case '}':
        case ')':
            if (skimmed.depth == 0)
                return Stop(eSkimEnd::Terminator, at);
            --skimmed.depth;
            return PassToken(at + 1);
        case '"':
            return PassString();
        case ';':
            KeepLastPlainToken();
            boundary = at = PassComment(at + 1);
            return true;
        case '.':
            return PassPoint();
        case '\0':
            return Stop(eSkimEnd::EndOfText, at);
        default:
            return Stop(eSkimEnd::Error, at);
        }
    }

    bool PassToken(const char* end) {
        skimmed.anchor = at;
        boundary = at = end;
        return true;
    }

    bool PassMark() {
        ++skimmed.depth;
        skimmed.startBefore = skimmed.lastStart;
        skimmed.lastStart = at;
        eLexeme mark;
        return PassToken(at[1] == '#' ? CutMark(at + 1, &mark) : at + 1);
    }

    bool PassString() {
        if (const char* const end = PassStringBody(at + 1); *end == '"')
            return PassToken(end + 1);
        eLexeme string;
        int line = 0;
        const char* const end = CutString(at + 1, &line, &string);
        if (string.type != sdlString)
            return Stop(string.type == sdlError ? eSkimEnd::Error : eSkimEnd::EndOfText, end);
        return PassToken(end);
    }

    // A point belongs to a number when nothing but a sign and digits stand between it and a blank. Everything else is
    // rare enough to ask the lexer.
    bool PassPoint() {
        const char* digits = at;
        while (digits > boundary && Has(stInteger, digits[-1]))
            --digits;
        if (digits == at)
            return PassPointByTokens();
        digits -= digits > boundary && (digits[-1] == '-' || digits[-1] == '+');
        if (digits > boundary && !Has(stBetween, digits[-1]))
            return PassPointByTokens();
        ++at;
        return true;
    }

    bool PassPointByTokens() {
        const char* position = LastPlainRun(at);
        const char* begin = position;
        for (int line = 0; position <= at;) {
            eLexeme token;
            begin = position;
            CutToken(&position, &line, &token);
            if (token.type == sdlError)
                return Stop(eSkimEnd::Error, at);
        }
        skimmed.anchor = begin;
        boundary = at = position;
        return true;
    }

    // Where the characters other than blanks before `end` begin.
    const char* LastPlainRun(const char* end) const {
        while (end > boundary && !Has(stBetween, end[-1]))
            --end;
        return end;
    }

    // Makes the plain run before `at`, if there is one since the last other token, the place to begin at.
    void KeepLastPlainToken() {
        const char* end = at;
        while (end > boundary && Has(stBetween, end[-1]))
            --end;
        if (end > boundary)
            skimmed.anchor = LastPlainRun(end);
    }

    bool Stop(eSkimEnd end, const char* stop) {
        KeepLastPlainToken();
        skimmed.end = end;
        skimmed.stop = stop;
        return false;
    }

    const char* at;
    const char* boundary; // end of the last string, comment, mark or brace: a boundary between tokens
    eSkimmed skimmed;
};

} // namespace xSDL
