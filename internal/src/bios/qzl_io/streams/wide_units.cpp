// SPDX-License-Identifier: BSL-1.0
#include "streams/wide_units.h"

#include <cstddef>

#include "qzl_base/shared/unicode.h"

namespace IO {
namespace {

void AppendUnits(std::u16string* units, char32_t character) {
    if (unicode::IsPaired(character))
        units->append({unicode::HighSurrogate(character), unicode::LowSurrogate(character)});
    else
        units->push_back(static_cast<char16_t>(character <= unicode::kLastCode ? character : unicode::kReplacement));
}

} // namespace

std::u16string UnitsOf(std::wstring_view text) {
    std::u16string units;
    units.reserve(text.size());
    for (const wchar_t character : text)
        AppendUnits(&units, static_cast<char32_t>(character));
    return units;
}

std::wstring WideOf(std::u16string_view units) {
    std::wstring text;
    text.reserve(units.size());
    for (std::size_t at = 0; at < units.size(); ++at) {
        const bool isPair =
            unicode::IsHighSurrogate(units[at]) && at + 1 < units.size() && unicode::IsLowSurrogate(units[at + 1]);
        const char32_t unit = units[at];
        text.push_back(static_cast<wchar_t>(isPair ? unicode::OfPair(units[at], units[at + 1]) : unit));
        at += isPair ? 1 : 0;
    }
    return text;
}

} // namespace IO
