// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace IO::System {

// The hash SHA-256 and the keyed hash HMAC over it (FIPS 180-4, RFC 2104).

using eHash = std::array<unsigned char, 32>;

namespace Sha256Steps {

inline constexpr std::size_t kBlock = 64;

using eState = std::array<std::uint32_t, 8>;

inline constexpr eState kStart = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                                  0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};

inline constexpr std::array<std::uint32_t, 64> kRounds = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

constexpr std::uint32_t WordAt(std::string_view block, std::size_t at) {
    std::uint32_t word = 0;
    for (const char byte : block.substr(at, 4))
        word = word << 8 | static_cast<unsigned char>(byte);
    return word;
}

constexpr void Mix(eState& state, std::string_view block) {
    std::array<std::uint32_t, 64> words{};
    for (std::size_t at = 0; at < 16; ++at)
        words[at] = WordAt(block, 4 * at);
    for (std::size_t at = 16; at < words.size(); ++at) {
        const std::uint32_t low = words[at - 15];
        const std::uint32_t high = words[at - 2];
        words[at] = words[at - 16] + (std::rotr(low, 7) ^ std::rotr(low, 18) ^ low >> 3) + words[at - 7] +
                    (std::rotr(high, 17) ^ std::rotr(high, 19) ^ high >> 10);
    }
    auto [a, b, c, d, e, f, g, h] = state;
    for (std::size_t at = 0; at < words.size(); ++at) {
        const std::uint32_t first = h + (std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25)) + ((e & f) ^ (~e & g)) +
                                    kRounds[at] + words[at];
        const std::uint32_t second =
            (std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22)) + ((a & b) ^ (a & c) ^ (b & c));
        h = g, g = f, f = e, e = d + first, d = c, c = b, b = a, a = first + second;
    }
    const eState mixed = {a, b, c, d, e, f, g, h};
    for (std::size_t at = 0; at < state.size(); ++at)
        state[at] += mixed[at];
}

// The text, a bit, zeros and the length in bits, up to a whole number of blocks.
inline std::string Padded(std::string_view text) {
    std::string padded(text);
    padded += '\x80';
    padded.resize((padded.size() + 8 + kBlock - 1) / kBlock * kBlock, '\0');
    for (std::size_t at = 0, bits = text.size() * 8; at < 8; ++at, bits >>= 8)
        padded[padded.size() - 1 - at] = static_cast<char>(bits & 0xff);
    return padded;
}

inline std::string AsText(const eHash& hash) {
    return {hash.begin(), hash.end()};
}

} // namespace Sha256Steps

inline eHash Sha256(std::string_view text) {
    using namespace Sha256Steps;
    eState state = kStart;
    const std::string padded = Padded(text);
    for (std::size_t at = 0; at < padded.size(); at += kBlock)
        Mix(state, std::string_view(padded).substr(at, kBlock));
    eHash hash{};
    for (std::size_t at = 0; at < hash.size(); ++at)
        hash[at] = static_cast<unsigned char>(state[at / 4] >> (24 - at % 4 * 8));
    return hash;
}

inline eHash KeyedSha256(std::string_view key, std::string_view text) {
    using namespace Sha256Steps;
    std::string block = key.size() > kBlock ? AsText(Sha256(key)) : std::string(key);
    block.resize(kBlock, '\0');
    const auto masked = [&](unsigned char mask) {
        std::string result = block;
        std::transform(result.begin(), result.end(), result.begin(),
                       [mask](char byte) { return static_cast<char>(static_cast<unsigned char>(byte) ^ mask); });
        return result;
    };
    const std::string inner = AsText(Sha256(masked(0x36).append(text)));
    return Sha256(masked(0x5c) + inner);
}

} // namespace IO::System
