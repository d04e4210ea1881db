// SPDX-License-Identifier: BSL-1.0
#include "qzl_base/shared/ascii.h"

#include <cstddef>
#include <string_view>

#include <gtest/gtest.h>

namespace {

TEST(Ascii, KnowsDigitsAndLettersOfEitherCaseAndNothingElse) {
    const std::string_view digits = "0123456789abcdef";
    const std::string_view upper = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
    const std::string_view lower = "abcdefghijklmnopqrstuvwxyz";
    for (int byte = 0; byte < 256; ++byte) {
        const char c = static_cast<char>(byte);
        const std::size_t letter = upper.find(c);
        const char lowered = letter == std::string_view::npos ? c : lower[letter];
        const std::size_t digit = digits.find(lowered);
        EXPECT_EQ(ascii::ToLower(c), lowered) << byte;
        EXPECT_EQ(ascii::HexDigit(c), digit == std::string_view::npos ? -1 : static_cast<int>(digit)) << byte;
        EXPECT_EQ(ascii::IsDigit(c), digit < 10) << byte;
    }
}

} // namespace
