// SPDX-License-Identifier: BSL-1.0
#include "platform/pure/beside_name.h"

#include <string>

#include <gtest/gtest.h>

namespace {

using IO::System::BesideName;

TEST(BesideName, SaysWhatItStandsBesideAndWhatFor) {
    EXPECT_EQ(BesideName(".", std::string("scene.sdl"), ".saving", 0), ".scene.sdl.saving");
    EXPECT_EQ(BesideName(L".", std::wstring(L"scene.sdl"), L".saving", 12), L".scene.sdl.saving12");
}

TEST(BesideName, IsNoLongerThanFileSystemsAcceptAndTellsTargetsApart) {
    const std::string begin(200, 'a');
    EXPECT_EQ(BesideName(".", begin, ".saving", 0), '.' + begin + ".saving");
    const std::string first = BesideName(".", begin + "1", ".saving", 0);
    EXPECT_TRUE(first.starts_with('.' + begin + '~'));
    EXPECT_LE(first.size(), 255u);
    EXPECT_NE(first, BesideName(".", begin + "2", ".saving", 0));
}

} // namespace
