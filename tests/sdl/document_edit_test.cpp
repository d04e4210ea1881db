// SPDX-License-Identifier: BSL-1.0
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include <qzl_base/error.h>
#include <qzl_io/sdl/document.h>
#include <qzl_io/streams.h>

#include "sdl/document_model.h"
#include "support/temp_folder.h"

namespace {

using eEditing = std::function<bool(eSDLDocument&)>;

struct eEdited {
    const char* before;
    eEditing edit;
    const char* after; // null: refused
};

eEditing Set(const char* path, const eSDLItem& item) {
    return [=](eSDLDocument& document) { return document.Set(document.Find(path), item); };
}
eEditing Before(const char* path, const eSDLItem& item) {
    return [=](eSDLDocument& document) { return static_cast<bool>(document.InsertBefore(document.Find(path), item)); };
}
eEditing After(const char* path, const eSDLItem& item) {
    return [=](eSDLDocument& document) { return static_cast<bool>(document.InsertAfter(document.Find(path), item)); };
}
eEditing Append(const char* path, const eSDLItem& item) {
    return [=](eSDLDocument& document) {
        return static_cast<bool>(document.Append(*path ? document.Find(path) : document.Root(), item));
    };
}
eEditing Remove(const char* path) {
    return [=](eSDLDocument& document) { return document.Remove(document.Find(path)); };
}
eEditing Rename(const char* path, const char* name) {
    return [=](eSDLDocument& document) { return document.Rename(document.Find(path), name); };
}

// The part of the kind, which need not be an item.
eSDLNode PartOf(const eSDLDocument& document, eSDLKind kind) {
    for (const eSDLPart& part : document.Parts())
        if (part.kind == kind)
            return part.node;
    return {};
}
eEditing RemovePart(eSDLKind kind) {
    return [=](eSDLDocument& document) { return document.Remove(PartOf(document, kind)); };
}
eEditing AfterPart(eSDLKind kind, const eSDLItem& item) {
    return
        [=](eSDLDocument& document) { return static_cast<bool>(document.InsertAfter(PartOf(document, kind), item)); };
}
eEditing BeforePart(eSDLKind kind, const eSDLItem& item) {
    return
        [=](eSDLDocument& document) { return static_cast<bool>(document.InsertBefore(PartOf(document, kind), item)); };
}

void ExpectEdits(const std::vector<eEdited>& edits) {
    for (const eEdited& each : edits) {
        eSDLDocument document(each.before);
        EXPECT_EQ(each.edit(document), each.after != nullptr) << each.before;
        EXPECT_EQ(document.Text(), each.after ? each.after : each.before);
        EXPECT_EQ(JoinedParts(document), document.Text());
    }
}

TEST(DocumentEdit, AValueTakesThePlaceOfAnother) {
    ExpectEdits({
        {"{a 1 ; c\r\n}", Set("a/0", 2), "{a 2 ; c\r\n}"},
        {"{a x = 1}", Set("a/1", "s\n\"\\"), "{a x = \"s\\n\\\"\\\\\"}"},
        {"{a 0x1F}", Set("a/0", -1.5F), "{a -1.5}"},
        {"{a 1}", Set("a/0", 0.1), "{a 0.1}"},
        {"{a 1}", Set("a/0", 5000000000LL), "{a 5000000000}"},
        {"{a 1}", Set("a/0", 5000000000.0), "{a 5e9}"},
        {"{a 1}", Set("a/0", -0.0F), "{a -0.}"},
        {"{a 1}", Set("a/0", true), "{a 1}"},
        {"{a (+ 1 2)}", Set("a/0", 3), "{a 3}"},
        {"{a -}", Set("a/0", 3), "{a 3}"},
        {"{a 1}", Set("a/0", eSDLItem::Word("fast")), "{a fast}"},
        {"1", Set("0", eSDLItem::Word("fast")), "fast"},
        {"{1}", Set("*/0", eSDLItem::Word("fast")), nullptr}, // would be the name
        {"{a 1}", Set("a", 1), nullptr},
        {"{a 1}", Set("a/0", eSDLItem::Block("b")), nullptr},
        {"{a 1}", Set("a/0", eSDLItem::Source("1")), nullptr},
        {"{a 1}", Set("a/0", eSDLItem::Word("1")), nullptr},
        {"{a 1}", Set("a/0", std::numeric_limits<float>::infinity()), nullptr},
        {"{a 1}", Set("a/0", std::nan("")), nullptr},
        {"{a 1}", Set("a/5", 1), nullptr},
    });
}

TEST(DocumentEdit, TokensNeverGrowTogether) {
    ExpectEdits({
        {"{a\"x\"b}", Set("a/0", 5), "{a 5 b}"},
        {"{a b\"x\".5}", Set("a/1", 5), "{a b 5 .5}"},
        {"{a 1\"x\"2}", Remove("a/1"), "{a 1 2}"},
        {"{a 5$}", RemovePart(eSDLKind::Bad), "{a 5}"},
        {"{a 1$.5}", RemovePart(eSDLKind::Bad), "{a 1 5}"},
        {"{5#}", Remove("*/0"), "{ #}"},
        {"{\"x\"# 1}", Remove("*/0"), "{ # 1}"},
        {"{a 1{b}2}", Remove("a/b"), "{a 1 2}"},
        {"1.5.5", After("0", 7), "1.5 7 .5"},
        {"{a 1.5.5}", After("a/0", 7), "{a 1.5 7 .5}"},
        {"{a +}", Append("a", 1), "{a + 1}"},
        {"{#m}", Append("*", 1), "{#m 1}"},
        {"{a ; c\r}", Append("a", 1), "{a ; c\r\n\t1\r}"},
        {"5 ; c", Append("", 1), "5 ; c\r\n1"},
        {"{a x ; c\n}", AfterPart(eSDLKind::Comment, 1), "{a x ; c\n1\n}"},
        {"{a 1}", After("a/0", eSDLItem::Source("; c")), "{a 1 ; c\r\n}"},
        {"{a 1 2}", Before("a/1", eSDLItem::Source("; c")), "{a 1 ; c\r\n2}"},
        {"{a} \uFEFFb", Remove("a"), " \uFEFFb"}, // or it would be the text's byte-order mark
        {"\uFEFF{a} \uFEFFb", Remove("a"), "\uFEFF\uFEFFb"},
        {"\"x\\", Append("", 1), nullptr},
        {"{a \"x", Append("a", 1), nullptr},
        {"{a (\"c\" }", Append("a", 1), nullptr},
    });
}

TEST(DocumentEdit, WhatIsInsertedLooksLikeItsNeighbours) {
    ExpectEdits({
        {"{a\n  1\n  2 ; two\n}", After("a/1", 3), "{a\n  1\n  2 ; two\n  3\n}"},
        {"{a\n  1\n  2 ; two\n}", Before("a/1", 3), "{a\n  1\n  3\n  2 ; two\n}"},
        {"{a\r\n\t1\r\n}", Append("a", 3), "{a\r\n\t1\r\n\t3\r\n}"},
        {"{a\n    1 ; one\n}", Append("a", 3), "{a\n    1 ; one\n    3\n}"},
        {"{a 1 2}", After("a/0", 3), "{a 1 3 2}"},
        {"{a 1 2}", Before("a/0", 3), "{a 3 1 2}"},
        {"{a}", Append("a", 3), "{a 3}"},
        {"{}", Append("*", 3), "{3}"},
        {"{a\n}", Append("a", 3), "{a\n\t3\n}"},
        {"{s\n  {a\n  }\n}", Append("s/a", 3), "{s\n  {a\n    3\n  }\n}"},
        {"{s\n  {a 1}\n}\n", After("s/a", eSDLItem::Block("b")), "{s\n  {a 1}\n  {b}\n}\n"},
        {"{s\n  {a\n    1\n  } ; the a\n}", After("s/a", eSDLItem::Block("b", "m")),
         "{s\n  {a\n    1\n  } ; the a\n  {#m b}\n}"},
        {"{s\n  {a}\n}", After("s/a", eSDLItem::Source("{b\n\t1\n}")), "{s\n  {a}\n  {b\n  \t1\n  }\n}"},
        {"{s\n  {a}\n}", Before("s/a", eSDLItem::Source("{b \"x\\\ny\"}")), "{s\n  {b \"x\\\ny\"}\n  {a}\n}"},
        {"{a}\n", Append("", eSDLItem::Block("b")), "{a}\n{b}\n"},
        {"", Append("", eSDLItem::Block("b")), "{b}"},
        {"\xEF\xBB\xBF", Append("", 1),
         "\xEF\xBB\xBF"
         "1"},
        {"1 ; c\n2\n", BeforePart(eSDLKind::Comment, 5), "1 5 ; c\n2\n"},
    });
}

// Beside more blanks than are looked at, what is inserted stands where it can.
TEST(DocumentEdit, LongBlanksAndLinesAreNotLookedThrough) {
    const std::string blanks(5000, ' ');
    const std::string word(5000, 'w');
    const struct {
        std::string before;
        eEditing edit;
        std::string after;
    } rows[] = {
        {"{a" + blanks + "1}", Before("a/0", 3), "{a" + blanks + "3 1}"},
        {"{a}" + blanks, Append("", eSDLItem::Block("b")), "{a}" + blanks + "\r\n{b}"},
        {"{a 1" + blanks + "}", Append("a", 3), "{a 1" + blanks + "3}"},
        {"{a\n1 \"" + word + "\"\n}", Append("a", 3), "{a\n1 \"" + word + "\"\n\t3\n}"},
    };
    for (const auto& row : rows) {
        eSDLDocument document(row.before);
        EXPECT_TRUE(row.edit(document));
        EXPECT_EQ(document.Text(), row.after);
    }
}

TEST(DocumentEdit, WhatIsRemovedTakesItsLinesWithIt) {
    ExpectEdits({
        {"{s\n  {a 1}\n  {b}\n}", Remove("s/a"), "{s\n  {b}\n}"},
        {"{s\n  ; about a\n  {a\n    1 ; one\n  } ; the a\n  {b}\n}", Remove("s/a"), "{s\n  ; about a\n  {b}\n}"},
        {"{a 1 2}", Remove("a/0"), "{a 2}"},
        {"{a 1 2}", Remove("a/1"), "{a 1}"},
        {"{a 1 ; c\r\n}", Remove("a/0"), "{a ; c\r\n}"},
        {"  1 2\n", Remove("0"), "  2\n"},
        {"{a x = 5}", Remove("a/1"), "{a x}"},
        {"1\r\n2", Remove("1"), "1\r\n"},
        {"1", Remove("0"), ""},
        {"1 ; c\n2", RemovePart(eSDLKind::Comment), "1\n2"},
        {"1\n ; c\n2", RemovePart(eSDLKind::Comment), "1\n2"},
        {"1 (\"c\") 2", RemovePart(eSDLKind::Control), "1 2"},
        {"1 } 2", RemovePart(eSDLKind::Bad), "1 2"},
        {"\"x\n2", RemovePart(eSDLKind::Bad), "2"},
        {"; c\r5\r6", Remove("0"), "; c\r\r6"},
        {"{a 1}", RemovePart(eSDLKind::Word), nullptr}, // the name
        {"{a 1}", RemovePart(eSDLKind::Blank), nullptr},
        {"{ 1 a}", Remove("*/0"), nullptr},   // a would be the name
        {"{ {b} a}", Remove("*/b"), nullptr}, // likewise
        {"{a 1", Remove("a"), nullptr},
        {"\"x", RemovePart(eSDLKind::Bad), nullptr},
    });
}

TEST(DocumentEdit, ANameIsChangedByRenameAlone) {
    ExpectEdits({
        {"{a 1}", Rename("a", "b"), "{b 1}"},
        {"{ ; c\n A{b}}", Rename("a", "x"), "{ ; c\n x{b}}"},
        {"{ {id 7}}", Rename("*", "b"), "{b {id 7}}"},
        {"{#m\"x\"}", Rename("*", "b"), "{#m b\"x\"}"},
        {"{5}", Rename("*", "b"), "{b 5}"},
        {"{}", Rename("*", "b"), "{b}"},
        {"{a 1}", Rename("a", "1"), nullptr},
        {"{a 1}", Rename("a", ""), nullptr},
        {"{a 1}", Rename("a", "b c"), nullptr},
        {"1", Rename("0", "b"), nullptr},
        {"{}", Append("*", eSDLItem::Word("b")), nullptr},
        {"{1}", Before("*/0", eSDLItem::Word("b")), nullptr},
        {"{1}", After("*/0", eSDLItem::Word("b")), "{1 b}"},
        {"{ ; c\n a}", BeforePart(eSDLKind::Comment, 5), nullptr},
        {"{ ; c\n a}", BeforePart(eSDLKind::Comment, eSDLItem::Source("; d")), "{ ; d\n; c\n a}"},
        {"{a}", BeforePart(eSDLKind::Word, 5), nullptr},
        {"{a}", AfterPart(eSDLKind::Word, 5), "{a 5}"},
    });
}

TEST(DocumentEdit, OnlyGoodItemsAreInserted) {
    const char* const bad[] = {"", " ", "{", "}", "(foo)", "$", "\"x", ")", "\xEF\xBB\xBF\x31"};
    for (const char* const text : bad)
        EXPECT_FALSE(eSDLItem::Source(text).IsGood()) << text;
    EXPECT_FALSE(eSDLItem::Source(std::string_view("1\0", 2)).IsGood());
    EXPECT_FALSE(eSDLItem::Word("").IsGood());
    EXPECT_FALSE(eSDLItem::Word("a b").IsGood());
    EXPECT_FALSE(eSDLItem::Word(std::string_view("a\0", 2)).IsGood());
    EXPECT_FALSE(eSDLItem::Block("a-b").IsGood());
    EXPECT_FALSE(eSDLItem::Block("a", "m n").IsGood());
    EXPECT_TRUE(eSDLItem::Block("a", "m-1+#").IsGood());
    EXPECT_EQ(eSDLItem(std::string_view("a\0b", 3)).Text(), "\"a\\x00b\"");
}

TEST(DocumentEdit, ANumberKeepsTheDigitsThatItWasGiven) {
    for (const char* const text : {"2.50", "1e3", "0x1F", "+5", "-0", "007", "5.", "1E-5", "99999999999999999999"}) {
        eSDLDocument document("{a 1}");
        const eSDLItem item = eSDLItem::Number(text);
        EXPECT_TRUE(item.IsGood()) << text;
        EXPECT_TRUE(document.Set(document.Find("a/0"), item)) << text;
        EXPECT_EQ(document.Text(), "{a " + std::string(text) + "}");
        EXPECT_TRUE(document.Find("a/0").As<double>()) << text;
    }
    for (const char* const text : {"", ".5", "1 2", " 1", "1;", "1e999", "one", "\"1\"", "(+ 1 2)", "1.5.2"})
        EXPECT_FALSE(eSDLItem::Number(text).IsGood()) << text;
}

TEST(DocumentEdit, NodesOutliveEditsElsewhere) {
    eSDLDocument document("{s {a 1} {b 2} {c 3}}");
    const eSDLNode a = document.Find("s/a");
    const eSDLNode two = document.Find("s/b/0");
    const eSDLNode c = document.Find("s/c");
    EXPECT_TRUE(document.Set(two, "long text"));
    EXPECT_TRUE(document.Set(two, 4));
    EXPECT_TRUE(document.Set(two, 5));
    const eSDLNode d = document.InsertBefore(c, eSDLItem::Block("d"));
    const eSDLNode six = document.Append(d, 6);
    EXPECT_TRUE(document.Remove(a));
    EXPECT_EQ(document.Text(), "{s {b 5} {d 6} {c 3}}");
    EXPECT_FALSE(a);
    EXPECT_EQ(a.Text(), "");
    EXPECT_FALSE(a.Next());
    EXPECT_FALSE(document.Set(a.Value(), 1));
    EXPECT_EQ(two.As<int>(), 5);
    EXPECT_EQ(two, document.Find("s/b/0"));
    EXPECT_EQ(six.Parent(), d);
    EXPECT_EQ(d.Parent(), document.Find("s"));
    EXPECT_EQ(d.Next(), c);
    EXPECT_EQ(c.Place().column, 16);
    EXPECT_TRUE(document.Remove(d));
    EXPECT_FALSE(six);
    EXPECT_EQ(document.Text(), "{s {b 5} {c 3}}");
    eSDLDocument other(document.Text());
    EXPECT_FALSE(other.Set(two, 1));
}

TEST(DocumentEdit, ALoopMayRemoveAndSetItsNode) {
    eSDLDocument document("{s\n\t{a 1}\n\t{b 2}\n\t{a 3}\n\t4\n}");
    for (const eSDLNode& child : document.Find("s"))
        if (child.Is("a"))
            document.Remove(child);
        else if (child.IsBlock())
            document.Set(child.Value(), 7);
        else
            document.Set(child, 8);
    EXPECT_EQ(document.Text(), "{s\n\t{b 7}\n\t8\n}");
}

TEST(DocumentEdit, WhatIsSavedUnderAWideNameIsTheText) {
    const eTempFolder folder;
    const eSDLDocument document("{a}");
    EXPECT_TRUE(document.Save(eFileNameW(folder.NameW(L"a.sdl"))));
    EXPECT_EQ(folder.Read("a.sdl"), "{a}");
}

TEST(DocumentEdit, WhatIsSavedIsTheText) {
    const eTempFolder folder;
    const eFileName file(folder.Write("a.sdl", std::string("\xEF\xBB\xBF{a 1}\r\n\0rest", 14)));
    eSDLDocument document;
    ASSERT_TRUE(document.Open(file));
    EXPECT_EQ(document.Name(), file.str());
    EXPECT_TRUE(document.Set(document.Find("a/0"), 2));
    EXPECT_TRUE(document.Save(file));
    eSDLDocument again;
    ASSERT_TRUE(again.Open(eFileNameW(ToStringW(file.str()))));
    EXPECT_EQ(again.Text(), std::string("\xEF\xBB\xBF{a 2}\r\n\0rest", 14));
    IO::eMemoryStream stream;
    again.Write(stream);
    stream.Reset();
    ASSERT_TRUE(document.Open(stream));
    EXPECT_EQ(document.Text(), again.Text());
}

TEST(DocumentEdit, IsTakenFromAStreamThatWasBadAlready) {
    const std::string text = "{a 1}";
    IO::eBufferStream stream(text);
    stream.Enable(IO::StreamMode::Bad);
    eSDLDocument document;
    EXPECT_TRUE(document.Open(stream));
    EXPECT_FALSE(document.Failure());
    EXPECT_EQ(document.Text(), text);
}

TEST(DocumentEdit, WhatCannotBeReadOrSavedIsAFailure) {
    const eTempFolder folder;
    const eFileName missing(folder.Name("missing/a.sdl"));
    eSDLDocument document("{a}");
    EXPECT_FALSE(document.Save(missing));
    EXPECT_TRUE(document.Failure());
    EXPECT_EQ(document.Text(), "{a}");
    EXPECT_FALSE(document.Open(missing));
    EXPECT_TRUE(document.Failure());
    EXPECT_EQ(document.Text(), "");
    eSDLLimits limits;
    limits.sourceBytes = 4;
    EXPECT_FALSE(document.Open(eFileName(folder.Write("b.sdl", "12345")), limits));
    EXPECT_EQ(document.Failure().text, "Source limit exceeded!");
    EXPECT_TRUE(eSDLDocument("12345", "", limits).Failure());
    EXPECT_FALSE(eSDLDocument("1234", "", limits).Failure());
    limits.tokenBytes = 3;
    const eSDLDocument limited("{ab} \"123\" 4567", "", {eSDLLimits::kNone, 3, eSDLLimits::kNone});
    ASSERT_EQ(limited.ErrorCount(), 1U);
    EXPECT_EQ(limited.Errors().front().message, "Token limit exceeded!");
}

TEST(DocumentEdit, LineEndsAreLearntFromTheFirst64KiB) {
    for (const std::size_t feed : {65535U, 65536U}) {
        eSDLDocument document(std::string(feed, ' ') + "\n1");
        ASSERT_TRUE(document.Append(document.Root(), eSDLItem::Block("b")));
        EXPECT_EQ(document.Text().substr(feed + 2), feed == 65535 ? "\n{b}" : "\r\n{b}") << feed;
    }
}

} // namespace
