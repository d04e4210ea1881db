// SPDX-License-Identifier: BSL-1.0
#include <cstddef>
#include <string>
#include <string_view>

#include <qzl_base/convert.h>

#include "require.h"
#include "target.h"

// Any bytes as a text: escaped and unescaped one character at a time.

namespace {

int HexadecimalDigit(char c) {
    return static_cast<int>(
        std::string_view("0123456789abcdef").find(static_cast<char>(c >= 'A' && c <= 'F' ? c + 32 : c)));
}

std::string PlainlyEscaped(std::string_view text) {
    constexpr std::string_view kCharacters = "\"\\\n\r\t", kLetters = "\"\\nrt", kDigits = "0123456789abcdef";
    std::string escaped;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (const std::size_t which = kCharacters.find(c); which != kCharacters.npos)
            (escaped += '\\') += kLetters[which];
        else if (byte < 32 || byte == 127)
            ((escaped += "\\x") += kDigits[byte / 16]) += kDigits[byte % 16];
        else
            escaped += c;
    }
    return escaped;
}

std::string PlainlyUnescaped(std::string_view text) {
    constexpr std::string_view kCharacters = "\"\\\n\r\t", kLetters = "\"\\nrt";
    std::string unescaped;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const std::size_t which = at + 1 < text.size() ? kLetters.find(text[at + 1]) : kLetters.npos;
        const bool hexadecimal = text.substr(at).starts_with("\\x") && at + 3 < text.size() &&
                                 HexadecimalDigit(text[at + 2]) >= 0 && HexadecimalDigit(text[at + 3]) >= 0;
        if (text[at] == '\\' && which != kLetters.npos) {
            unescaped += kCharacters[which];
            ++at;
        } else if (hexadecimal) {
            unescaped += static_cast<char>(16 * HexadecimalDigit(text[at + 2]) + HexadecimalDigit(text[at + 3]));
            at += 3;
        } else {
            unescaped += text[at];
        }
    }
    return unescaped;
}

std::string Converted(std::string_view input, bool escape) {
    std::string text(input);
    ConvertEscSequence(&text, escape);
    return text;
}

} // namespace

void Check(std::string_view input) {
    const std::string escaped = Converted(input, true);
    RequireEqual(escaped, PlainlyEscaped(input), "the escaped text");
    RequireEqual(Converted(escaped, false), std::string(input), "the text that comes back");
    RequireEqual(Converted(input, false), PlainlyUnescaped(input), "the unescaped text");

    Require(EscapedSize(input) == escaped.size(), "the size of the escaped text");
    std::string room(escaped.size() + 1, '#');
    Require(PutEscaped(room.data(), input) == &room.back() && room.back() == '#', "the end of the escaped text");
    room.pop_back();
    RequireEqual(room, escaped, "the escaped text in a buffer");
    std::string target = "\"";
    AppendEscaped(&target, input);
    RequireEqual(target, '"' + escaped, "the appended text");
}

void Work(std::string_view input) {
    Converted(input, true);
    Converted(input, false);
}
