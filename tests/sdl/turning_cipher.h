// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

#include <qzl_io/sdl/cipher.h>

// A cipher that is its own inverse: it inverts all bits of every byte. It records how it was called.
class eTurningCipher : public eSDLCipher {
public:
    size_t GetEncodedSize(size_t inputSize) override {
        sizes.push_back(inputSize);
        return inputSize + spare;
    }
    size_t Encode(void* dst, size_t dstCapacity, const void* src, size_t srcSize) override {
        capacities.push_back(dstCapacity);
        inputs.push_back(srcSize);
        emptyTarget = dst == nullptr;
        if (failing)
            throw std::runtime_error("cipher failed");
        const auto* from = static_cast<const unsigned char*>(src);
        const size_t count = std::min(srcSize, dstCapacity);
        std::transform(from, from + count, static_cast<unsigned char*>(dst),
                       [](unsigned char byte) { return static_cast<unsigned char>(~byte); });
        return count + overstated;
    }

    std::vector<size_t> sizes;
    std::vector<size_t> capacities;
    std::vector<size_t> inputs;
    size_t spare = 0;
    size_t overstated = 0;
    bool failing = false;
    bool emptyTarget = false;
};

inline std::string Turned(std::string text) {
    for (char& byte : text)
        byte = static_cast<char>(~byte);
    return text;
}
