// SPDX-License-Identifier: BSL-1.0
#include "platform/posix/native_name.h"

#include <array>
#include <cstddef>

#include "qzl_base/shared/unicode.h"

namespace IO::Platform {

namespace {

constexpr char32_t kEscapeBase = 0xDC00; // of a byte: a low surrogate, which no well-formed name contains

constexpr bool IsEscapedByte(char32_t character) {
    return character >= kEscapeBase + 0x80 && character <= kEscapeBase + 0xFF;
}

void AppendByte(std::string* bytes, char32_t value) {
    bytes->push_back(static_cast<char>(value));
}

void AppendCharacter(std::string* bytes, char32_t character) {
    if (character < 0x80)
        return AppendByte(bytes, character);
    std::array<char, 4> sequence;
    bytes->append(sequence.data(), unicode::PutBeyondAscii(sequence.data(), character));
}

char32_t CharacterAt(std::wstring_view name, std::size_t at) {
    return at < name.size() ? static_cast<char32_t>(name[at]) : 0;
}

} // namespace

std::wstring WideName(std::string_view bytes) {
    std::wstring name;
    name.reserve(bytes.size());
    while (!bytes.empty()) {
        const unicode::eCharacter first = unicode::FirstOf(bytes);
        const char32_t escaped = kEscapeBase + static_cast<unsigned char>(bytes[0]);
        name.push_back(static_cast<wchar_t>(first.wellFormed ? first.code : escaped));
        bytes.remove_prefix(first.wellFormed ? first.units : 1);
    }
    return name;
}

std::string ByteName(std::wstring_view name) {
    std::string bytes;
    bytes.reserve(name.size());
    for (std::size_t at = 0; at < name.size(); ++at) {
        const char32_t character = CharacterAt(name, at);
        const char32_t next = CharacterAt(name, at + 1);
        if (unicode::IsHighSurrogate(character) && unicode::IsLowSurrogate(next)) {
            AppendCharacter(&bytes, unicode::OfPair(character, next));
            ++at;
        } else if (IsEscapedByte(character)) {
            AppendByte(&bytes, character - kEscapeBase);
        } else if (unicode::IsSurrogate(character) || character > unicode::kLastCode) {
            return {};
        } else {
            AppendCharacter(&bytes, character);
        }
    }
    return bytes;
}

} // namespace IO::Platform
