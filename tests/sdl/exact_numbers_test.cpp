// SPDX-License-Identifier: BSL-1.0
#include <bit>
#include <cmath>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <qzl_base/convert.h>
#include <qzl_io/file_name.h>
#include <qzl_io/sdl.h>
#include <qzl_io/streams.h>

#include "sdl_source.h"
#include "support/reports.h"
#include "support/rounds.h"
#include "support/temp_folder.h"
#include "support/written_text.h"

namespace {

using eLongLong = long long;
using eUnsigned64 = unsigned long long;

constexpr eLongLong kLeast = std::numeric_limits<eLongLong>::min();
constexpr eLongLong kMost = std::numeric_limits<eLongLong>::max();
constexpr eUnsigned64 kMostUnsigned = std::numeric_limits<eUnsigned64>::max();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

template <class T>
T Read(const std::string& text) {
    eSDLReader reader = ReaderOf(text);
    T value{};
    reader >> value;
    return value;
}

template <class T>
eFailure CheckedReading(const std::string& text) {
    return FailureOf([&] {
        eSDLReader reader = ReaderOf(text);
        reader.CheckRange(true);
        T value{};
        reader >> value;
    });
}

template <class... eValues>
std::string Written(const eValues&... values) {
    return WrittenText([&](eSDLWriter& writer) { (writer << ... << values); });
}

bool SameBits(double left, double right) {
    return std::bit_cast<std::uint64_t>(left) == std::bit_cast<std::uint64_t>(right);
}

} // namespace

// --- Reading ---

TEST(ExactNumbers, IntegersOf64BitsAreReadExactly) {
    const struct {
        const char* text;
        eLongLong value;
        eUnsigned64 unsignedValue;
    } rows[] = {
        {"0", 0, 0},
        {"7", 7, 7},
        {"+7", 7, 7},
        {"-0", 0, 0},
        {"-7", -7, 0},
        {"2147483648", 2147483648, 2147483648},
        {"-2147483649", -2147483649, 0},
        {"9223372036854775807", kMost, 9223372036854775807u},
        {"9223372036854775808", kMost, 9223372036854775808u},
        {"-9223372036854775808", kLeast, 0},
        {"-9223372036854775809", kLeast, 0},
        {"18446744073709551615", kMost, kMostUnsigned},
        {"18446744073709551616", kMost, kMostUnsigned},
        {"000000000000000000000000000012", 12, 12},
        {"0x1F", 31, 31},
        {"0xFFFFFFFF", 4294967295, 4294967295},
        {"0xffffffffffffffff", -1, kMostUnsigned},
        {"0x1ffffffffffffffff", -1, kMostUnsigned},
    };
    for (const auto& row : rows) {
        const std::string before(20, ' '); // so that every way of cutting a number is taken
        for (const std::string& text : {std::string(row.text), before + row.text}) {
            EXPECT_EQ(Read<eLongLong>(text), row.value) << text;
            EXPECT_EQ(Read<eUnsigned64>(text), row.unsignedValue) << text;
            EXPECT_EQ(Read<std::int64_t>(text), row.value) << text;
            EXPECT_EQ(Read<std::size_t>(text), row.unsignedValue) << text;
        }
    }
}

TEST(ExactNumbers, DoublesAreReadExactlyFromEitherKindOfNumber) {
    const struct {
        const char* text;
        double value;
    } rows[] = {
        {"0.1", 0.1},
        {"1", 1},
        {"-0.", -0.0},
        {"123456789", 123456789},
        {"9007199254740993", 9007199254740992},
        {"12345678901234567890", 12345678901234567890.0},
        {"0x1F", 31},
        {"0xffffffff", 4294967295},
        {"1e308", 1e308},
        {"1e309", kInfinity},
        {"-1e309", -kInfinity},
        {"5e-324", 5e-324},
        {"1e-400", 0},
        {"(+ 1 0.5)", 1.5},
        {"(/ 1 10)", double{0.1f}},
    };
    for (const auto& row : rows)
        EXPECT_TRUE(SameBits(Read<double>(row.text), row.value)) << row.text << ' ' << Read<double>(row.text);
}

TEST(ExactNumbers, AnotherKindOfTokenIsReportedLikeThatOfTheStatedReads) {
    for (const char* text : {"1.5", "\"1\"", "word", "}", "(+ 1 2)", ""}) {
        EXPECT_EQ(FailureOf([&] { Read<eLongLong>(text); }), ReaderFailure(317, "Integer expected!")) << text;
        EXPECT_EQ(FailureOf([&] { Read<eUnsigned64>(text); }), ReaderFailure(317, "Integer expected!")) << text;
    }
    for (const char* text : {"\"1\"", "word", "}", ""})
        EXPECT_EQ(FailureOf([&] { Read<double>(text); }), ReaderFailure(308, "Number expected!")) << text;
}

