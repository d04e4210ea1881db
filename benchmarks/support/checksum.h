// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string_view>

namespace bench {

// Combines the values that a pass read, in their order, cheaply enough for a timed loop. Contenders that read equal
// values from their own formats get equal Value()s.
class eChecksum {
public:
    void Integer(std::int64_t value) { Word(static_cast<std::uint64_t>(value)); }
    void Real(float value) { Word(std::bit_cast<std::uint32_t>(value)); }
    void Real(double value) { Word(std::bit_cast<std::uint64_t>(value)); }

    // Adds the length and up to 16 bytes, the first and the last eight.
    void Text(std::string_view text) {
        const size_t size = text.size();
        if (size >= 8)
            Word(Load<std::uint64_t>(text.data()) ^ std::rotl(Load<std::uint64_t>(text.data() + size - 8), 1) ^ size);
        else if (size >= 4)
            Word(Load<std::uint32_t>(text.data()) ^ std::uint64_t{Load<std::uint32_t>(text.data() + size - 4)} << 32 ^
                 size);
        else if (size > 0)
            Word(static_cast<unsigned char>(text.front()) ^ static_cast<unsigned char>(text[size / 2]) << 8 ^
                 static_cast<unsigned char>(text.back()) << 16 ^ size);
        else
            Word(0);
    }

    std::uint64_t Value() const { return state; }

private:
    template <class T>
    static T Load(const char* from) {
        T value;
        std::memcpy(&value, from, sizeof value);
        return value;
    }
    void Word(std::uint64_t word) {
        state = (state ^ word) * 0x9E3779B97F4A7C15u;
        state ^= state >> 29;
    }

    std::uint64_t state = 0x243F6A8885A308D3u;
};

// Returns 1, or throws if the sums differ. For rows over sizes, which have no checksum in common.
inline std::uint64_t SameSum(std::uint64_t one, std::uint64_t other) {
    if (one != other)
        throw std::runtime_error("other values than those expected");
    return 1;
}

} // namespace bench
