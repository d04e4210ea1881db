// SPDX-License-Identifier: BSL-1.0
#include <qzl_base/convert.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>

#include <gtest/gtest.h>

namespace {

constexpr int kMin = std::numeric_limits<int>::min();
constexpr int kMax = std::numeric_limits<int>::max();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

template <class T>
void CheckBothForms(const std::string& text, T expectedValue, bool expectedResult) {
    T value = 77;
    EXPECT_EQ(expectedResult, _FromString(&value, text.c_str())) << text.substr(0, 80);
    EXPECT_EQ(expectedValue, value) << text.substr(0, 80);
    // Digits directly after the end must not be read.
    const std::string embedded = text + "77";
    value = 77;
    EXPECT_EQ(expectedResult, _FromString(&value, embedded.data(), embedded.data() + text.size()))
        << text.substr(0, 80);
    EXPECT_EQ(expectedValue, value) << text.substr(0, 80);
}

TEST(IntValue, IsReadAsFarAsTheTextIsANumber) {
    const struct {
        const char* text;
        int value;
        bool whole;
    } rows[] = {
        {"0", 0, true},
        {"7", 7, true},
        {"-5", -5, true},
        {"+5", 5, true},
        {"-0", 0, true},
        {"007", 7, true},
        {"2147483647", kMax, true},
        {"-2147483648", kMin, true},
        {"2147483648", kMax, false},
        {"-2147483649", kMin, false},
        {"+2147483648", kMax, false},
        {"99999999999999999999999", kMax, false},
        {"-99999999999999999999999", kMin, false},
        {"99999999999999999999999x", kMax, false},
        {"0000000000000000000000012", 12, true},
        {"0x0", 0, true},
        {"0x1F", 31, true},
        {"0x1f", 31, true},
        {"0xAbCdEf", 0xabcdef, true},
        {"0x7fffffff", kMax, true},
        {"0x80000000", kMin, true},
        {"0xffffffff", -1, true},
        {"0x0000000000000001", 1, true},
        {"0x100000000", 0, false},
        {"0x123456789", 0x23456789, false},
        {"0xf0000000000000005", 5, false},
        {"0x", 0, false},
        {"0xg", 0, false},
        {"0x1g", 1, false},
        {"0x1.", 1, false},
        {"0x1@", 1, false},
        {"0x1`", 1, false},
        {"0x-1", 0, false},
        {"0X1F", 0, false},
        {"-0x10", 0, false},
        {"+0x10", 0, false},
        {"", 0, false},
        {"+", 0, false},
        {"-", 0, false},
        {"+-5", 0, false},
        {"-+5", 0, false},
        {"--5", 0, false},
        {"++5", 0, false},
        {"5 ", 5, false},
        {" 5", 0, false},
        {"\t5", 0, false},
        {"5.5", 5, false},
        {"1e3", 1, false},
        {"abc", 0, false},
        {"12abc", 12, false},
    };
    for (const auto& row : rows)
        CheckBothForms(row.text, row.value, row.whole);
}

TEST(IntValue, ReadsBackEveryEdgeOfEveryWidth) {
    for (int shift = 0; shift < 32; ++shift)
        for (int near = -1; near <= 1; ++near) {
            const int value = static_cast<int>((1u << shift) + static_cast<unsigned>(near));
            CheckBothForms(ToString(value, false), value, true);
            CheckBothForms(ToString(value, true), value, true);
        }
}

TEST(FloatValue, IsReadAsFarAsTheTextIsANumber) {
    const struct {
        const char* text;
        float value;
        bool whole;
    } rows[] = {
        {"0", 0, true},
        {"0.5", 0.5f, true},
        {"-0.5", -0.5f, true},
        {"+0.5", 0.5f, true},
        {"1.", 1, true},
        {".5", 0.5f, true},
        {"+.5", 0.5f, true},
        {"1e5", 1e5f, true},
        {"1E5", 1e5f, true},
        {"1e+5", 1e5f, true},
        {"1e-5", 1e-5f, true},
        {"0.5e2", 50, true},
        {"1.e2", 100, true},
        {"0e5", 0, true},
        {"0e999", 0, true},
        {"16777217", 16777216, true},
        {"3.4028235e38", std::numeric_limits<float>::max(), true},
        {"1e-45", std::numeric_limits<float>::denorm_min(), true},
        {"1e39", kInfinity, true},
        {"-1e39", -kInfinity, true},
        {"1e400", kInfinity, true},
        {"+1e400", kInfinity, true},
        {"1e99999999999999999999", kInfinity, true},
        {"1e400x", kInfinity, false},
        {"1e-60", 0, true},
        {"1e-400", 0, true},
        {"1e-99999999999999999999", 0, true},
        {"0.00001e-41", 0, true},
        {"100000e40", kInfinity, true},
        {"1e+-3", 1, false},
        {"1e", 1, false},
        {"1e+", 1, false},
        {"1.5e-", 1.5f, false},
        {"1e5e5", 1e5f, false},
        {"1.2.3", 1.2f, false},
        {"1.5e100", kInfinity, true},
        {"1.5e-100", 0, true},
        {"1e022", 1e22f, true},
        {"1e22", 1e22f, true},
        {"1e23", 1e23f, true},
        {"1e-22", 1e-22f, true},
        {"1e-23", 1e-23f, true},
        {"999999999999999e22", 1e37f, true},
        {"9999999999999999e22", 1e38f, true},
        {"16777217.0", 16777216, true},
        {"16777219.0", 16777220, true},
        {"16777217.0000001", 16777218, true},
        {"16777217.00000001", 16777218, true},
        {"000000000000001.5", 1.5f, true},
        {"0000000000000001.5", 1.5f, true},
        {"1.5E", 1.5f, false},
        {"1.5Ex", 1.5f, false},
        {"5.e", 5, false},
        {"1,5", 1, false},
        {"5 ", 5, false},
        {" 5", 0, false},
        {"", 0, false},
        {"-", 0, false},
        {"+", 0, false},
        {".", 0, false},
        {"-.", 0, false},
        {"e5", 0, false},
        {"+-5", 0, false},
        {"--5", 0, false},
        {"inf", 0, false},
        {"-inf", 0, false},
        {"infinity", 0, false},
        {"nan", 0, false},
        {"-nan", 0, false},
        {"+nan(1)", 0, false},
        {"0x10", 16, true},
        {"0x1F", 31, true},
        {"0xffffffff", -1, true},
        {"0x7fffffff", 2147483648.0f, true},
        {"0x100000001", 1, false},
        {"0x1p3", 1, false},
        {"0x1.", 1, false},
        {"0x", 0, false},
        {"0xg", 0, false},
        {"0X10", 0, false},
        {"-0x10", 0, false},
        {"+0x10", 0, false},
        {"00x10", 0, false},
        {"1x10", 1, false},
    };
    for (const auto& row : rows)
        CheckBothForms(row.text, row.value, row.whole);
}

TEST(FloatValue, KeepsTheSignOfZero) {
    for (const char* text : {"-0", "-0.", "-0.0", "-1e-60", "-0e5", "-1e-400"}) {
        float value = 1;
        EXPECT_TRUE(_FromString(&value, text)) << text;
        EXPECT_EQ(0.0f, value) << text;
        EXPECT_TRUE(std::signbit(value)) << text;
    }
}

TEST(FloatValue, IsTheNearestHoweverLongTheText) {
    const std::string zeros(2000, '0');
    CheckBothForms("1" + zeros, kInfinity, true);
    CheckBothForms("0." + zeros + "1", 0.0f, true);
    CheckBothForms("1" + zeros + "e-2000", 1.0f, true);
    CheckBothForms("0." + zeros + "1e2001", 1.0f, true);
    CheckBothForms("0." + zeros + "1e3001", kInfinity, true);
    CheckBothForms("1" + zeros + "e-3000", 0.0f, true);
    CheckBothForms("16777217." + zeros + "1", 16777218.0f, true);
    CheckBothForms("16777217." + zeros, 16777216.0f, true);
    CheckBothForms(zeros + "1.5" + zeros, 1.5f, true);
}

TEST(FloatValue, EqualsTheStandardConversion) {
    std::mt19937 random(20240229);
    const auto digits = [&random](unsigned most) {
        std::string text;
        for (auto left = random() % most + 1; left > 0; --left)
            text += static_cast<char>('0' + random() % 10);
        return text;
    };
    for (int round = 0; round < 20000; ++round) {
        std::string text = random() % 2 ? "-" : "";
        text += digits(12);
        if (random() % 2)
            text += "." + digits(12);
        if (random() % 2)
            text += (random() % 2 ? "e-" : "e") + std::to_string(random() % 50);
        const float expected = std::strtof(text.c_str(), nullptr);
        float value = 0;
        ASSERT_TRUE(_FromString(&value, text.c_str())) << text;
        ASSERT_EQ(std::bit_cast<std::uint32_t>(expected), std::bit_cast<std::uint32_t>(value)) << text;
    }
}

TEST(LongIntValue, IsReadAsFarAsTheTextIsANumber) {
    constexpr long long kLeast = std::numeric_limits<long long>::min();
    constexpr long long kMost = std::numeric_limits<long long>::max();
    constexpr unsigned long long kMostUnsigned = std::numeric_limits<unsigned long long>::max();
    const struct {
        const char* text;
        long long value;
        bool whole;
        unsigned long long unsignedValue;
        bool unsignedWhole;
    } rows[] = {
        {"0", 0, true, 0, true},
        {"-0", 0, true, 0, true},
        {"+7", 7, true, 7, true},
        {"-7", -7, true, 0, false},
        {"-7x", -7, false, 0, false},
        {"7x", 7, false, 7, false},
        {"", 0, false, 0, false},
        {"-", 0, false, 0, false},
        {"--7", 0, false, 0, false},
        {"9223372036854775807", kMost, true, 9223372036854775807u, true},
        {"9223372036854775808", kMost, false, 9223372036854775808u, true},
        {"-9223372036854775808", kLeast, true, 0, false},
        {"-9223372036854775809", kLeast, false, 0, false},
        {"18446744073709551615", kMost, false, kMostUnsigned, true},
        {"18446744073709551616", kMost, false, kMostUnsigned, false},
        {"0xffffffffffffffff", -1, true, kMostUnsigned, true},
        {"0x00ffffffffffffffff", -1, true, kMostUnsigned, true},
        {"0x1FFFFFFFFFFFFFFFF", -1, false, kMostUnsigned, false},
        {"0x", 0, false, 0, false},
    };
    for (const auto& row : rows) {
        const std::string embedded = std::string(row.text) + (*row.text ? "77" : "");
        const char* const end = embedded.data() + std::string(row.text).size();
        long long value = 5;
        EXPECT_EQ(_FromString(&value, embedded.data(), end), row.whole) << row.text;
        EXPECT_EQ(value, row.value) << row.text;
        unsigned long long unsignedValue = 5;
        EXPECT_EQ(_FromString(&unsignedValue, embedded.data(), end), row.unsignedWhole) << row.text;
        EXPECT_EQ(unsignedValue, row.unsignedValue) << row.text;
    }
}

TEST(DoubleValue, IsReadAsFarAsTheTextIsANumber) {
    const struct {
        const char* text;
        double value;
        bool whole;
    } rows[] = {
        {"0.1", 0.1, true},
        {"+.5", 0.5, true},
        {"1.", 1, true},
        {"1e+-3", 1, false},
        {"1e", 1, false},
        {"inf", 0, false},
        {"nan", 0, false},
        {"9007199254740993", 9007199254740992, true},
        {"1e309", std::numeric_limits<double>::infinity(), true},
        {"-1e309", -std::numeric_limits<double>::infinity(), true},
        {"1e-400", 0, true},
        {"0x1F", 31, true},
        {"0xffffffffffffffff", 18446744073709551616.0, true},
        {"0x1ffffffffffffffff", 18446744073709551616.0, false},
    };
    for (const auto& row : rows) {
        const std::string text = row.text;
        double value = 5;
        EXPECT_EQ(_FromString(&value, text.data(), text.data() + text.size()), row.whole) << text;
        EXPECT_EQ(value, row.value) << text;
    }
}

TEST(NumberValue, ANullTextIsEmpty) {
    const char* const none = nullptr;
    int integer = 5;
    EXPECT_FALSE(_FromString(&integer, none));
    EXPECT_EQ(0, integer);
    EXPECT_FALSE(_FromString(&integer, none, none));
    float number = 5;
    EXPECT_FALSE(_FromString(&number, none));
    EXPECT_EQ(0, number);
    EXPECT_FALSE(_FromString(&number, none, none));
    long long longInteger = 5;
    EXPECT_FALSE(_FromString(&longInteger, none, none));
    unsigned long long longUnsigned = 5;
    EXPECT_FALSE(_FromString(&longUnsigned, none, none));
    double longNumber = 5;
    EXPECT_FALSE(_FromString(&longNumber, none, none));
    EXPECT_EQ(0, longInteger + static_cast<long long>(longUnsigned) + static_cast<long long>(longNumber));
}

} // namespace
