// SPDX-License-Identifier: BSL-1.0
#include "lsp/text_lines.h"

#include <algorithm>

#include "utf8.h"

namespace {

std::size_t UnitsOf(const utf8::eCharacter& character) {
    return character.value > 0xFFFF ? 2U : 1U;
}

} // namespace

eTextLines::eTextLines(std::string_view linesOf) : text(linesOf), begins{0} {
    for (std::size_t at = text.find_first_of("\r\n"); at != std::string_view::npos;
         at = text.find_first_of("\r\n", at)) {
        at += text.substr(at, 2) == "\r\n" ? 2U : 1U;
        begins.push_back(at);
    }
}

std::size_t eTextLines::EndOf(std::size_t line) const {
    return std::min(text.find_first_of("\r\n", begins[line]), text.size());
}

ePosition eTextLines::PositionOf(std::size_t offset) const {
    offset = std::min(offset, text.size());
    const auto after = std::upper_bound(begins.begin(), begins.end(), offset);
    ePosition position{static_cast<std::size_t>(after - begins.begin()) - 1, 0};
    for (std::size_t at = begins[position.line]; at < offset;) {
        const utf8::eCharacter character = utf8::FirstOf(text.substr(at));
        at += character.size;
        position.unit += UnitsOf(character);
    }
    return position;
}

std::size_t eTextLines::OffsetOf(ePosition position) const {
    if (position.line >= begins.size())
        return text.size();
    const std::size_t end = EndOf(position.line);
    std::size_t at = begins[position.line];
    for (std::size_t units = 0; at < end && units < position.unit;) {
        const utf8::eCharacter character = utf8::FirstOf(text.substr(at));
        units += UnitsOf(character);
        at += character.size;
    }
    return at;
}
