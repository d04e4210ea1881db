// SPDX-License-Identifier: BSL-1.0
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include <qzl_io/streams.h>

#include "probe.h"
#include "support/self_move.h"
#include "support/temp_folder.h"

namespace Mode = IO::StreamMode;

namespace {

constexpr int kNew = Mode::Write | Mode::Create;

IO::eTextStream& Dash(IO::eTextStream& text) {
    return text.WriteStr("-");
}

} // namespace

TEST(TextStream, LineSeparatorsAreCarriageReturnAndLineFeed) {
    EXPECT_STREQ(IO::TextLineSeparator(), "\r\n");
    EXPECT_STREQ(IO::TextLineSeparatorW(), L"\r\n");
}

TEST(TextStream, WritesCharactersWithoutPrefixToALentStream) {
    IO::eMemoryStream target;
    {
        IO::eTextStream text(&target);
        EXPECT_EQ(&text.Stream(), &target);
        text.WriteStr("abc") << Dash << Dash;
        EXPECT_EQ(text.Position(), 5u);
        text.WriteStr("").WriteStr(nullptr);
        EXPECT_EQ(text.Position(), 5u);
        text.WriteStr(IO::TextLineSeparator());
    }
    EXPECT_TRUE(target.Enabled(Mode::Modified)) << "left alive and unflushed";
    EXPECT_EQ(Content(target), "abc--\r\n");
}

TEST(TextStream, ClosesAFileThatItOpened) {
    const eTempFolder folder;
    {
        IO::eTextStream narrow(eFileName(folder.Name("narrow")), kNew);
        IO::eTextStream wide(eFileNameW(folder.NameW(L"wide")), kNew);
        narrow.WriteStr("abc");
        wide.WriteStr("def");
    }
    EXPECT_EQ(folder.Read("narrow"), "abc");
    EXPECT_EQ(folder.Read("wide"), "def");
}

TEST(TextStream, AFileThatCannotBeOpenedIsAskedForByIsOpen) {
    const eTempFolder folder;
    IO::eTextStream text(eFileName(folder.Name("missing/file")), kNew);
    EXPECT_FALSE(text.Stream().IsOpen());
    text.WriteStr("abc");
    EXPECT_EQ(text.Position(), 0u);
}

TEST(TextStream, CopiesReachOneTargetThatTheLastOwnerCloses) {
    const eTempFolder folder;
    {
        IO::eTextStream last(nullptr);
        {
            IO::eTextStream first(eFileName(folder.Name("file")), kNew);
            IO::eTextStream second(first);
            IO::eTextStream other(eFileName(folder.Name("other")), kNew);
            other.WriteStr("o");
            other = second;
            EXPECT_EQ(folder.Read("other"), "o");
            EXPECT_EQ(&other.Stream(), &first.Stream());
            first.WriteStr("1");
            second.WriteStr("2");
            other.WriteStr("3");
            last = other;
            last = *&last;
        }
        EXPECT_EQ(last.Position(), 3u);
        last.WriteStr("4");
    }
    EXPECT_EQ(folder.Read("file"), "1234");
}

TEST(TextStream, MovedOntoItselfKeepsItsTarget) {
    const eTempFolder folder;
    IO::eMemoryStream target;
    {
        IO::eTextStream lent(&target);
        IO::eTextStream owned(eFileName(folder.Name("file")), kNew);
        for (IO::eTextStream* text : {&lent, &owned}) {
            const IO::eStream* const stream = &text->Stream();
            text->WriteStr("a");
            MoveOntoItself(*text);
            EXPECT_EQ(&text->Stream(), stream);
            EXPECT_EQ(text->Position(), 1u);
            text->WriteStr("b");
        }
    }
    EXPECT_EQ(Content(target), "ab");
    EXPECT_EQ(folder.Read("file"), "ab");
}

TEST(TextStream, AMovedFromTextStreamHasNoTarget) {
    const eTempFolder folder;
    IO::eTextStream first(eFileName(folder.Name("file")), kNew);
    first.WriteStr("a");
    IO::eTextStream second(std::move(first));
    first.WriteStr("lost");
    EXPECT_EQ(first.Position(), 0u);
    IO::eTextStream third(nullptr);
    third = std::move(second);
    third.WriteStr("b");
    third = IO::eTextStream(nullptr);
    EXPECT_EQ(folder.Read("file"), "ab");
}
