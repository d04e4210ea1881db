// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "qzl_base/shared/unicode.h"
#include "sdl/scan.h"

namespace xSDL {

// The characters of a text in UTF-8; a byte that is part of none counts as one.
std::size_t CountCharacters(std::string_view text);

// The place, or up to three bytes before it the beginning of what may be a character across it. No character is across
// the result.
std::size_t CharacterBegin(std::string_view text, std::size_t place);

// Where a place is in its line.
struct eInLine {
    std::size_t lineBegin = 0;  // in the text
    std::size_t characters = 0; // between the line's beginning and the place
};

// Finds places of one text in their lines. It notes what it has counted, so a place in a long line takes no longer than
// one in a short line, but for the first time that reading has come so far.
class eLineFinder {
public:
    // Offsets count from the beginning of the text, which is the same in every call and is followed by kTextEnd zeros.
    eInLine Find(std::string_view text, std::size_t offset);
    std::size_t LineFeedsBefore(std::string_view text, std::size_t offset);

private:
    // What is known of a place.
    struct eNoted {
        std::size_t at = 0;
        std::size_t feeds = 0; // before it
        eInLine inLine;
    };

    static constexpr std::size_t kStep = 1024;

    static eNoted Continued(const eNoted& from, std::string_view text, std::size_t to);
    eNoted To(std::string_view text, std::size_t offset);

    std::vector<eNoted> noted; // one in every kStep bytes, as far as places have been asked for
};

// The length of the ASCII characters that a text begins with.
inline std::size_t AsciiRun(std::string_view text) {
    constexpr std::uint64_t kBeyondAscii = 0x8080808080808080u;
    std::size_t run = 0;
    while (text.size() - run >= 8 && (Load8(text.data() + run) & kBeyondAscii) == 0)
        run += 8;
    while (run < text.size() && static_cast<unsigned char>(text[run]) < 0x80)
        ++run;
    return run;
}

inline std::size_t CountCharacters(std::string_view text) {
    std::size_t count = 0;
    for (;;) {
        const std::size_t ascii = AsciiRun(text);
        count += ascii;
        text.remove_prefix(ascii);
        if (text.empty())
            return count;
        const unicode::eCharacter character = unicode::FirstBeyondAscii(text);
        count += character.wellFormed ? 1 : character.units;
        text.remove_prefix(character.units);
    }
}

inline std::size_t CharacterBegin(std::string_view text, std::size_t place) {
    const auto continues = [text](std::size_t at) {
        return at < text.size() && (static_cast<unsigned char>(text[at]) & 0xc0) == 0x80;
    };
    std::size_t begin = place;
    while (begin > 0 && place - begin < 3 && continues(begin))
        --begin;
    return continues(begin) ? place : begin;
}

// A line that begins nearby is counted directly.
inline eInLine eLineFinder::Find(std::string_view text, std::size_t offset) {
    const std::size_t nearby = offset - std::min(offset, kStep);
    const std::size_t feed = text.substr(nearby, offset - nearby).rfind('\n');
    if (feed == std::string_view::npos && nearby > 0)
        return To(text, offset).inLine;
    const std::size_t begin = feed == std::string_view::npos ? 0 : nearby + feed + 1;
    return {begin, CountCharacters(text.substr(begin, offset - begin))};
}

inline std::size_t eLineFinder::LineFeedsBefore(std::string_view text, std::size_t offset) {
    return To(text, offset).feeds;
}

inline eLineFinder::eNoted eLineFinder::Continued(const eNoted& from, std::string_view text, std::size_t to) {
    const std::string_view between = text.substr(from.at, to - from.at);
    eNoted result = from;
    result.at = to;
    const std::size_t feeds = CountLineFeeds(between.data(), between.data() + between.size());
    if (feeds == 0) {
        result.inLine.characters += CountCharacters(between);
        return result;
    }
    const std::size_t begin = between.rfind('\n') + 1;
    result.feeds += feeds;
    result.inLine = {from.at + begin, CountCharacters(between.substr(begin))};
    return result;
}

// A noted place is never within a character, whose bytes would then be counted one by one.
inline eLineFinder::eNoted eLineFinder::To(std::string_view text, std::size_t offset) {
    if (noted.empty())
        noted.emplace_back();
    while (noted.size() * kStep + kStep <= offset)
        noted.push_back(Continued(noted.back(), text, CharacterBegin(text, noted.size() * kStep)));
    const std::size_t index = std::min(offset / kStep, noted.size() - 1);
    const eNoted& before = noted[index];
    return Continued(before.at <= offset ? before : noted[index - 1], text, offset);
}

} // namespace xSDL
