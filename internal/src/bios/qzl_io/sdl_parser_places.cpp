// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl/parser.h>

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

#include <qzl_base/convert.h>
#include <qzl_base/error.h>

#include "qzl_base/shared/unicode.h"
#include "sdl/current_token.h"
#include "sdl/excerpt.h"
#include "sdl/lexer.h"
#include "sdl/source_places.h"

// Where the tokens of a source are, and what is told of them in reports.

namespace {

// Columns and lines count from 1; what an int cannot count stays the largest int.
int CountedFrom1(std::size_t before) {
    constexpr auto kMost = static_cast<std::size_t>(std::numeric_limits<int>::max());
    return static_cast<int>(std::min(before, kMost - 1)) + 1;
}

int LinesBack(int line, std::size_t by) {
    return static_cast<int>(static_cast<unsigned>(line) - static_cast<unsigned>(by));
}

std::string Quoted(const char* what, std::string_view text) {
    return what + (" '" + xSDL::Abridged(text)) + "'";
}

// The bytes of what stands at the beginning of a text: a character, a byte that is part of none, or nothing.
std::size_t SizeOfFirst(std::string_view text) {
    if (text.empty() || text.front() == '\0')
        return 0;
    const unicode::eCharacter character = unicode::FirstOf(text);
    return character.wellFormed ? character.units : 1;
}

constexpr const char* kEndOfText = "the end of the text";

std::string NameOfFirst(std::string_view text) {
    if (SizeOfFirst(text) == 0)
        return kEndOfText;
    const auto byte = static_cast<unsigned char>(text.front());
    if (byte >= 0x20 && unicode::FirstOf(text).wellFormed)
        return Quoted("the character", text.substr(0, SizeOfFirst(text)));
    constexpr const char* kDigits = "0123456789ABCDEF";
    return std::string("the byte 0x") + kDigits[byte >> 4] + kDigits[byte & 0xf];
}

} // namespace

std::string_view eSDLParser::Source() const {
    return {text.data() + passed, text.size() - xSDL::kTextEnd - passed};
}

xSDL::eSourcePlaces& eSDLParser::Places() const {
    if (!places)
        places = std::make_unique<xSDL::eSourcePlaces>();
    return *places;
}

// A caller may have changed the type, and with it the beginning. A string in which the text ends is no token, but it is
// what has been read.
std::string_view eSDLParser::TokenInSource() const {
    const std::string_view source = Source();
    const char* const end = source.data() + source.size();
    if (const char* const string = UnendedString())
        return {string, static_cast<std::size_t>(current.Position() - string)};
    const char* const begin = std::clamp(current.Begin(), source.data(), end);
    const std::string_view after(begin, static_cast<std::size_t>(end - begin));
    if (current.Type() == sdlNone)
        return after.substr(0, 0);
    const char* const textEnd =
        current.SourceText().data() ? current.SourceText().data() + current.SourceText().size() : begin;
    const std::ptrdiff_t size = textEnd - begin + (current.Type() == sdlString ? 1 : 0);
    return after.substr(0, size > 0 ? static_cast<std::size_t>(size) : SizeOfFirst(after));
}

xError::ePlace eSDLParser::PlaceAt(std::size_t offset, int line) const {
    const xSDL::eInLine inLine = Places().lines.Find(Source(), offset);
    return {name, passed + offset, line, CountedFrom1(inLine.characters), CountedFrom1(offset - inLine.lineBegin)};
}

// Only the text of a token contains line feeds, not what reading may have passed since.
xError::ePlace eSDLParser::Place() const {
    const std::string_view token = TokenInSource();
    const auto feeds = xSDL::CountLineFeeds(token.data(), token.data() + token.size());
    return PlaceAt(static_cast<std::size_t>(token.data() - Source().data()), LinesBack(current.Line(), feeds));
}

xError::eExcerpt eSDLParser::Excerpt() const {
    return ExcerptAt(Place(), TokenInSource().size());
}

xError::eExcerpt eSDLParser::ExcerptAt(xError::ePlace place, std::size_t size) const {
    const auto offset = static_cast<std::size_t>(place.offset - passed);
    const std::size_t lineBegin = Places().lines.Find(Source(), offset).lineBegin;
    return xSDL::ExcerptAt(std::move(place), Source(), lineBegin, offset, size);
}

bool eSDLParser::Has(const xError::ePlace& place) const {
    if (place.source != name || place.offset < passed || place.offset - passed > Source().size())
        return false;
    return PlaceAt(static_cast<std::size_t>(place.offset - passed), place.line) == place;
}

xError::eExcerpt eSDLParser::ExcerptOf(const xError::ePlace& place) const {
    const std::string_view after = Source().substr(static_cast<std::size_t>(place.offset - passed));
    xSDL::eLexeme token;
    int line = 0;
    const auto size = static_cast<std::size_t>(xSDL::CutAt(after.data(), &line, &token) - after.data());
    return ExcerptAt(place, size > 0 ? size : SizeOfFirst(after));
}

xError::eExcerpt eSDLParser::Beginning() const {
    return xSDL::PlaceAlone({.source = name});
}

// Everything that begins at the position of the token before, or after it, may still be unread.
bool eSDLParser::FindOpenBlock(std::size_t* closed, xError::eExcerpt* found) const {
    const std::string_view source = Source();
    const auto offsetOf = [this](const char* position) { return static_cast<std::size_t>(position - text.data()); };
    const std::size_t place = offsetOf(current.Position());
    const std::size_t settled = current.PositionBefore() ? std::min(offsetOf(current.PositionBefore()), place) : place;
    xSDL::eOpenBlocks& blocks = Places().Blocks();
    const xSDL::eOpenBlocks::eOpen open = blocks.Find(text.data(), passed, settled, place);
    const std::size_t count = blocks.Count(open);
    if (count <= *closed) {
        *closed += open.surplus - count;
        return false;
    }
    const std::size_t offset = blocks.At(open, *closed) - passed;
    *found = ExcerptAt(PlaceAt(offset, CountedFrom1(Places().lines.LineFeedsBefore(source, offset))), 1);
    return true;
}

std::string eSDLParser::Found() const {
    const std::string_view token = TokenInSource();
    switch (current.Type()) {
    case sdlNone:
        return UnendedString() ? "a text without its closing quote" : kEndOfText;
    case sdlIdent:
    case sdlKeyword:
    case sdlBlockId:
        return Quoted("the word", token);
    case sdlString:
        return "the text " + xSDL::Abridged(token);
    case sdlInt:
    case sdlHex:
    case sdlNumber:
    case sdlFloat:
        return Quoted(token.starts_with('(') ? "the result of" : "the number", token);
    case sdlOperator:
        return Quoted("the operator", token);
    case sdlBlockStart:
    case sdlBlockEnd:
    case sdlOpen:
    case sdlClose:
        return "'" + xSDL::Abridged(token) + "'";
    case sdlError:
        break;
    }
    if (tooLong)
        return "a longer one";
    return token.starts_with('"') ? "a text that the end of its line breaks" : NameOfFirst(token);
}

std::string eSDLParser::CharacterAt(const char* at) const {
    return NameOfFirst(Source().substr(static_cast<std::size_t>(at - Source().data())));
}

const char* eSDLParser::UnendedString() const {
    if (current.Type() != sdlNone || !current.PositionBefore())
        return nullptr;
    const char* const begin = xSDL::FindToken(current.PositionBefore(), 0).at;
    return *begin == '"' ? begin : nullptr;
}