TEST(ExactNumbers, AreReadFromTokensThatSomebodyElseLooksAt) {
    eSDLReader reader = ReaderOf("0xffffffffff 12345678901 0.1 (/ 1 10) 7");
    static_cast<void>(reader.Token());
    EXPECT_EQ(reader.GetInt64(), 0xffffffffff);
    EXPECT_EQ(reader.GetInt64(), 12345678901);
    reader.Back();
    EXPECT_EQ(reader.GetUint64(), 12345678901u);
    EXPECT_EQ(reader.GetDouble(), 0.1);
    EXPECT_EQ(reader.GetDouble(), double{0.1f});
    EXPECT_EQ(reader.GetDouble(), 7.0);
}

// --- What the stated reads do ---

TEST(ExactNumbers, LeaveTheStatedReadsAsTheyAre) {
    EXPECT_EQ(Read<int>("99999999999"), 2147483647);
    EXPECT_EQ(Read<int>("-99999999999"), std::numeric_limits<int>::min());
    EXPECT_EQ(Read<int>("0x1ffffffff"), -1);
    EXPECT_EQ(Read<short>("65537"), 1);
    EXPECT_EQ(Read<char>("300"), 44);
    EXPECT_EQ(Read<float>("1e39"), std::numeric_limits<float>::infinity());
    EXPECT_EQ(Read<float>("1e-50"), 0.0f);
    EXPECT_EQ(Read<float>("99999999999"), 2147483648.0f);
    EXPECT_EQ(Read<bool>("99999999999"), true);
}

// --- The option ---

TEST(CheckRange, ReportsWhatDoesNotFitInPlaceOfChangingIt) {
    const auto reported = [](const std::string& number) { return ReaderFailure(620, number + " is out of range!"); };
    for (const char* text : {"2147483648", "-2147483649", "99999999999999999999", "0x100000000"}) {
        EXPECT_EQ(CheckedReading<int>(text), reported(text));
        EXPECT_EQ(CheckedReading<short>(text), reported(text));
        EXPECT_EQ(CheckedReading<char>(text), reported(text));
        EXPECT_EQ(CheckedReading<bool>(text), reported(text));
        EXPECT_EQ(CheckedReading<float>(text), reported(text));
    }
    for (const char* text : {"32768", "-32769", "0x10000"})
        EXPECT_EQ(CheckedReading<short>(text), reported(text));
    for (const char* text : {"128", "-129", "0x100"})
        EXPECT_EQ(CheckedReading<char>(text), reported(text));
    for (const char* text : {"1e39", "-1e39", "1e-50", "0.0000000000000000000000000000000000000000000000001"})
        EXPECT_EQ(CheckedReading<float>(text), reported(text));
    for (const char* text : {"1e309", "1e-400", "0x10000000000000000"})
        EXPECT_EQ(CheckedReading<double>(text), reported(text));
    for (const char* text : {"9223372036854775808", "-9223372036854775809", "0x10000000000000000"})
        EXPECT_EQ(CheckedReading<eLongLong>(text), reported(text));
    for (const char* text : {"18446744073709551616", "-1", "0x10000000000000000"})
        EXPECT_EQ(CheckedReading<eUnsigned64>(text), reported(text));
}

TEST(CheckRange, AcceptsWhatFits) {
    for (const char* text : {"2147483647", "-2147483648", "0xffffffff", "0x000000001", "+5", "-0"})
        EXPECT_EQ(CheckedReading<int>(text), eFailure()) << text;
    for (const char* text : {"32767", "-32768", "0xffff"})
        EXPECT_EQ(CheckedReading<short>(text), eFailure()) << text;
    for (const char* text : {"127", "-128", "0xff"})
        EXPECT_EQ(CheckedReading<char>(text), eFailure()) << text;
    for (const char* text : {"3e38", "1e-45", "0.0", "0.0e5", "-0.", "16777217"})
        EXPECT_EQ(CheckedReading<float>(text), eFailure()) << text;
    for (const char* text : {"99999999999999999999999", "1e308", "5e-324", "0.", "0xffffffffffffffff"})
        EXPECT_EQ(CheckedReading<double>(text), eFailure()) << text;
    for (const char* text : {"9223372036854775807", "-9223372036854775808", "0xffffffffffffffff"})
        EXPECT_EQ(CheckedReading<eLongLong>(text), eFailure()) << text;
    for (const char* text : {"18446744073709551615", "-0", "0xffffffffffffffff"})
        EXPECT_EQ(CheckedReading<eUnsigned64>(text), eFailure()) << text;
}

