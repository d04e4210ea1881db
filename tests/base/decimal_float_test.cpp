// SPDX-License-Identifier: BSL-1.0
#include "qzl_base/shared/decimal_float.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>

#include <gtest/gtest.h>

namespace {

constexpr std::uint64_t kDoubleIntegersEnd = std::uint64_t{1} << 53;

std::uint32_t BitsOf(float value) {
    return std::bit_cast<std::uint32_t>(value);
}

TEST(DecimalFloat, IsTheNearestWhereItIsFound) {
    std::mt19937_64 random(3);
    int found = 0;
    for (int round = 0; round < 200'000; ++round) {
        const std::uint64_t digits = random() >> random() % 64;
        const int exponent = static_cast<int>(random() % 49) - 24;
        const bool negative = random() % 2 != 0;
        float value = 7;
        if (!decimal::ToFloat(digits, exponent, negative, &value)) {
            ASSERT_EQ(value, 7);
            continue;
        }
        ++found;
        const std::string text = (negative ? "-" : "") + std::to_string(digits) + "e" + std::to_string(exponent);
        ASSERT_EQ(BitsOf(value), BitsOf(std::strtof(text.c_str(), nullptr))) << text;
    }
    EXPECT_GT(found, 100'000);
}

TEST(DecimalFloat, IsNotFoundWhereTwoRoundingsMayMissIt) {
    const struct {
        std::uint64_t digits;
        int exponent;
        bool found;
    } rows[] = {
        {0, 0, true},
        {1, 22, true},
        {1, -22, true},
        {1, 23, false},
        {1, -23, false},
        {kDoubleIntegersEnd - 1, 0, true},
        {kDoubleIntegersEnd, 0, false},
        {~std::uint64_t{0}, 0, false},
        {16777217, 0, false}, // in the middle between 16777216 and 16777218
        {16777218, 0, true},
    };
    for (const auto& row : rows) {
        float value = 0;
        EXPECT_EQ(decimal::ToFloat(row.digits, row.exponent, false, &value), row.found)
            << row.digits << "e" << row.exponent;
    }
}

TEST(DecimalFloat, KeepsTheSignOfZero) {
    float value = 1;
    ASSERT_TRUE(decimal::ToFloat(0, -3, true, &value));
    EXPECT_EQ(value, 0);
    EXPECT_TRUE(std::signbit(value));
}

TEST(PowersOfTen, AreThePowersThatTextsSpell) {
    for (std::size_t power = 0; power <= 22; ++power) {
        const std::string text = "1e" + std::to_string(power);
        EXPECT_EQ((decimal::kPowersOfTen<double, 23>[power]), std::strtod(text.c_str(), nullptr)) << text;
    }
    EXPECT_EQ((decimal::kPowersOfTen<std::uint64_t, 20>[19]), 10'000'000'000'000'000'000u);
}

} // namespace
