#include "document/lines.h"

#include <algorithm>
#include <string_view>

#include "qzl_base/shared/unicode.h"
#include "sdl/scan.h"

namespace xSDL {
namespace {

constexpr std::size_t kPart = 4096;
constexpr std::size_t kShown = 100; // bytes of a line on either side of a place

bool EndsLine(char c) {
    return c == '\n' || c == '\r';
}

// The first character border from the place on, where `at` is one. ASCII is passed 16 characters at a time. A byte that
// is part of no character counts as one.
std::size_t PassCharacters(std::string_view text, std::size_t at, std::size_t to, std::size_t* characters) {
    while (at < to) {
        if (to - at >= 16 && Mask(Load16(text.data() + at)) == 0) {
            at += 16;
            *characters += 16;
            continue;
        }
        const unicode::eCharacter character = unicode::FirstOf(text.substr(at, 4));
        at += character.wellFormed ? character.units : 1;
        ++*characters;
    }
    return at;
}

// With U+FFFD for each byte that is part of no character.
std::string WellFormed(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const unicode::eCharacter character = unicode::FirstOf(text);
        const std::size_t units = character.wellFormed ? character.units : 1;
        result += character.wellFormed ? text.substr(0, units) : "\xEF\xBF\xBD";
        text.remove_prefix(units);
    }
    return result;
}

bool IsContinuation(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

} // namespace

// The byte-order mark is not part of the first line.
void eLines::Know() const {
    if (!known.empty())
        return;
    known.push_back({source.Begin(), 0, source.Begin(), 0});
    while (source.Size() - known.back().offset > kPart)
        known.push_back(From(known.back(), known.back().offset + kPart));
}

// From a known place to the first character border from the offset on.
eLines::eKnown eLines::From(const eKnown& from, std::size_t offset) const {
    eKnown found = from;
    const char* const begin = source.At(from.offset);
    found.lineFeeds += CountLineFeeds(begin, source.At(offset));
    if (found.lineFeeds != from.lineFeeds) {
        found.lineBegin = offset;
        while (*source.At(found.lineBegin - 1) != '\n')
            --found.lineBegin;
        found.characters = 0;
        found.offset = found.lineBegin;
    }
    found.offset = PassCharacters(source.Bytes(0, source.Size()), found.offset, offset, &found.characters);
    return found;
}

eLines::eKnown eLines::At(std::size_t offset) const {
    Know();
    const auto after = std::upper_bound(known.begin(), known.end(), offset,
                                        [](std::size_t sought, const eKnown& each) { return sought < each.offset; });
    return From(after == known.begin() ? *after : after[-1], std::max(offset, source.Begin()));
}

xError::ePlace eLines::Place(const std::string& name, std::size_t offset) const {
    return PlaceOf(name, offset, At(offset));
}

xError::ePlace eLines::PlaceOf(const std::string& name, std::size_t offset, const eKnown& at) {
    const auto counted = [](std::size_t before) { return LinesOn(1, before); };
    return {name, offset, counted(at.lineFeeds), counted(at.characters),
            counted(std::max(offset, at.lineBegin) - at.lineBegin)};
}

xError::eExcerpt eLines::Excerpt(const std::string& name, std::size_t offset, std::size_t length) const {
    xError::eExcerpt excerpt;
    const eKnown at = At(offset);
    excerpt.place = PlaceOf(name, offset, at);
    std::size_t from = std::min(offset, std::max(at.lineBegin, offset - std::min(offset, kShown)));
    while (from > at.lineBegin && IsContinuation(*source.At(from)) && offset - from < kShown + 3)
        --from;
    const std::size_t most = std::min(source.Size(), offset + kShown);
    std::size_t to = offset;
    while (to < most && !EndsLine(*source.At(to)))
        ++to;
    while (to < source.Size() && to < most + 3 && IsContinuation(*source.At(to)))
        ++to;
    excerpt.beginIsCut = from > at.lineBegin;
    excerpt.endIsCut = to < source.Size() && !EndsLine(*source.At(to));
    excerpt.text = WellFormed(source.Bytes(from, offset));
    excerpt.markBegin = excerpt.text.size();
    const std::size_t markEnd = std::min(to, offset + length);
    excerpt.text += WellFormed(source.Bytes(offset, markEnd));
    excerpt.markEnd = excerpt.text.size();
    excerpt.text += WellFormed(source.Bytes(markEnd, to));
    return excerpt;
}

} // namespace xSDL
