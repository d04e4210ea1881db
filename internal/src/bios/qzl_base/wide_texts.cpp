// SPDX-License-Identifier: BSL-1.0
#include <qzl_base/convert.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include <qzl_base/error.h>

#include "platform/code_page.h"
#include "qzl_base/shared/unicode.h"
#include "utf8.h"
#include "windows_1252.h"

namespace {

namespace CodePageReport {
constexpr char kSource[] = "internal/src/bios/qzl_base/wide_texts";
constexpr int kNotOpenedLine = 10;
constexpr char kNotOpened[] = "The system has no file descriptor for a code page!";
} // namespace CodePageReport

constexpr int kUtf8 = 65001;
constexpr int kWindows1252 = 1252;
constexpr std::size_t kLongestSequence = 4; // bytes of one character in any code page of a system

// Appends the character at the beginning of the text and returns the number of its bytes; 0 if there is none.
std::size_t WidenFirst(platform::eCodePage& page, std::string_view text, std::wstring* wide) {
    for (std::size_t size = 1; size <= std::min(text.size(), kLongestSequence); ++size)
        if (page.Widen(text.substr(0, size), wide))
            return size;
    return 0;
}

std::wstring WidenPiecewise(platform::eCodePage& page, std::string_view text) {
    std::wstring wide;
    while (!text.empty()) {
        const std::size_t size = WidenFirst(page, text, &wide);
        if (size == 0)
            wide += static_cast<wchar_t>(unicode::kReplacement);
        text.remove_prefix(std::max<std::size_t>(size, 1));
    }
    return wide;
}

std::string NarrowPiecewise(platform::eCodePage& page, std::wstring_view text) {
    std::string narrow;
    while (!text.empty()) {
        const std::size_t units = unicode::FirstOf(text).units;
        if (!page.Narrow(text.substr(0, units), &narrow))
            narrow += '?';
        text.remove_prefix(units);
    }
    return narrow;
}

std::wstring WidenAscii(std::string_view text) {
    std::wstring wide;
    wide.reserve(text.size());
    for (const char c : text)
        wide += static_cast<wchar_t>(static_cast<unsigned char>(c) < 0x80 ? static_cast<unsigned char>(c)
                                                                          : unicode::kReplacement);
    return wide;
}

std::string NarrowAscii(std::wstring_view text) {
    std::string narrow;
    while (!text.empty()) {
        const unicode::eCharacter first = unicode::FirstOf(text);
        narrow += first.code < 0x80 ? static_cast<char>(first.code) : '?';
        text.remove_prefix(first.units);
    }
    return narrow;
}

// False, after a report, if the system cannot tell whether it knows the number.
bool OpenPage(int codePage, std::unique_ptr<platform::eCodePage>* page) {
    const bool told = platform::OpenCodePage(codePage, page);
    if (!told)
        xError::Error(CodePageReport::kSource, CodePageReport::kNotOpenedLine, CodePageReport::kNotOpened, true);
    return told;
}

std::wstring WidenBySystem(std::string_view text, int codePage) {
    std::unique_ptr<platform::eCodePage> page;
    if (!OpenPage(codePage, &page))
        return {};
    if (!page)
        return WidenAscii(text);
    std::wstring wide;
    return page->Widen(text, &wide) ? wide : WidenPiecewise(*page, text);
}

std::string NarrowBySystem(std::wstring_view text, int codePage) {
    std::unique_ptr<platform::eCodePage> page;
    if (!OpenPage(codePage, &page))
        return {};
    if (!page)
        return NarrowAscii(text);
    std::string narrow;
    return page->Narrow(text, &narrow) ? narrow : NarrowPiecewise(*page, text);
}

} // namespace

std::wstring StringToWideChar(const std::string& text, int codePage) {
    switch (codePage) {
    case kUtf8:
        return utf8::Widen(text);
    case kWindows1252:
        return windows_1252::Widen(text);
    default:
        return WidenBySystem(text, codePage);
    }
}

std::string WideCharToString(const std::wstring& text, int codePage) {
    switch (codePage) {
    case kUtf8:
        return utf8::Narrow(text);
    case kWindows1252:
        return windows_1252::Narrow(text);
    default:
        return NarrowBySystem(text, codePage);
    }
}

std::wstring ToStringW(const std::string& text) {
    return utf8::Widen(text);
}

std::string ToString(const std::wstring& text) {
    return utf8::Narrow(text);
}
