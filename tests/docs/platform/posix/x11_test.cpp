// SPDX-License-Identifier: BSL-1.0
// The headers of X11 define Bool, None and other words as macros: they come last, and the macros go.
#include <gtest/gtest.h>

#include <qzl_io/qzl_io.h>

#if __has_include(<X11/Xlib.h>)
#include <X11/Xlib.h>
#else
#define Bool int
#define None 0L
#endif
#undef Bool
#undef None

namespace {

TEST(ClashingNames, BoolIsThatOfStreamsBesideX11) {
    IO::eMemoryStream stream;
    stream << true;
    stream.Reset();
    EXPECT_TRUE(stream.Bool());
    EXPECT_EQ(eSDLDocument("").Find("a").Kind(), eSDLKind::None);
}

} // namespace
