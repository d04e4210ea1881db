#include "streams/wide_units.h"

#include <cstdint>

namespace IO {
namespace {

constexpr std::uint32_t kFirstPair = 0x10000;
constexpr std::uint32_t kLastCharacter = 0x10FFFF;
constexpr char16_t kHighSurrogate = 0xD800;
constexpr char16_t kLowSurrogate = 0xDC00;
constexpr char16_t kReplacement = 0xFFFD;

bool IsHigh(char16_t unit) {
    return (unit & 0xFC00) == kHighSurrogate;
}
bool IsLow(char16_t unit) {
    return (unit & 0xFC00) == kLowSurrogate;
}

void AppendUnits(std::u16string* units, std::uint32_t character) {
    if (character < kFirstPair) {
        units->push_back(static_cast<char16_t>(character));
    } else if (character > kLastCharacter) {
        units->push_back(kReplacement);
    } else {
        units->push_back(static_cast<char16_t>(kHighSurrogate + ((character - kFirstPair) >> 10)));
        units->push_back(static_cast<char16_t>(kLowSurrogate + ((character - kFirstPair) & 0x3FF)));
    }
}

wchar_t Pair(char16_t high, char16_t low) {
    const std::uint32_t upper = static_cast<std::uint32_t>(high - kHighSurrogate) << 10;
    return static_cast<wchar_t>(kFirstPair + upper + static_cast<std::uint32_t>(low - kLowSurrogate));
}

} // namespace

std::u16string UnitsOf(std::wstring_view text) {
    std::u16string units;
    units.reserve(text.size());
    for (const wchar_t character : text)
        AppendUnits(&units, static_cast<std::uint32_t>(character));
    return units;
}

std::wstring WideOf(std::u16string_view units) {
    std::wstring text;
    text.reserve(units.size());
    for (std::size_t at = 0; at < units.size(); ++at) {
        const bool paired = IsHigh(units[at]) && at + 1 < units.size() && IsLow(units[at + 1]);
        text.push_back(paired ? Pair(units[at], units[at + 1]) : static_cast<wchar_t>(units[at]));
        at += paired ? 1 : 0;
    }
    return text;
}

} // namespace IO
