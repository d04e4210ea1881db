// SPDX-License-Identifier: BSL-1.0
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <qzl_base/convert.h>

#include "sdl_source.h"
#include "support/long_tests.h"

namespace {

// The values that do not read back to the same bits.
std::vector<float> Changed(const std::vector<float>& values) {
    std::string text;
    for (const float value : values)
        text += ToString(value) + ' ';
    eSDLReader reader = ReaderOf(text);
    std::vector<float> changed;
    for (const float value : values)
        if (std::bit_cast<std::uint32_t>(reader.GetFloat()) != std::bit_cast<std::uint32_t>(value))
            changed.push_back(value);
    return changed;
}

} // namespace

TEST(SdlFloats, EveryFiniteFloatReadsBackFromItsTextToTheSameBits) {
    const std::uint64_t stride = LongTests() ? 1 : 6151;
    std::vector<float> values;
    for (std::uint64_t bits = 0; bits < (1ull << 32); bits += stride) {
        const float value = std::bit_cast<float>(static_cast<std::uint32_t>(bits));
        if (std::isfinite(value))
            values.push_back(value);
        if (values.size() == 100'000 || bits + stride >= (1ull << 32)) {
            ASSERT_EQ(Changed(values), std::vector<float>());
            values.clear();
        }
    }
}

TEST(SdlFloats, FloatsWithFewDigitsAreTheNearestOnes) {
    for (int decimals = 0; decimals <= 9; ++decimals) {
        std::vector<float> expected;
        std::string text;
        for (int digits = 0; digits < 200'000; digits += 37) {
            std::string number = std::to_string(digits);
            number.insert(0, static_cast<std::size_t>(decimals), '0');
            number.insert(number.size() - static_cast<std::size_t>(decimals), ".");
            expected.push_back(std::strtof(number.c_str(), nullptr));
            text += number + ' ';
        }
        eSDLReader reader = ReaderOf(text);
        for (const float value : expected)
            ASSERT_EQ(reader.GetFloat(), value);
    }
}

TEST(SdlFloats, FloatsWithManyDigitsAreTheNearestOnes) {
    const std::string digits = "314159265358979323846264338327950288419716939937510582097494459230781640628620899";
    std::vector<float> expected;
    std::string text;
    for (std::size_t whole = 1; whole <= 30; ++whole)
        for (std::size_t fraction = 0; whole + fraction <= digits.size(); ++fraction)
            for (const char* exponent : {"", "e-20", "e7"}) {
                std::string number = digits.substr(0, whole + fraction);
                number.insert(whole, ".");
                number += exponent;
                expected.push_back(std::strtof(number.c_str(), nullptr));
                text += number + ' ';
            }
    eSDLReader reader = ReaderOf(text);
    for (const float value : expected)
        ASSERT_EQ(reader.GetFloat(), value);
}