TEST(CheckRange, CoversCalculations) {
    EXPECT_EQ(CheckedReading<float>("(+ 99999999999 1)"), ReaderFailure(620, "99999999999 is out of range!"));
    EXPECT_EQ(CheckedReading<float>("(+ 1 1e39)"), ReaderFailure(620, "1e39 is out of range!"));
    EXPECT_EQ(CheckedReading<float>("(/ 1 0)"), ReaderFailure(620, "inf is out of range!"));
    EXPECT_EQ(CheckedReading<double>("(/ 1 0)"), ReaderFailure(620, "inf is out of range!"));
    EXPECT_EQ(CheckedReading<float>("(/ 1 3)"), eFailure());
}

TEST(CheckRange, ReportsThePlaceAndTheBeginningOfALongNumber) {
    const std::string number(1u << 20, '9');
    EXPECT_EQ(CheckedReading<int>(number).message, number.substr(0, 100) + "... is out of range!");
    const std::string context = ContextOf([] {
        eSDLReader reader = ReaderOf("1\n 99999999999 2");
        reader.CheckRange(true);
        reader.GetInt();
        reader.GetInt();
    });
    EXPECT_NE(context.find("2:  99999999999\xAB 2"), std::string::npos) << context;
}

TEST(CheckRange, SaysWhatWouldBeRight) {
    const auto expected = []<class T>(const char* number, T value) {
        try {
            eSDLReader reader = ReaderOf(number);
            reader.CheckRange(true);
            reader >> value;
        } catch (const xError::eException& exception) {
            return exception.Report().diagnostic->expected;
        }
        return std::string();
    };
    EXPECT_EQ(expected("300", char{}), "an integer from -128 to 127");
    EXPECT_EQ(expected("40000", short{}), "an integer from -32768 to 32767");
    EXPECT_EQ(expected("-1", eUnsigned64{}), "an integer from 0 to 18446744073709551615");
    EXPECT_EQ(expected("1e39", float{}), "a number within the range of a float");
    EXPECT_EQ(expected("1e309", double{}), "a number within the range of a double");
}

TEST(CheckRange, CanBeSwitchedAtAnyTimeAndHoldsForIncludedSources) {
    const eTempFolder folder;
    eSDLReader reader = ReaderOf(std::string(30, ' ') + "99999999999 99999999999 99999999999");
    EXPECT_FALSE(reader.CheckRange());
    EXPECT_EQ(reader.GetInt(), 2147483647);
    reader.CheckRange(true);
    EXPECT_TRUE(reader.CheckRange());
    EXPECT_EQ(FailureOf([&] { reader.GetInt(); }), ReaderFailure(620, "99999999999 is out of range!"));
    reader.Include(folder.Write("part.sdl", std::string(30, ' ') + "99999999999"));
    EXPECT_EQ(FailureOf([&] { reader.GetInt(); }), ReaderFailure(620, "99999999999 is out of range!"));
    reader.CheckRange(false);
    EXPECT_EQ(reader.GetInt(), 2147483647);
}

TEST(CheckRange, IsEachCopysOwn) {
    eSDLReader reader = ReaderOf(std::string(30, ' ') + "99999999999 99999999999");
    eSDLReader copy = reader;
    copy.CheckRange(true);
    EXPECT_EQ(reader.GetInt(), 2147483647);
    EXPECT_EQ(FailureOf([&] { copy.GetInt(); }), ReaderFailure(620, "99999999999 is out of range!"));
}

// --- Writing ---

