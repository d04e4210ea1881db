// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

// The bytes of an input, taken one after another as choices, numbers and texts. At the end all are 0 or empty.
class eScript {
public:
    explicit eScript(std::string_view bytes) : rest(bytes) {}

    bool IsOver() const { return rest.empty(); }

    unsigned Byte() {
        if (rest.empty())
            return 0;
        const auto byte = static_cast<unsigned char>(rest.front());
        rest.remove_prefix(1);
        return byte;
    }

    // A choice among at most 256.
    unsigned Below(std::size_t limit) { return Byte() % static_cast<unsigned>(limit); }
    bool Flag() { return (Byte() & 1) != 0; }

    // A number of that many bytes, of which the first is the highest.
    unsigned long long Number(int bytes) {
        unsigned long long number = 0;
        for (; bytes > 0; --bytes)
            number = number << 8 | Byte();
        return number;
    }

    // A text of at most 255 bytes, after its length.
    std::string_view Text() {
        const unsigned size = Byte();
        return Take(size);
    }

    std::string_view Rest() { return Take(rest.size()); }

private:
    std::string_view Take(std::size_t size) {
        const std::string_view taken = rest.substr(0, size);
        rest.remove_prefix(taken.size());
        return taken;
    }

    std::string_view rest;
};

// The bytes as a wide text: one byte for each unit up to 0x7F, otherwise three, so that all Unicode is in reach.
inline std::wstring WideText(std::string_view bytes) {
    std::wstring text;
    for (eScript script(bytes); !script.IsOver();) {
        const unsigned byte = script.Byte();
        text += static_cast<wchar_t>(byte < 0x80 ? byte : (byte & 0x7F) << 16 | script.Number(2));
    }
    return text;
}
