#include "unicode.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace unicode {

namespace {

constexpr bool kUtf16 = sizeof(wchar_t) == 2;
constexpr char32_t kLastCode = 0x10ffff;
constexpr std::uint64_t kNotAscii = 0x8080808080808080u;

constexpr bool IsSurrogate(char32_t code) {
    return code >= 0xd800 && code <= 0xdfff;
}

constexpr bool IsHighSurrogate(char32_t code) {
    return code >= 0xd800 && code <= 0xdbff;
}

constexpr bool IsLowSurrogate(char32_t code) {
    return code >= 0xdc00 && code <= 0xdfff;
}

// What may follow the first byte of a sequence: so many bytes in all, of which the second is within the limits and the
// others are continuation bytes. A total of 0 marks a byte that begins no sequence.
struct eSequence {
    std::size_t total;
    unsigned char secondLow;
    unsigned char secondHigh;
};

constexpr eSequence SequenceOf(unsigned char first) {
    if (first < 0xc2 || first > 0xf4)
        return {0, 0, 0};
    if (first < 0xe0)
        return {2, 0x80, 0xbf};
    switch (first) {
    case 0xe0:
        return {3, 0xa0, 0xbf};
    case 0xed:
        return {3, 0x80, 0x9f};
    case 0xf0:
        return {4, 0x90, 0xbf};
    case 0xf4:
        return {4, 0x80, 0x8f};
    default:
        return {first < 0xf0 ? std::size_t{3} : std::size_t{4}, 0x80, 0xbf};
    }
}

unsigned char ByteAt(std::string_view text, std::size_t index) {
    return static_cast<unsigned char>(text[index]);
}

// Whether a run of ASCII, be it an empty one, is to be taken next. Asked between other characters, which mostly stand
// together.
template <class T>
bool BeginsAscii(std::basic_string_view<T> text) {
    return text.empty() || static_cast<std::make_unsigned_t<T>>(text.front()) < 0x80;
}

// Number of ASCII bytes at the beginning, which are widened on the way.
std::size_t WidenAscii(wchar_t* out, std::string_view text) {
    std::size_t run = 0;
    for (; text.size() - run >= sizeof(std::uint64_t); run += sizeof(std::uint64_t)) {
        std::uint64_t bytes;
        std::memcpy(&bytes, text.data() + run, sizeof bytes);
        if ((bytes & kNotAscii) != 0)
            break;
        for (std::size_t index = run; index < run + sizeof bytes; ++index)
            out[index] = static_cast<wchar_t>(text[index]);
    }
    for (; run < text.size() && ByteAt(text, run) < 0x80; ++run)
        out[run] = static_cast<wchar_t>(text[run]);
    return run;
}

// Number of bytes of a character beyond ASCII.
constexpr std::size_t BytesOf(char32_t code) {
    if (code < 0x800)
        return 2;
    return code < 0x10000 ? 3 : 4;
}

// The first character of a text that begins with a byte beyond ASCII, and the number of its bytes; kReplacement and the
// size of the ill-formed part where that byte begins no character.
eCharacter FirstBeyondAscii(std::string_view text) {
    const unsigned char first = ByteAt(text, 0);
    const eSequence sequence = SequenceOf(first);
    if (sequence.total == 0 || text.size() < 2 || ByteAt(text, 1) < sequence.secondLow ||
        ByteAt(text, 1) > sequence.secondHigh)
        return {kReplacement, 1};
    char32_t code = (first & (0xffu >> (sequence.total + 1))) << 6 | (ByteAt(text, 1) & 0x3fu);
    for (std::size_t at = 2; at < sequence.total; ++at) {
        if (at == text.size() || (ByteAt(text, at) & 0xc0) != 0x80)
            return {kReplacement, at};
        code = code << 6 | (ByteAt(text, at) & 0x3fu);
    }
    return {code, sequence.total};
}

// Put a character beyond ASCII and return the end.
char* Put(char* out, char32_t code) {
    const std::size_t total = BytesOf(code);
    for (std::size_t at = total - 1; at > 0; --at, code >>= 6)
        out[at] = static_cast<char>(0x80u | (code & 0x3fu));
    *out = static_cast<char>((0xf00u >> total) | code);
    return out + total;
}

wchar_t* Put(wchar_t* out, char32_t code) {
    if (kUtf16 && code > 0xffff) {
        *out++ = static_cast<wchar_t>(0xd800 + ((code - 0x10000) >> 10));
        code = 0xdc00 + ((code - 0x10000) & 0x3ff);
    }
    *out = static_cast<wchar_t>(code);
    return out + 1;
}

// Number of ASCII characters at the beginning.
std::size_t AsciiRun(std::wstring_view text) {
    constexpr std::size_t kStep = 8;
    std::size_t run = 0;
    for (; text.size() - run >= kStep; run += kStep) {
        char32_t bits = 0;
        for (std::size_t index = run; index < run + kStep; ++index)
            bits |= static_cast<char32_t>(text[index]);
        if (bits >= 0x80)
            break;
    }
    while (run < text.size() && static_cast<char32_t>(text[run]) < 0x80)
        ++run;
    return run;
}

std::size_t NarrowSize(std::wstring_view text) {
    std::size_t size = 0;
    for (;;) {
        const std::size_t run = AsciiRun(text);
        size += run;
        text.remove_prefix(run);
        if (text.empty())
            return size;
        do {
            const auto [code, units] = FirstOf(text);
            size += BytesOf(code);
            text.remove_prefix(units);
        } while (!BeginsAscii(text));
    }
}

char* NarrowAscii(char* out, std::wstring_view text) {
    return std::transform(text.begin(), text.end(), out, [](wchar_t c) { return static_cast<char>(c); });
}

} // namespace

eCharacter FirstOf(std::wstring_view text) {
    const auto first = static_cast<char32_t>(text[0]);
    if (kUtf16 && IsHighSurrogate(first) && text.size() > 1 && IsLowSurrogate(static_cast<char32_t>(text[1])))
        return {0x10000 + ((first - 0xd800) << 10) + (static_cast<char32_t>(text[1]) - 0xdc00), 2};
    return {IsSurrogate(first) || first > kLastCode ? kReplacement : first, 1};
}

std::wstring Widen(std::string_view text) {
    // No sequence of bytes becomes more wide units than it has bytes.
    std::wstring wide(text.size(), L'\0');
    wchar_t* out = wide.data();
    for (;;) {
        const std::size_t run = WidenAscii(out, text);
        out += run;
        text.remove_prefix(run);
        if (text.empty())
            break;
        do {
            const auto [code, units] = FirstBeyondAscii(text);
            out = Put(out, code);
            text.remove_prefix(units);
        } while (!BeginsAscii(text));
    }
    wide.resize(static_cast<std::size_t>(out - wide.data()));
    return wide;
}

std::string Narrow(std::wstring_view text) {
    std::string narrow(NarrowSize(text), '\0');
    char* out = narrow.data();
    for (;;) {
        const std::size_t run = AsciiRun(text);
        out = NarrowAscii(out, text.substr(0, run));
        text.remove_prefix(run);
        if (text.empty())
            return narrow;
        do {
            const auto [code, units] = FirstOf(text);
            out = Put(out, code);
            text.remove_prefix(units);
        } while (!BeginsAscii(text));
    }
}

} // namespace unicode
