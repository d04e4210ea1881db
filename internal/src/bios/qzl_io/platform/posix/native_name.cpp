#include "platform/posix/native_name.h"

#include <cstddef>
#include <cstdint>

namespace IO::Platform {

namespace {

constexpr char32_t kEscapeBase = 0xDC00;

struct eSequence {
    std::size_t length; // 0: ill-formed
    char32_t character;
};

// Length, bits of the first byte and smallest character of the sequences that the byte can begin.
struct eLead {
    std::size_t length;
    char32_t bits;
    char32_t smallest;
};

constexpr eLead LeadOf(unsigned char byte) {
    if (byte < 0x80)
        return {1, byte, 0};
    if (byte >= 0xC2 && byte < 0xE0)
        return {2, byte & 0x1Fu, 0x80};
    if (byte >= 0xE0 && byte < 0xF0)
        return {3, byte & 0x0Fu, 0x800};
    if (byte >= 0xF0 && byte < 0xF5)
        return {4, byte & 0x07u, 0x10000};
    return {0, 0, 0};
}

constexpr bool IsSurrogate(char32_t character) {
    return character >= 0xD800 && character < 0xE000;
}
constexpr bool IsHighSurrogate(char32_t character) {
    return character >= 0xD800 && character < 0xDC00;
}
constexpr bool IsLowSurrogate(char32_t character) {
    return character >= 0xDC00 && character < 0xE000;
}
constexpr bool IsEscapedByte(char32_t character) {
    return character >= 0xDC80 && character < 0xDD00;
}

eSequence FirstSequence(std::string_view bytes) {
    const eLead lead = LeadOf(static_cast<unsigned char>(bytes[0]));
    if (lead.length == 0 || lead.length > bytes.size())
        return {0, 0};
    char32_t character = lead.bits;
    for (std::size_t at = 1; at < lead.length; ++at) {
        const auto byte = static_cast<unsigned char>(bytes[at]);
        if ((byte & 0xC0) != 0x80)
            return {0, 0};
        character = character << 6 | (byte & 0x3Fu);
    }
    if (character < lead.smallest || character > 0x10FFFF || IsSurrogate(character))
        return {0, 0};
    return {lead.length, character};
}

void AppendByte(std::string* bytes, char32_t value) {
    bytes->push_back(static_cast<char>(value));
}

void AppendCharacter(std::string* bytes, char32_t character) {
    if (character < 0x80)
        return AppendByte(bytes, character);
    if (character < 0x800) {
        AppendByte(bytes, 0xC0 | character >> 6);
    } else if (character < 0x10000) {
        AppendByte(bytes, 0xE0 | character >> 12);
        AppendByte(bytes, 0x80 | (character >> 6 & 0x3F));
    } else {
        AppendByte(bytes, 0xF0 | character >> 18);
        AppendByte(bytes, 0x80 | (character >> 12 & 0x3F));
        AppendByte(bytes, 0x80 | (character >> 6 & 0x3F));
    }
    AppendByte(bytes, 0x80 | (character & 0x3F));
}

char32_t CharacterAt(std::wstring_view name, std::size_t at) {
    return at < name.size() ? static_cast<char32_t>(name[at]) : 0;
}

} // namespace

std::wstring WideName(std::string_view bytes) {
    std::wstring name;
    name.reserve(bytes.size());
    while (!bytes.empty()) {
        const eSequence sequence = FirstSequence(bytes);
        const bool wellFormed = sequence.length != 0;
        const char32_t escaped = kEscapeBase + static_cast<unsigned char>(bytes[0]);
        name.push_back(static_cast<wchar_t>(wellFormed ? sequence.character : escaped));
        bytes.remove_prefix(wellFormed ? sequence.length : 1);
    }
    return name;
}

std::string ByteName(std::wstring_view name) {
    std::string bytes;
    bytes.reserve(name.size());
    for (std::size_t at = 0; at < name.size(); ++at) {
        const char32_t character = CharacterAt(name, at);
        const char32_t next = CharacterAt(name, at + 1);
        if (IsHighSurrogate(character) && IsLowSurrogate(next)) {
            AppendCharacter(&bytes, 0x10000 + ((character - 0xD800) << 10) + (next - 0xDC00));
            ++at;
        } else if (IsEscapedByte(character)) {
            AppendByte(&bytes, character - kEscapeBase);
        } else if (IsSurrogate(character) || character > 0x10FFFF) {
            return {};
        } else {
            AppendCharacter(&bytes, character);
        }
    }
    return bytes;
}

} // namespace IO::Platform
