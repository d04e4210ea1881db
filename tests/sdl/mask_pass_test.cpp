// SPDX-License-Identifier: BSL-1.0
#include "sdl/mask_pass.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <random>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/long_tests.h"
#include "support/processor.h"

namespace {

using namespace xSDL;

struct eTokenPlaces {
    std::set<std::ptrdiff_t> braces;
    std::set<std::ptrdiff_t> boundaries; // places from which the same tokens are cut
    std::size_t tokens = 0;
};

eTokenPlaces PlacesByTokens(const std::string& text) {
    eTokenPlaces places;
    places.boundaries.insert(0);
    const char* at = text.data();
    for (int line = 1;;) {
        const char* const before = at;
        const char* const begin = FindToken(at, line).at;
        const char* const comment = std::find(before, begin, ';');
        for (const char* blank = before; blank <= comment; ++blank)
            places.boundaries.insert(blank - text.data());
        places.boundaries.insert(begin - text.data());
        eLexeme token;
        if (!CutToken(&at, &line, &token) || token.type == sdlError)
            return places;
        ++places.tokens;
        if (token.type == sdlBlockStart || token.type == sdlBlockEnd)
            places.braces.insert(begin - text.data());
        places.boundaries.insert(at - text.data());
    }
}

std::string RandomText(std::mt19937& random) {
    static const std::vector<std::string> pieces = {
        "a",    "word ", "12 ",   "0x1F ",   " 1.5",  " -2.5e+3 ", "{",          "}",
        "\n\t", "=",     "\"}\"", "\"s {\"", "7-5.5", "b+1.5",     "\"{ 12.5\"", std::string(20, 'w')};
    static const std::vector<std::string> stops = {"; }\n", "{#m", "(",    "\"\\n\"",
                                                   "#",     "a.5", "\"\n", "\"" + std::string(70, '}') + '"'};
    std::string text;
    for (auto left = random() % 200; left > 0; --left)
        text += random() % 40 == 0 ? stops[random() % stops.size()] : pieces[random() % pieces.size()];
    return text + std::string(kTextEnd, '\0');
}

class MaskPass : public testing::TestWithParam<eBraceFinder> {
    void SetUp() override {
        if (GetParam() == FindBracesByAvx2 && !HasAvx2())
            GTEST_SKIP() << "the processor lacks AVX2, BMI1, PCLMUL or POPCNT";
    }
};

INSTANTIATE_TEST_SUITE_P(Widths, MaskPass, testing::Values(FindBracesBySse2, FindBracesByAvx2));

// Where the braces are that a pass from the scan's beginning tells of.
std::set<std::ptrdiff_t> BracesByMasks(eBraceFinder find, const std::string& text, eMaskScan* scan) {
    std::array<eBraces, 3> found;
    std::set<std::ptrdiff_t> braces;
    for (std::size_t count = found.size(); count == found.size();) {
        std::ptrdiff_t place = scan->at - text.data();
        count = find(scan, found.data(), found.size());
        for (std::size_t i = 0; i < count; ++i)
            for (std::size_t bit = 0; bit < 64; ++bit, ++place) {
                const bool starts = ((found[i].starts >> bit) & 1) != 0;
                const bool ends = ((found[i].ends >> bit) & 1) != 0;
                if (!starts && !ends)
                    continue;
                EXPECT_EQ(text[static_cast<std::size_t>(place)], starts ? '{' : '}');
                braces.insert(place);
            }
    }
    return braces;
}

} // namespace

TEST_P(MaskPass, FindsTheBracesOfTheTokens) {
    std::mt19937 random(11);
    const std::size_t wanted = LongTests() ? 100'000'000 : 500'000;
    std::size_t passed = 0;
    for (std::size_t tokens = 0; tokens < wanted;) {
        const std::string text = RandomText(random);
        const eTokenPlaces places = PlacesByTokens(text);
        tokens += places.tokens;
        for (auto from = places.boundaries.begin(); from != places.boundaries.end();) {
            eMaskScan scan(text.data() + *from);
            const std::set<std::ptrdiff_t> braces = BracesByMasks(GetParam(), text, &scan);
            const std::ptrdiff_t end = scan.at - text.data();
            passed += static_cast<std::size_t>(end - *from);
            ASSERT_EQ(braces, std::set(places.braces.lower_bound(*from), places.braces.lower_bound(end))) << text;
            const std::ptrdiff_t boundary = scan.BoundaryAfter(text.data() + *from) - text.data();
            ASSERT_LE(boundary, end);
            ASSERT_TRUE(places.boundaries.contains(boundary)) << boundary << " of " << text;
            ASSERT_TRUE(places.braces.lower_bound(boundary) == places.braces.lower_bound(end)) << text;
            from = places.boundaries.upper_bound(end);
        }
    }
    EXPECT_GT(passed, 500'000u);
}

TEST_P(MaskPass, LeavesABraceWhoseMarkBeginsTheNextCharacters) {
    for (std::size_t before = 0; before < 200; ++before) {
        const std::string text = std::string(before, ' ') + "{#m" + std::string(kTextEnd, '\0');
        eMaskScan scan(text.data());
        std::array<eBraces, 4> found;
        const std::size_t count = GetParam()(&scan, found.data(), found.size());
        ASSERT_EQ(count, before / 64) << before;
        for (std::size_t i = 0; i < count; ++i)
            ASSERT_EQ(found[i].starts, 0u) << before;
        ASSERT_LE(static_cast<std::size_t>(scan.BoundaryAfter(text.data()) - text.data()), before);
    }
}
