// SPDX-License-Identifier: BSL-1.0
#include <cstddef>
#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <qzl_base/convert.h>
#include <qzl_io/sdl/json_to_sdl.h>
#include <qzl_io/streams.h>

#include "support/reports.h"

// What a document becomes with each of the parsers that the library can be built with.

namespace {

using testing::HasSubstr;

constexpr const char* kRefused = "refused";

#ifdef _WIN32
constexpr bool kOnWindows = true;
#else
constexpr bool kOnWindows = false;
#endif

std::string Converted(std::string_view json) {
    IO::eBufferStream input(json);
    IO::eMemoryStream output;
    if (!JsonStreamToSdl(input, output))
        return kRefused;
    return {reinterpret_cast<const char*>(output.Buffer()), output.Size()};
}

TEST(JsonEngine, IsOneOfTwo) {
    std::cout << "JSON engine: " << JsonEngine() << '\n';
    EXPECT_TRUE(JsonEngine() == "cpprestsdk" || JsonEngine() == "simdjson") << JsonEngine();
}

std::string Nested(std::size_t depth) {
    return std::string(depth, '[') + std::string(depth, ']');
}

TEST(JsonEngine, DecidesWhatIsAcceptedBeyondJson) {
    const struct {
        const char* what;
        std::string json;
        bool cpprestsdk;
        bool simdjson;
    } rows[] = {
        {"ill-formed UTF-8", "\"a\xFFz\"", true, false},
        {"a sequence of UTF-8 cut short", "\"a\xE2\x82z\"", true, false},
        {"the most levels of cpprestsdk", Nested(128), true, true},
        {"a level more", Nested(129), false, true},
        {"the most levels of simdjson", Nested(1024), false, true},
        {"a level more", Nested(1025), false, false},
        {"a leading zero", "[01]", true, false},
        {"a leading zero below zero", "[-01]", true, false},
        {"a comment to the line's end", "[1] // one", true, false},
        {"a comment", "[/* one */ 1]", true, false},
        {"a vertical tab between values", "[\v1]", true, false},
        {"a form feed between values", "[1\f]", true, false},
        {"a blank of Unicode between values", "[1\xC2\xA0]", kOnWindows, false},
        {"a control character in a string", "[\"a\tb\"]", false, false},
        {"a comma at the end", "[1,]", false, false},
        {"single quotes", "['a']", false, false},
        {"not a number", "[NaN]", false, false},
        {"a number that begins with a dot", "[.5]", false, false},
        {"a number that ends with a dot", "[5.]", false, false},
        {"a second value", "[1] 2", false, false},
        {"nothing", "", false, false},
    };
    for (const auto& row : rows) {
        const eReports reports;
        const bool accepted = Converted(row.json) != kRefused;
        EXPECT_EQ(accepted, JsonEngine() == "simdjson" ? row.simdjson : row.cpprestsdk) << row.what;
        EXPECT_EQ(reports.warnings().size(), accepted ? 0U : 1U) << row.what;
    }
}

TEST(JsonEngine, ReadsNumbersOfAnyNumberOfDigits) {
    const std::vector<std::string> numbers = {"0",
                                              "-0",
                                              "1.5",
                                              "-2147483648",
                                              "4294967295",
                                              "174830184460147.4048",
                                              "1748301844601474048.0",
                                              "0.1748301844601474048",
                                              "9007199254740993.0",
                                              "-9007199254740993.00000000001",
                                              "1.00000005960464477539062500001",
                                              "1.0000000596046447753906250",
                                              "123456789012345678901234567890.5",
                                              "0.00000000000000000000012345678901234567890",
                                              "7.0064923216240853546186479164495806564013097093825788587853e-46",
                                              "340282346638528859811704183484516925440.0",
                                              "12345678901234567890123456789012345678",
                                              "1e-400",
                                              "-0.0344321443184467440737095516168",
                                              "0.034432144318446744073",
                                              "-1.5e-3",
                                              "-0.0",
                                              "0.1",
                                              "-999999999999.999",
                                              "99999999.9999999",
                                              "0.00000000000001",
                                              "16777217.0",
                                              "999999999999999.0",
                                              "1234567890123456.5",
                                              "25E+2",
                                              "-21474429496729683649",
                                              "21474429496729683649",
                                              "1." + std::string(1500, '5')};
    for (const std::string& number : numbers) {
        const eReports reports;
        const double value = std::strtod(number.c_str(), nullptr);
        const bool isReal =
            number.find_first_of(".e") != std::string::npos || value >= 4294967296.0 || value < -2147483648.0;
        const std::string text = isReal ? ToString(static_cast<float>(value))
                                        : ToString(static_cast<int>(static_cast<long long>(value)), false);
        EXPECT_EQ(Converted('[' + number + ']'), text + "\r\n") << number;
        EXPECT_EQ(Converted(number), text) << number << " alone";
        EXPECT_TRUE(reports.warnings().empty()) << number;
    }
}

TEST(JsonEngine, DecidesWhatBecomesOfIllFormedText) {
    const eReports reports;
    for (const std::size_t size : {0U, 13U, 14U, 15U, 16U, 100U, 100000U}) {
        const std::string plain(size, 'x');
        EXPECT_EQ(Converted('"' + plain + "\xFF\""),
                  JsonEngine() == "simdjson" ? kRefused : '"' + plain + "\xEF\xBF\xBD\"");
    }
    for (const xError::eReport& warning : reports.warnings())
        EXPECT_THAT(warning.message, HasSubstr("Line 1, Column "));
}

TEST(JsonEngine, NeverDecidesWhatAreNumbersBeyondSixtyFourBitsAndRepeatedNames) {
    const struct {
        const char* json;
        const char* sdl;
        std::size_t warnings;
    } rows[] = {
        {"18446744073709551616", "18446744e12", 0},
        {"[18446744073709551616]", "18446744e12\r\n", 0},
        {"-9223372036854775809", "-9223372e12", 0},
        {"[1e-400]", "0\r\n", 0},
        {"[123e-100000000000000]", "0\r\n", 0},
        {"[1e400, 2]", "0\r\n2\r\n", 1},
        {"-1e99999999999999999999999", "0", 1},
        {R"({"a": 1, "b": 2, "a": 3})", "{a 1}\r\n{b 2}\r\n{a 3}\r\n", 0},
        {R"({"a\u00e9b": "c\"d\u20ac"})",
         "{a\xC3\xA9"
         "b \"c\\\"d\xE2\x82\xAC\"}\r\n",
         0},
    };
    for (const auto& row : rows) {
        const eReports reports;
        EXPECT_EQ(Converted(row.json), row.sdl) << row.json;
        EXPECT_EQ(reports.warnings().size(), row.warnings) << row.json;
    }
}

TEST(JsonEngine, TellsTheLineOfAMistake) {
    const char* const rows[] = {"[1,\n2,\n}", "{\"a\": 1,\n\"b\": [2,\n3 4]}", "[true,\n1,\ntru]", "[1]\n\n]",
                                "[\n\n0x1]"};
    for (const char* json : rows) {
        const eReports reports;
        EXPECT_EQ(Converted(json), kRefused) << json;
        ASSERT_EQ(reports.warnings().size(), 1U) << json;
        EXPECT_THAT(reports.warnings()[0].message, HasSubstr("Line 3, Column ")) << json;
    }
}

} // namespace