TEST(ExactNumbers, AreWrittenAsTextsThatReadBack) {
    EXPECT_EQ(Written(0.5, 1LL, std::size_t{2}, std::int64_t{-3}), "0.5 1 2 -3");
    EXPECT_EQ(Written(kLeast, kMost, kMostUnsigned), "-9223372036854775808 9223372036854775807 18446744073709551615");
    EXPECT_EQ(Written(std::int64_t{-5'000'000'000}, std::uint64_t{5'000'000'000}), "-5000000000 5000000000");
    const struct {
        double value;
        const char* text;
    } rows[] = {
        {0, "0"},
        {-0.0, "-0."},
        {3, "3"},
        {-3, "-3"},
        {1000, "1e3"},
        {0.1, "0.1"},
        {double{0.1f}, "0.10000000149011612"},
        {1.0 / 3, "0.3333333333333333"},
        {1e-5, "1e-5"},
        {0.001, "1e-3"},
        {0.0012, "12e-4"},
        {0.01, "0.01"},
        {123.456, "123.456"},
        {2147483647, "2147483647"},
        {-2147483648.0, "-2147483648"},
        {2147483648.0, "2147483648."},
        {12345678901, "12345678901."},
        {9007199254740992.0, "9007199254740992."},
        {1e22, "1e22"},
        {1.5e300, "15e299"},
        {1.7976931348623157e308, "17976931348623157e292"},
        {2.2250738585072014e-308, "22250738585072014e-324"},
        {5e-324, "5e-324"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Written(row.value), row.text);
        EXPECT_TRUE(SameBits(Read<double>(row.text), row.value)) << row.text;
        EXPECT_EQ(Read<float>(row.text), static_cast<float>(row.value)) << row.text;
    }
}

TEST(ExactNumbers, OfAnyBitsReadBack) {
    std::mt19937_64 random(11);
    for (eRounds rounds(20'000, 2'000'000); rounds.Next();) {
        const std::uint64_t bits = random();
        const auto value = std::bit_cast<double>(bits);
        if (std::isfinite(value)) {
            char text[kNumberTextRoom];
            const std::string written(text, PutDouble(text, value));
            ASSERT_TRUE(SameBits(Read<double>(written), value)) << written;
        }
        const double fraction = static_cast<double>(static_cast<std::int64_t>(bits) >> (bits & 63)) / 1000;
        ASSERT_TRUE(SameBits(Read<double>(Written(fraction)), fraction)) << Written(fraction);
        ASSERT_EQ(Read<eUnsigned64>(Written(bits)), bits);
        ASSERT_EQ(Read<eLongLong>(Written(static_cast<eLongLong>(bits))), static_cast<eLongLong>(bits));
    }
}

TEST(ExactNumbers, ThatAreNoneAreWrittenAsZeroWithTheWarningOfAFloat) {
    const eReports reports;
    EXPECT_EQ(Written(std::numeric_limits<double>::quiet_NaN(), kInfinity, -kInfinity), "0 0 0");
    EXPECT_EQ(MessagesOf(reports.warnings()),
              (std::vector<std::string>{"Saving invalid floating number nan. It was truncated to 0",
                                        "Saving invalid floating number inf. It was truncated to 0",
                                        "Saving invalid floating number -inf. It was truncated to 0"}));
}

TEST(ExactNumbers, TakeTheFlagForHexadecimalDigits) {
    const auto inHexadecimal = [](auto value) {
        return WrittenText([&](eSDLWriter& writer) {
            writer.Stream().formatFlag = true;
            writer << value << 31;
        });
    };
    EXPECT_EQ(inHexadecimal(31LL), "0x1f 31");
    EXPECT_EQ(inHexadecimal(0xffffffffffLL), "0xffffffffff 31");
    EXPECT_EQ(inHexadecimal(kMostUnsigned), "0xffffffffffffffff 31");
    EXPECT_EQ(Read<eLongLong>("0xffffffffff"), 0xffffffffff);
}

// --- What the stated writes do ---

namespace {

enum ePlain { Plain = 5 };

template <class T>
concept eWritable = requires(eSDLWriter& writer, const T& value) {
    writer << value;
};

static_assert(eWritable<double> && eWritable<eLongLong> && eWritable<eUnsigned64> && eWritable<std::size_t>);
static_assert(!eWritable<void*> && !eWritable<const int*> && !eWritable<long double>);

} // namespace

TEST(ExactNumbers, LeaveTheStatedWritesAsTheyAre) {
    EXPECT_EQ(Written('A', static_cast<signed char>(-1), static_cast<unsigned char>(200), char(-56)), "65 -1 200 -56");
    EXPECT_EQ(Written(true, false, short{-7}, static_cast<unsigned short>(65535)), "1 0 -7 65535");
    EXPECT_EQ(Written(-7, 4294967295u, Plain, L'A'), "-7 -1 5 65");
    EXPECT_EQ(Written(0.1f, 1.0f, 16777216.0f, 2147483648.0f), "0.1 1 16777216 21474836e2");
    EXPECT_EQ(Written("text", std::string("text"), eFileName("a\\b")), "\"text\" \"text\" \"a/b\"");
}
