// SPDX-License-Identifier: BSL-1.0
#include "utf8.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "qzl_base/shared/unicode.h"

namespace utf8 {

namespace {

constexpr std::uint64_t kNotAscii = 0x8080808080808080u;

unsigned char ByteAt(std::string_view text, std::size_t index) {
    return static_cast<unsigned char>(text[index]);
}

// Whether a run of ASCII, possibly empty, should be taken next. Asked between other characters, which usually occur
// together.
template <class T>
bool BeginsAscii(std::basic_string_view<T> text) {
    return text.empty() || static_cast<std::make_unsigned_t<T>>(text.front()) < 0x80;
}

// Widens the ASCII bytes at the beginning and returns their number.
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

// Writes a character beyond ASCII and returns the end.
wchar_t* Put(wchar_t* out, char32_t code) {
    if (unicode::kIsWideUtf16 && unicode::IsPaired(code)) {
        *out++ = static_cast<wchar_t>(unicode::HighSurrogate(code));
        code = unicode::LowSurrogate(code);
    }
    *out = static_cast<wchar_t>(code);
    return out + 1;
}

// The number of ASCII characters at the beginning.
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
            const unicode::eCharacter first = unicode::FirstOf(text);
            size += unicode::BytesBeyondAscii(first.code);
            text.remove_prefix(first.units);
        } while (!BeginsAscii(text));
    }
}

char* NarrowAscii(char* out, std::wstring_view text) {
    return std::transform(text.begin(), text.end(), out, [](wchar_t c) { return static_cast<char>(c); });
}

} // namespace

std::wstring Widen(std::string_view text) {
    // A sequence of bytes never becomes more wide units than it has bytes.
    std::wstring wide(text.size(), L'\0');
    wchar_t* out = wide.data();
    for (;;) {
        const std::size_t run = WidenAscii(out, text);
        out += run;
        text.remove_prefix(run);
        if (text.empty())
            break;
        do {
            const unicode::eCharacter first = unicode::FirstBeyondAscii(text);
            out = Put(out, first.code);
            text.remove_prefix(first.units);
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
            const unicode::eCharacter first = unicode::FirstOf(text);
            out = unicode::PutBeyondAscii(out, first.code);
            text.remove_prefix(first.units);
        } while (!BeginsAscii(text));
    }
}

} // namespace utf8
