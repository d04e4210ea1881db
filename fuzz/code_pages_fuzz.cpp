// SPDX-License-Identifier: BSL-1.0
#include <cstddef>
#include <string>
#include <string_view>

#include <qzl_base/convert.h>

#include "require.h"
#include "script.h"
#include "target.h"

// The first byte chooses a code page, the others are a narrow text in it and, read in another way, a wide text.

namespace {

constexpr int kUtf8 = 65001;
constexpr int kWindows1252 = 1252;
constexpr wchar_t kReplacement = 0xFFFD;

struct ePage {
    int number;
    bool joins; // the characters of two texts together are those of each
};

constexpr ePage kPages[] = {
    {kUtf8, true}, {kWindows1252, true}, {437, true},   {850, true},   {866, true},   {874, true},    {932, true},
    {936, true},   {949, true},          {950, true},   {1250, true},  {1251, true},  {1253, true},   {1254, true},
    {1256, true},  {1257, true},         {20127, true}, {20866, true}, {20932, true}, {28592, true},  {28605, true},
    {37, true},    {1255, false},        {1258, false}, {1361, false}, {10000, true}, {50220, false}, {50225, false},
    {54936, true}, {65000, false},       {0, true},     {12345, true}, {-1, true},    {1200, false},
};

bool IsContinuation(unsigned char byte) {
    return byte >= 0x80 && byte <= 0xBF;
}

// The bytes that a first byte promises; 0 if it begins no character.
std::size_t PromisedSize(unsigned char first) {
    if (first < 0x80)
        return 1;
    if (first >= 0xC2 && first <= 0xDF)
        return 2;
    if (first >= 0xE0 && first <= 0xEF)
        return 3;
    return first >= 0xF0 && first <= 0xF4 ? 4 : 0;
}

bool MayBeSecond(unsigned char first, unsigned char second) {
    if (first == 0xE0)
        return second >= 0xA0 && second <= 0xBF;
    if (first == 0xED)
        return second >= 0x80 && second <= 0x9F;
    if (first == 0xF0)
        return second >= 0x90 && second <= 0xBF;
    if (first == 0xF4)
        return second >= 0x80 && second <= 0x8F;
    return IsContinuation(second);
}

void Append(std::wstring* wide, unsigned long code) {
    if (sizeof(wchar_t) == 2 && code > 0xFFFF) {
        *wide += static_cast<wchar_t>(0xD7C0 + (code >> 10));
        code = 0xDC00 + (code & 0x3FF);
    }
    *wide += static_cast<wchar_t>(code);
}

// Each character and each ill-formed part, which is as long as it can begin a character.
std::wstring PlainlyWidened(std::string_view text) {
    std::wstring wide;
    for (std::size_t at = 0; at < text.size();) {
        const auto byte = [&](std::size_t index) { return static_cast<unsigned char>(text[at + index]); };
        const std::size_t promised = PromisedSize(byte(0));
        std::size_t size = 1;
        while (size < promised && at + size < text.size() &&
               (size == 1 ? MayBeSecond(byte(0), byte(1)) : IsContinuation(byte(size))))
            ++size;
        unsigned long code = promised < 2 ? byte(0) : byte(0) & (0x7Fu >> promised);
        for (std::size_t index = 1; index < size; ++index)
            code = code << 6 | (byte(index) & 0x3Fu);
        Append(&wide, size == promised ? code : kReplacement);
        at += size;
    }
    return wide;
}

bool IsHighSurrogate(wchar_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}
bool IsLowSurrogate(wchar_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

std::string PlainlyNarrowed(std::wstring_view text) {
    std::string narrow;
    for (std::size_t at = 0; at < text.size(); ++at) {
        auto code = static_cast<unsigned long>(text[at]);
        const bool paired =
            sizeof(wchar_t) == 2 && IsHighSurrogate(text[at]) && at + 1 < text.size() && IsLowSurrogate(text[at + 1]);
        if (paired)
            code = 0x10000 + ((code - 0xD800) << 10) + (static_cast<unsigned long>(text[++at]) - 0xDC00);
        else if (IsHighSurrogate(text[at]) || IsLowSurrogate(text[at]) || code > 0x10FFFF)
            code = kReplacement;
        const auto put = [&](unsigned long bits) { narrow += static_cast<char>(bits); };
        const auto tail = [&](int shift) { put(0x80 | (code >> shift & 0x3F)); };
        if (code < 0x80)
            put(code);
        else if (code < 0x800)
            put(0xC0 | code >> 6), tail(0);
        else if (code < 0x10000)
            put(0xE0 | code >> 12), tail(6), tail(0);
        else
            put(0xF0 | code >> 18), tail(12), tail(6), tail(0);
    }
    return narrow;
}

bool IsWellFormed(const std::wstring& wide) {
    return wide.find(kReplacement) == wide.npos;
}

void CheckUtf8(const std::string& narrow, const std::wstring& wide) {
    RequireEqual(ToStringW(narrow), PlainlyWidened(narrow), "a widened text");
    RequireEqual(StringToWideChar(narrow, kUtf8), PlainlyWidened(narrow), "a text widened from UTF-8");
    RequireEqual(ToString(wide), PlainlyNarrowed(wide), "a narrowed text");
    RequireEqual(WideCharToString(wide, kUtf8), PlainlyNarrowed(wide), "a text narrowed to UTF-8");
}

void CheckWindows1252(const std::string& narrow) {
    const std::wstring wide = StringToWideChar(narrow, kWindows1252);
    Require(wide.size() == narrow.size(), "a byte of code page 1252 is one character");
    RequireEqual(WideCharToString(wide, kWindows1252), narrow, "a text in code page 1252 that comes back");
}

// Two texts convert to the same, together and one by one, if the first one ends with a character.
void CheckJoint(const ePage& page, const std::string& narrow, std::size_t cut) {
    const std::wstring first = StringToWideChar(narrow.substr(0, cut), page.number);
    if (IsWellFormed(first))
        RequireEqual(StringToWideChar(narrow, page.number), first + StringToWideChar(narrow.substr(cut), page.number),
                     "two texts, widened together");
}

void CheckJointWide(const ePage& page, const std::wstring& wide, std::size_t cut) {
    if (cut > 0 && cut < wide.size() && IsHighSurrogate(wide[cut - 1]))
        return;
    RequireEqual(WideCharToString(wide, page.number),
                 WideCharToString(wide.substr(0, cut), page.number) + WideCharToString(wide.substr(cut), page.number),
                 "two texts, narrowed together");
}

} // namespace

void Check(std::string_view input) {
    eScript script(input);
    const ePage& page = kPages[script.Below(std::size(kPages))];
    const std::size_t choice = script.Byte();
    const std::string narrow(script.Rest());
    const std::wstring wide = WideText(narrow);
    CheckUtf8(narrow, wide);
    CheckWindows1252(narrow);

    const std::wstring widened = StringToWideChar(narrow, page.number);
    WideCharToString(wide, page.number);
    if (page.joins) {
        CheckJoint(page, narrow, narrow.empty() ? 0 : choice % narrow.size());
        CheckJointWide(page, wide, wide.empty() ? 0 : choice % wide.size());
    }
    if (page.joins && IsWellFormed(widened))
        RequireEqual(StringToWideChar(WideCharToString(widened, page.number), page.number), widened,
                     "a widened text that comes back");
}

void Work(std::string_view input) {
    eScript script(input);
    const int page = kPages[script.Below(std::size(kPages))].number;
    const std::string narrow(script.Rest());
    const std::wstring wide = StringToWideChar(narrow, page);
    WideCharToString(wide, page);
}
