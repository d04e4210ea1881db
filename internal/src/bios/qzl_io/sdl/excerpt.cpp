// SPDX-License-Identifier: BSL-1.0
#include "sdl/excerpt.h"

#include <algorithm>
#include <utility>

#include "qzl_base/shared/unicode.h"
#include "sdl/line_finder.h"

namespace xSDL {

namespace {

constexpr std::size_t kShown = 100;   // bytes of a line on either side of a place
constexpr std::size_t kAbridged = 60; // bytes of a text in a message

} // namespace

xError::eExcerpt PlaceAlone(xError::ePlace place) {
    xError::eExcerpt excerpt;
    excerpt.place = std::move(place);
    return excerpt;
}

std::string WellFormed(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const unicode::eCharacter character = unicode::FirstOf(text);
        for (std::size_t unit = 0; !character.wellFormed && unit < character.units; ++unit)
            result += "\xEF\xBF\xBD";
        if (character.wellFormed)
            result += text.substr(0, character.units);
        text.remove_prefix(character.units);
    }
    return result;
}

std::string Abridged(std::string_view text) {
    if (text.size() <= kAbridged)
        return WellFormed(text);
    return WellFormed(text.substr(0, CharacterBegin(text, kAbridged))) + "...";
}

xError::eExcerpt ExcerptAt(xError::ePlace place, std::string_view text, std::size_t lineBegin, std::size_t offset,
                           std::size_t length) {
    const std::size_t farthest = std::min(text.size(), offset + kShown);
    const std::size_t found = text.substr(0, farthest).find_first_of(std::string_view("\n\0", 2), offset);
    const bool endIsCut = found == std::string_view::npos && farthest < text.size();
    const std::size_t begin = offset - lineBegin > kShown ? CharacterBegin(text, offset - kShown) : lineBegin;
    std::size_t end = endIsCut ? std::max(offset, CharacterBegin(text, farthest)) : std::min(found, farthest);
    if (!endIsCut && end > begin && text[end - 1] == '\r')
        --end;
    const std::size_t markBegin = std::min(offset, end);
    const std::size_t markEnd = std::clamp(offset + length, markBegin, end);
    xError::eExcerpt excerpt = PlaceAlone(std::move(place));
    excerpt.beginIsCut = begin > lineBegin;
    excerpt.endIsCut = endIsCut;
    excerpt.text = WellFormed(text.substr(begin, markBegin - begin));
    excerpt.markBegin = excerpt.text.size();
    excerpt.text += WellFormed(text.substr(markBegin, markEnd - markBegin));
    excerpt.markEnd = excerpt.text.size();
    excerpt.text += WellFormed(text.substr(markEnd, end - markEnd));
    return excerpt;
}

} // namespace xSDL
