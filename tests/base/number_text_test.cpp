// SPDX-License-Identifier: BSL-1.0
#include <qzl_base/convert.h>

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <locale>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "support/long_tests.h"

namespace {

using eLimits = std::numeric_limits<float>;

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// The value by the standard conversion; empty if the text is not entirely a number of the type, or is out of its range.
template <class T>
std::optional<T> Number(const std::string& text) {
    T value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(value) : std::nullopt;
}

// The float that an SDL reader reads from a text that is exactly one decimal number; nothing for other texts. It
// follows the rules of the format character by character: after a leading zero without a sign only a digit or a point
// may follow, after digits a point or an exponent, after a fraction an exponent.
std::optional<float> ReadAsSdl(const std::string& text) {
    enum { Start, Sign, Zero, Whole, Fraction, Exponent } state = Start;
    for (const char c : text) {
        if (state == Start && (c == '-' || c == '+'))
            state = Sign;
        else if (state == Start && c == '0')
            state = Zero;
        else if (state <= Whole && IsDigit(c))
            state = Whole;
        else if ((state == Zero || state == Whole) && c == '.')
            state = Fraction;
        else if ((state == Whole || state == Fraction) && (c == 'e' || c == 'E'))
            state = Exponent;
        else if ((state != Fraction || !IsDigit(c)) && (state != Exponent || !(IsDigit(c) || c == '-' || c == '+')))
            return {};
    }
    if (state == Zero || state == Whole) {
        const auto value = Number<int>(text);
        return value ? std::optional(static_cast<float>(*value)) : std::nullopt;
    }
    return state == Fraction || state == Exponent ? Number<float>(text) : std::nullopt;
}

bool SameBits(float left, float right) {
    return std::bit_cast<std::uint32_t>(left) == std::bit_cast<std::uint32_t>(right);
}

bool ReadsBack(float value) {
    const auto read = ReadAsSdl(ToString(value));
    return read && SameBits(*read, value);
}

// The number of floats among first, first + stride ... (as bits) that do not read back.
std::uint64_t CountFailures(std::uint64_t first, std::uint64_t stride) {
    std::uint64_t failures = 0;
    for (std::uint64_t bits = first; bits <= 0xffffffffu; bits += stride) {
        const float value = std::bit_cast<float>(static_cast<std::uint32_t>(bits));
        if (std::isfinite(value) && !ReadsBack(value)) {
            ++failures;
            if (failures < 10)
                ADD_FAILURE() << std::hex << bits << ' ' << ToString(value);
        }
    }
    return failures;
}

TEST(IntText, IsDecimalOrTheBitsInHexadecimal) {
    const struct {
        int value;
        const char* decimal;
        const char* hexadecimal;
    } rows[] = {
        {0, "0", "0x0"},
        {31, "31", "0x1f"},
        {-1, "-1", "0xffffffff"},
        {2147483647, "2147483647", "0x7fffffff"},
        {std::numeric_limits<int>::min(), "-2147483648", "0x80000000"},
        {0xabc, "2748", "0xabc"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.decimal, ToString(row.value, false));
        EXPECT_EQ(row.hexadecimal, ToString(row.value, true));
        for (const std::string text : {row.decimal, row.hexadecimal}) {
            int read = 0;
            EXPECT_TRUE(_FromString(&read, text.c_str())) << text;
            EXPECT_EQ(row.value, read) << text;
        }
    }
}

TEST(IntText, EqualsTheStandardConversion) {
    const auto check = [](long long wide) {
        const int value = static_cast<int>(
            std::clamp<long long>(wide, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
        EXPECT_EQ(std::to_string(value), ToString(value, false));
    };
    for (long long power = 1; power < 10'000'000'000; power *= 10)
        for (const long long value : {power - 1, power, power + 1, 5 * power, 9 * power + 8})
            check(value), check(-value);
    for (long long value = std::numeric_limits<int>::min(); value <= std::numeric_limits<int>::max(); value += 99'991)
        check(value);
}

TEST(IntText, CoversSixtyFourBits) {
    const struct {
        unsigned long long value;
        const char* decimal;
        const char* hexadecimal;
    } rows[] = {
        {0, "0", "0x0"},
        {4294967296, "4294967296", "0x100000000"},
        {18446744073709551615u, "18446744073709551615", "0xffffffffffffffff"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.decimal, ToString(row.value, false));
        EXPECT_EQ(row.hexadecimal, ToString(row.value, true));
    }
}

TEST(IntText, TakesEveryIntegerType) {
    EXPECT_EQ("3", ToString(std::string("abc").size(), false));
    EXPECT_EQ("0x1f", ToString(std::size_t{31}, true));
    EXPECT_EQ("4294967295", ToString(std::numeric_limits<unsigned>::max(), false));
    EXPECT_EQ("0xffffffff", ToString(std::numeric_limits<unsigned>::max(), true));
    EXPECT_EQ("7", ToString(7ul, false));
    EXPECT_EQ("-7", ToString(-7l, false));
    EXPECT_EQ(sizeof(long) == 4 ? "0xfffffff9" : "0xfffffffffffffff9", ToString(-7l, true));
    EXPECT_EQ("9223372036854775807", ToString(std::numeric_limits<long long>::max(), false));
    EXPECT_EQ("-9223372036854775808", ToString(std::numeric_limits<long long>::min(), false));
    EXPECT_EQ("0x8000000000000000", ToString(std::numeric_limits<long long>::min(), true));
    EXPECT_EQ("-3", ToString(short{-3}, false));
    EXPECT_EQ("0xfffffffd", ToString(short{-3}, true));
    EXPECT_EQ("97", ToString('a', false));
    EXPECT_EQ("1", ToString(true, false));
}

TEST(FloatText, IsTheShortestOfItsKind) {
    const struct {
        float value;
        const char* text;
    } rows[] = {
        {0.0f, "0"},
        {-0.0f, "-0."},
        {0.5f, "0.5"},
        {-0.5f, "-0.5"},
        {3.0f, "3"},
        {-3.0f, "-3"},
        {1.5f, "1.5"},
        {0.1f, "0.1"},
        {0.05f, "0.05"},
        {0.005f, "5e-3"},
        {0.0625f, "0.0625"},
        {0.00123f, "123e-5"},
        {1e-10f, "1e-10"},
        {100.0f, "100"},
        {1000.0f, "1e3"},
        {1200.0f, "1200"},
        {12000.0f, "12e3"},
        {-5000000.0f, "-5e6"},
        {16777215.0f, "16777215"},
        {16777216.0f, "16777216"},
        {16777218.0f, "16777218"},
        {123456790.0f, "123456792"},
        {1e9f, "1e9"},
        {2147483520.0f, "2147483520"},
        {-2147483520.0f, "-2147483520"},
        {2147483648.0f, "21474836e2"},
        {-2147483648.0f, "-2147483648"},
        {-2147483904.0f, "-2147484e3"},
        {4294967296.0f, "42949673e2"},
        {1e10f, "1e10"},
        {1.5e10f, "15e9"},
        {1e38f, "1e38"},
        {eLimits::max(), "34028235e31"},
        {eLimits::lowest(), "-34028235e31"},
        {eLimits::min(), "11754944e-45"},
        {eLimits::denorm_min(), "1e-45"},
        {-eLimits::denorm_min(), "-1e-45"},
        {3.1415927f, "3.1415927"},
        {1.0f / 3, "0.33333334"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.text, ToString(row.value));
        EXPECT_TRUE(ReadsBack(row.value)) << row.text;
    }
}

TEST(FloatText, HasTheDigitsOfTheStandardConversion) {
    std::array<char, 64> room;
    const auto first = std::bit_cast<std::uint32_t>(0.01f);
    const auto last = std::bit_cast<std::uint32_t>(16777216.0f);
    for (std::uint32_t bits = first; bits < last; bits += 41) {
        const auto value = std::bit_cast<float>(bits);
        if (value == std::floor(value))
            continue;
        const auto end = std::to_chars(room.data(), room.data() + room.size(), value, std::chars_format::fixed).ptr;
        ASSERT_EQ(std::string(room.data(), end), ToString(value));
        ASSERT_EQ("-" + std::string(room.data(), end), ToString(-value));
    }
}

TEST(FloatText, NamesWhatIsNoNumber) {
    EXPECT_EQ("nan", ToString(eLimits::quiet_NaN()));
    EXPECT_EQ("nan", ToString(-eLimits::quiet_NaN()));
    EXPECT_EQ("inf", ToString(eLimits::infinity()));
    EXPECT_EQ("-inf", ToString(-eLimits::infinity()));
}

TEST(FloatText, IsNoLongerThanAnyShortTextOfTheSameValue) {
    constexpr std::string_view kAlphabet = "0123456789.-e";
    const std::size_t longest = LongTests() ? 6 : 5;
    std::vector<std::string> texts{""};
    for (std::size_t index = 0; index < texts.size(); ++index) {
        const std::string text = texts[index];
        if (const auto value = ReadAsSdl(text); value && std::isfinite(*value)) {
            ASSERT_LE(ToString(*value).size(), text.size()) << text;
        }
        if (text.size() < longest)
            for (const char c : kAlphabet)
                texts.push_back(text + c);
    }
}

TEST(FloatText, ReadsBackAtEveryPowerOfTwoAndItsNeighbours) {
    for (int exponent = -149; exponent <= 127; ++exponent) {
        const float power = std::ldexp(1.0f, exponent);
        for (const float value : {power, std::nextafter(power, 0.0f), std::nextafter(power, eLimits::infinity())})
            for (const float sign : {1.0f, -1.0f})
                EXPECT_TRUE(!std::isfinite(value) || ReadsBack(sign * value)) << ToString(sign * value);
    }
}

TEST(FloatText, ReadsBackAtEveryPowerOfTenAndItsNeighbours) {
    for (int exponent = -45; exponent <= 38; ++exponent)
        for (int factor = 1; factor < 10; ++factor) {
            const auto power = std::strtof((std::to_string(factor) + "e" + std::to_string(exponent)).c_str(), nullptr);
            for (const float value : {power, std::nextafter(power, 0.0f), std::nextafter(power, eLimits::infinity())})
                EXPECT_TRUE(!std::isfinite(value) || ReadsBack(value)) << ToString(value);
        }
}

TEST(FloatText, ReadsBackForADenseStrideOfAllFloats) {
    EXPECT_EQ(0u, CountFailures(0, 2003));
}

TEST(FloatText, ReadsBackForEveryFloat) {
    if (!LongTests())
        GTEST_SKIP() << "runs for minutes; ./dev test --long";
    const std::size_t count = std::max(1u, std::thread::hardware_concurrency());
    std::vector<std::uint64_t> failures(count);
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < count; ++thread)
        threads.emplace_back([&failures, thread, count] { failures[thread] = CountFailures(thread, count); });
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(std::vector<std::uint64_t>(count), failures);
}

TEST(NumberText, FillsABufferAsItFillsAString) {
    std::array<char, kNumberTextRoom + 1> room;
    for (const float value : {0.0f, -0.0f, 1e-45f, -eLimits::max(), 0.00123f, -11754944e-45f, -2147483520.0f,
                              -0.0100000007f, -1048575.94f, -999999.94f, -0.123456784f}) {
        room.fill('#');
        char* const end = PutFloat(room.data(), value);
        EXPECT_EQ(ToString(value), std::string(room.data(), end));
        EXPECT_EQ('#', room[kNumberTextRoom]);
    }
    for (const int value : {0, -1, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
        for (const bool hexadecimal : {false, true}) {
            room.fill('#');
            char* const end = PutInt(room.data(), value, hexadecimal);
            EXPECT_EQ(ToString(value, hexadecimal), std::string(room.data(), end));
            EXPECT_EQ('#', room[kNumberTextRoom]);
        }
}

class eCommaPoint : public std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

void CheckNumbersUnderAnyLocale(const std::string& name) {
    EXPECT_EQ("1234567.5", ToString(1234567.5f)) << name;
    EXPECT_EQ("1234567", ToString(1234567, false)) << name;
    float value = 0;
    EXPECT_TRUE(_FromString(&value, "1234.5")) << name;
    EXPECT_EQ(1234.5f, value) << name;
    EXPECT_FALSE(_FromString(&value, "1234,5")) << name;
    EXPECT_EQ(1234.0f, value) << name;
}

TEST(NumberText, IsTheSameUnderALocaleOfTheLanguage) {
    const auto previous = std::locale::global(std::locale(std::locale::classic(), new eCommaPoint));
    CheckNumbersUnderAnyLocale("comma");
    std::locale::global(previous);
}

TEST(NumberText, IsTheSameUnderEveryLocaleOfTheSystem) {
    int withComma = 0;
    for (const char* name : {"de_DE.UTF-8", "de_DE", "fr_FR.UTF-8", "tr_TR.UTF-8", "ar_EG.UTF-8", "German_Germany.1252",
                             "French_France.1252", "de-DE", ""})
        if (std::setlocale(LC_ALL, name)) {
            withComma += std::localeconv()->decimal_point[0] == ',';
            CheckNumbersUnderAnyLocale(name);
        }
    std::setlocale(LC_ALL, "C");
    if (withComma == 0)
        GTEST_SKIP() << "no locale with a decimal comma is installed";
}

} // namespace
