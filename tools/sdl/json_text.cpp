// SPDX-License-Identifier: BSL-1.0
#include "json_text.h"

#include <algorithm>
#include <cstddef>

#include <qzl_base/convert.h>

#include "utf8.h"

namespace json_text {

namespace {

bool IsPlain(char character) {
    const auto byte = static_cast<unsigned char>(character);
    return byte >= 0x20 && byte < 0x7F && byte != '"' && byte != '\\';
}

// The letter of an escape with one; 0 for other characters.
char EscapeLetter(char32_t character) {
    switch (character) {
    case '"':
    case '\\':
        return static_cast<char>(character);
    case '\b':
        return 'b';
    case '\f':
        return 'f';
    case '\n':
        return 'n';
    case '\r':
        return 'r';
    case '\t':
        return 't';
    default:
        return '\0';
    }
}

bool IsEscaped(char32_t character) {
    return character < 0x20 || (character >= 0x7F && character < 0xA0) || character == 0x2028 || character == 0x2029;
}

void AppendUnit(std::string* target, char32_t character) {
    constexpr char kDigits[] = "0123456789abcdef";
    *target += "\\u";
    for (int shift = 12; shift >= 0; shift -= 4)
        *target += kDigits[character >> shift & 0xF];
}

void AppendCharacter(std::string* target, std::string_view text, const utf8::eCharacter& character) {
    if (const char letter = EscapeLetter(character.value))
        target->append(1, '\\').append(1, letter);
    else if (IsEscaped(character.value))
        AppendUnit(target, character.value);
    else
        *target += character.wellFormed ? text.substr(0, character.size) : utf8::kReplacement;
}

} // namespace

void AppendString(std::string* target, std::string_view text) {
    *target += '"';
    while (!text.empty()) {
        const auto plain = static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), IsPlain) - text.begin());
        *target += text.substr(0, plain);
        text.remove_prefix(plain);
        if (text.empty())
            break;
        const utf8::eCharacter character = utf8::FirstOf(text);
        AppendCharacter(target, text, character);
        text.remove_prefix(character.size);
    }
    *target += '"';
}

void AppendFloat(std::string* target, float value) {
    char room[kNumberTextRoom];
    const std::string_view digits(room, static_cast<std::size_t>(PutFloat(room, value) - room));
    const std::size_t point = digits.find('.');
    const bool bare = point != std::string_view::npos &&
                      (point + 1 == digits.size() || digits[point + 1] < '0' || digits[point + 1] > '9');
    *target += digits.substr(0, bare ? point + 1 : digits.size());
    if (bare)
        target->append(1, '0').append(digits.substr(point + 1)); // JSON has a digit after each point
}

} // namespace json_text
