// SPDX-License-Identifier: BSL-1.0
#include "document/mistakes.h"

#include <optional>
#include <string_view>
#include <utility>

#include "sdl/excerpt.h"
#include "sdl/lexer.h"
#include "sdl/nearest.h"

namespace xSDL {
namespace {

constexpr std::size_t kMostNotes = 8;

struct eTexts {
    const char* message;
    const char* expected;
};

eTexts TextsOf(eMistake mistake) {
    switch (mistake) {
    case eMistake::IllegalCharacters:
        return {"No token begins like this!", ""};
    case eMistake::BrokenString:
        return {"The string is broken by the end of the line!", "a \""};
    case eMistake::UnendedString:
        return {"The string has no end!", "a \""};
    case eMistake::NumberExpected:
        return {"Number expected!", "a number"};
    case eMistake::IdentifierExpected:
        return {"Identifier expected!", "a string, an operator, include, define or mod"};
    case eMistake::InvalidControl:
        return {"Invalid control block!", "a string, an operator, include, define or mod"};
    case eMistake::TokenLimit:
        return {"Token limit exceeded!", ""};
    case eMistake::ExtraBlockEnd:
        return {"Nothing is open that this } could close!", ""};
    case eMistake::ExtraClose:
        return {"Nothing is open that this ) could close!", ""};
    case eMistake::Unclosed:
        return {"Block terminator expected!", "a }"};
    }
    return {"", ""};
}

const char* KindOfText(char first) {
    switch (Begins(first)) {
    case eBegins::Word:
        return "the word ";
    case eBegins::String:
        return "the string ";
    case eBegins::Number:
        return first == '+' || first == '-' ? "" : "the number ";
    default:
        return "";
    }
}

std::string NearestControlWord(std::string_view word) {
    eNearest nearest(word);
    for (const std::string_view known : kControlWords)
        nearest.Try(known);
    return std::string(nearest.Word());
}

class eListing {
public:
    eListing(const eSource& itsSource, const eLines& itsLines, const std::string& itsName, std::size_t itsMost)
        : source(itsSource), lines(itsLines), name(itsName), most(itsMost) {}

    void Open(const char*) {}
    void Close(const char*) {}

    void Mistake(eMistake what, const char* begin, const char* end) {
        if (list.size() >= most)
            return;
        const eTexts texts = TextsOf(what);
        xError::eDiagnostic& diagnostic = list.emplace_back();
        using eSeverity = xError::eDiagnostic::eSeverity;
        diagnostic.severity = IsWarning(what) ? eSeverity::Warning : eSeverity::Error;
        diagnostic.message = texts.message;
        diagnostic.expected = texts.expected;
        diagnostic.excerpt = ExcerptOf(begin, end);
        diagnostic.found = FoundAt(begin, end);
        if (what == eMistake::InvalidControl)
            diagnostic.suggestion = NearestControlWord({begin, static_cast<std::size_t>(end - begin)});
        if (what == eMistake::Unclosed)
            NoteUnclosed(&diagnostic);
    }

    std::vector<xError::eDiagnostic> Take() { return std::move(list); }

private:
    std::size_t OffsetOf(const char* at) const { return static_cast<std::size_t>(at - source.At(0)); }

    xError::eExcerpt ExcerptOf(const char* begin, const char* end) const {
        return lines.Excerpt(name, OffsetOf(begin), static_cast<std::size_t>(end - begin));
    }

    static std::string FoundAt(const char* begin, const char* end) {
        if (*begin == 0)
            return "the end of the text";
        const std::string shown = Abridged({begin, static_cast<std::size_t>(end - begin)});
        const char quote = *begin == '"' ? '\0' : '\'';
        return KindOfText(*begin) + (quote ? quote + shown + quote : shown);
    }

    // The innermost first.
    void NoteUnclosed(xError::eDiagnostic* diagnostic) const {
        const eBlockIndex& blocks = source.Blocks();
        std::size_t open = blocks.Around(source.End());
        for (std::size_t notes = 0; open != eBlockIndex::kNone && notes < kMostNotes; ++notes) {
            const std::size_t begin = blocks.Begin(open);
            const char* const message =
                *source.At(begin) == '{' ? "The block begins here." : "The control block begins here.";
            diagnostic->notes.push_back({message, ExcerptOf(source.At(begin), source.At(begin + 1))});
            open = blocks.Around(begin);
        }
        NoteIndentation(diagnostic);
    }

    // People who forget a } indent the next ones as if it were there.
    void NoteIndentation(xError::eDiagnostic* diagnostic) const {
        const eBlockIndex& blocks = source.Blocks();
        for (std::size_t index = blocks.Size(); index-- > 0;) {
            const std::size_t begin = blocks.Begin(index);
            if (!blocks.IsClosed(index) || *source.At(begin) != '{')
                continue;
            const auto opening = IndentAt(begin);
            const auto closing = IndentAt(blocks.End(index) - 1);
            if (!opening || !closing || *closing >= *opening)
                continue;
            diagnostic->notes.push_back({"Perhaps this block is not closed: the } that it has is indented less.",
                                         ExcerptOf(source.At(begin), source.At(begin + 1))});
            return;
        }
    }

    // The number of blanks before the place on its line, if there is nothing else.
    std::optional<std::size_t> IndentAt(std::size_t offset) const {
        constexpr std::size_t kMost = 256;
        std::size_t indent = 0;
        for (; indent < kMost && indent < offset - source.Begin(); ++indent) {
            const char c = *source.At(offset - indent - 1);
            if (c == '\n')
                return indent;
            if (c != ' ' && c != '\t')
                return std::nullopt;
        }
        return indent < kMost ? std::optional(indent) : std::nullopt;
    }

    const eSource& source;
    const eLines& lines;
    const std::string& name;
    std::size_t most;
    std::vector<xError::eDiagnostic> list;
};

} // namespace

std::vector<xError::eDiagnostic> ListMistakes(const eSource& source, const eLines& lines, const std::string& name,
                                              std::size_t most) {
    eListing listing(source, lines, name, most);
    eStructure structure(listing, source.LongestToken());
    structure.Read(source.At(source.Begin()));
    return listing.Take();
}

} // namespace xSDL
