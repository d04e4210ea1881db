// SPDX-License-Identifier: BSL-1.0
#include <qzl_base/convert.h>

#include <array>
#include <bit>
#include <cstring>
#include <emmintrin.h>
#include <string>
#include <string_view>

#include "qzl_base/shared/ascii.h"
#include "qzl_base/shared/escapes.h"

namespace {

constexpr std::string_view kHexDigits = "0123456789abcdef";
constexpr std::size_t kLongestEscape = 4; // "\xHH"

// For each byte the letter of its short escape sequence, 'x' for a hexadecimal one, or 0 if it needs none.
constexpr std::array<char, 256> kEscapes = [] {
    std::array<char, 256> letters{};
    for (std::size_t c = 0; c != letters.size(); ++c)
        letters[c] = escapes::IsNeeded(static_cast<char>(c)) ? 'x' : '\0';
    letters['\n'] = 'n';
    letters['\r'] = 'r';
    letters['\t'] = 't';
    letters['"'] = '"';
    letters['\\'] = '\\';
    return letters;
}();

char EscapeOf(char c) {
    return kEscapes[static_cast<unsigned char>(c)];
}

constexpr std::size_t kWord = 8;

// The number of bytes, of the first eight, before one that needs an escape. The zeros above those count as such.
std::size_t PlainRunOfWord(const char* text) {
    const __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(text));
    return static_cast<std::size_t>(std::countr_zero(escapes::AreNeeded(bytes)));
}

// The number of bytes before the first one that needs an escape.
std::size_t PlainRun(const char* text, std::size_t size) {
    std::size_t run = 0;
    for (; size - run >= kWord; run += kWord)
        if (const std::size_t plain = PlainRunOfWord(text + run); plain != kWord)
            return run + plain;
    // The rest of a long text is the end of its last word, whose beginning is known to be plain.
    if (run != 0)
        return run == size ? size : size - kWord + PlainRunOfWord(text + size - kWord);
    while (run < size && EscapeOf(text[run]) == 0)
        ++run;
    return run;
}

std::size_t EscapeSize(char c) {
    return EscapeOf(c) == 'x' ? kLongestEscape : 2;
}

char* PutEscape(char* out, char c) {
    const char escape = EscapeOf(c);
    *out++ = '\\';
    *out++ = escape;
    if (escape != 'x')
        return out;
    *out++ = kHexDigits[static_cast<unsigned char>(c) >> 4];
    *out++ = kHexDigits[static_cast<unsigned char>(c) & 15];
    return out;
}

// Writes the character that a hexadecimal escape stands for. False if the text does not begin with one.
bool PutHexadecimal(char* out, std::string_view escape) {
    if (escape.size() < kLongestEscape)
        return false;
    const int high = ascii::HexDigit(escape[2]);
    const int low = ascii::HexDigit(escape[3]);
    if (high < 0 || low < 0)
        return false;
    *out = static_cast<char>(high << 4 | low);
    return true;
}

// Writes the character that the escape at the beginning of the text stands for, and returns the size of the escape; 0
// if there is none.
std::size_t PutUnescaped(char* out, std::string_view escape) {
    if (escape.size() < 2)
        return 0;
    switch (escape[1]) {
    case 'n':
        *out = '\n';
        return 2;
    case 'r':
        *out = '\r';
        return 2;
    case 't':
        *out = '\t';
        return 2;
    case '"':
        *out = '"';
        return 2;
    case '\\':
        *out = '\\';
        return 2;
    case 'x':
        return PutHexadecimal(out, escape) ? kLongestEscape : 0;
    default:
        return 0;
    }
}

void Escape(std::string* text) {
    const std::size_t size = text->size();
    const std::size_t escaped = EscapedSize(*text);
    if (escaped == size)
        return;
    // The text moves to the end of the room and is read there, ahead of the place where it is written.
    text->resize(escaped);
    char* const begin = text->data();
    char* const source = begin + (escaped - size);
    std::memmove(source, begin, size);
    PutEscaped(begin, {source, size});
}

// Moves the characters up to the next backslash, or to the end, and returns their number.
std::size_t MoveRun(char* out, const char* at, const char* end) {
    const auto left = static_cast<std::size_t>(end - at);
    const void* const backslash = std::memchr(at, '\\', left);
    const std::size_t run = backslash ? static_cast<std::size_t>(static_cast<const char*>(backslash) - at) : left;
    std::memmove(out, at, run);
    return run;
}

void Unescape(std::string* text) {
    const std::size_t first = text->find('\\');
    if (first == std::string::npos)
        return;
    const char* const end = text->data() + text->size();
    const char* at = text->data() + first;
    char* out = text->data() + first;
    while (at != end) {
        const std::size_t escape = PutUnescaped(out, {at, static_cast<std::size_t>(end - at)});
        if (escape == 0)
            *out = *at;
        at += escape == 0 ? 1 : escape;
        const std::size_t run = MoveRun(++out, at, end);
        out += run;
        at += run;
    }
    text->resize(static_cast<std::size_t>(out - text->data()));
}

} // namespace

void ConvertEscSequence(std::string* text, bool escape) {
    if (escape)
        Escape(text);
    else
        Unescape(text);
}

std::size_t EscapedSize(std::string_view text) {
    std::size_t size = text.size();
    for (std::size_t at = PlainRun(text.data(), text.size()); at < text.size();) {
        size += EscapeSize(text[at]) - 1;
        ++at;
        at += PlainRun(text.data() + at, text.size() - at);
    }
    return size;
}

char* PutEscaped(char* out, std::string_view text) {
    const char* at = text.data();
    const char* const end = at + text.size();
    for (;;) {
        const std::size_t run = PlainRun(at, static_cast<std::size_t>(end - at));
        if (run != 0)
            std::memmove(out, at, run);
        out += run;
        at += run;
        if (at == end)
            return out;
        out = PutEscape(out, *at++);
    }
}

void AppendEscaped(std::string* target, std::string_view text) {
    const std::size_t size = target->size();
    target->resize(size + EscapedSize(text));
    PutEscaped(target->data() + size, text);
}
