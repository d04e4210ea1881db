// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl/layout.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include <qzl_io/sdl/document.h>
#include <qzl_io/sdl/parser.h>
#include <qzl_io/streams.h>

#include "support/long_tests.h"

namespace {

std::string FormattedText(const std::string& text, const eSDLLayout& layout = {}) {
    return layout.Format(eSDLDocument(text));
}

// What formatting must not change: the tokens as they are cut, and the comments without the blanks after them.
struct eContent {
    explicit eContent(const std::string& text) {
        IO::eMemoryStream stream;
        stream.Write(text.data(), text.size());
        stream.Seek(0, IO::eSeekDir::Begin);
        const std::vector<eSDLKeyword*> noKeywords;
        eSDLParser parser(std::string(), stream, noKeywords, {}, nullptr);
        while (parser.Get())
            tokens.emplace_back(parser.Token().type, parser.Token().text);
        const eSDLDocument document(text);
        for (const eSDLPart& part : document.Parts())
            if (part.kind == eSDLKind::Comment)
                comments.emplace_back(part.text.substr(0, part.text.find_last_not_of(" \t") + 1));
            else if (part.kind == eSDLKind::Outside || part.kind == eSDLKind::Bad)
                comments.emplace_back(part.text);
    }

    std::vector<std::pair<int, std::string>> tokens;
    std::vector<std::string> comments;
};

// Makes documents without errors, of every kind of part and of every way to separate two.
class eGenerator {
public:
    explicit eGenerator(unsigned seed) : random(seed) {}

    std::string Document() {
        std::string text = Chance(8) ? "\xEF\xBB\xBF" : "";
        text += Gap();
        Items(&text, 0);
        if (Chance(10))
            text += " ) ";
        if (Chance(12))
            text += "\"open";
        else if (Chance(12))
            text += std::string("\0after {", 8);
        return text;
    }

private:
    bool Chance(unsigned of) { return random() % of == 0; }

    template <std::size_t count>
    std::string One(const std::string_view (&texts)[count]) {
        return std::string(texts[random() % count]);
    }

    std::string Gap() {
        static constexpr std::string_view kGaps[] = {
            " ",     "  ",   "\t",        "\n",     "\r\n",           "\r",  " = ",           "=",          "==",
            "\n=\n", "\n\n", "\r\n\r\n ", "\n\n\n", " ; comment  \n", ";\r", "; \"{( \t\r\n", " =\r\n\t= ", "\t\t"};
        std::string gap = One(kGaps);
        while (Chance(3))
            gap += One(kGaps);
        return gap;
    }

    void Items(std::string* text, int depth) {
        static constexpr std::string_view kValues[] = {"12",
                                                       "-7",
                                                       "0x1F",
                                                       "1.5",
                                                       "-0.",
                                                       "1e5",
                                                       "word",
                                                       "%key",
                                                       "_a1",
                                                       "\"\"",
                                                       "\"a ; { \\\" \"",
                                                       "\"one\\\ntwo\"",
                                                       "- ",
                                                       "+ ",
                                                       "* ",
                                                       "/ ",
                                                       "(+ 1 2)",
                                                       "(\"a comment\n  {x} \")",
                                                       "(include \"f\")",
                                                       "(+  1\n 2)",
                                                       "\"\x1b\xff\""};
        for (auto count = random() % 7; count > 0; --count) {
            if (depth < 6 && Chance(3))
                Block(text, depth);
            else
                *text += One(kValues);
            *text += Chance(6) && text->back() != '%' ? "" : Gap();
        }
    }

    void Block(std::string* text, int depth) {
        static constexpr std::string_view kMarks[] = {"", "", "", "#m", "##hidden", "#a-b", "#"};
        const std::string mark = One(kMarks);
        *text += '{' + mark + (mark.empty() && Chance(2) ? "" : Gap());
        if (!Chance(4))
            *text += "name" + Gap();
        Items(text, depth + 1);
        *text += '}';
    }

    std::mt19937 random;
};

} // namespace

TEST(DocumentLayout, TextsAreLaidOutAsTheManualSays) {
    constexpr std::pair<const char*, const char*> kTable[] = {
        {"", ""},
        {" \r\n ", ""},
        {"5", "5\n"},
        {"{ a   1\t2 }", "{a 1 2}\n"},
        {"{a\n1\n  {b\n2 ; two  \n}\n}", "{a\n\t1\n\t{b\n\t\t2 ; two\n\t}\n}\n"},
        {"{a{b}{c}}", "{a {b} {c}}\n"},
        {"{a=1 b   =2 c= 3}", "{a = 1 b = 2 c = 3}\n"},
        {"{a =\n1 = \n}", "{a =\n\t1 =\n}\n"},
        {"a\n\n\n\nb", "a\n\nb\n"},
        {"{a\n\n\n1\n\n\n}", "{a\n\n\t1\n}\n"},
        {"{\n\n1}", "{\n\t1}\n"},
        {"; one\n   ; two\n{a ;three\n; four\n}", "; one\n; two\n{a ;three\n\t; four\n}\n"},
        {"{#m a} {#m\t1} {#m}", "{#m a} {#m 1} {#m}\n"},
        {"a\"b\"%c%d 1(+ 1  2)x", "a\"b\"%c%d 1(+ 1  2)x\n"},
        {"{ ##x }", nullptr},
        {"\xEF\xBB\xBF  a", "\xEF\xBB\xBF"
                            "a\n"},
        {"a \"open", "a \"open"},
        {"a\r\rb ;c\rd", "a\n\nb ;c\nd\n"},
        {"a\n}", nullptr},
    };
    eSDLLayout layout;
    layout.crLf = false;
    for (const auto& [text, expected] : kTable) {
        if (!expected) {
            EXPECT_GT(eSDLDocument(text).ErrorCount(), 0u) << text;
            continue;
        }
        EXPECT_EQ(FormattedText(text, layout), expected) << text;
    }
    EXPECT_EQ(FormattedText(std::string("a \0 {b", 7), layout), std::string("a\n\0 {b", 7));
}

TEST(DocumentLayout, LinesEndAndAreIndentedAsAsked) {
    const std::string text = "{a\n{b\n1}}";
    EXPECT_EQ(FormattedText(text), "{a\r\n\t{b\r\n\t\t1}}\r\n");
    eSDLLayout layout;
    layout.indent = 3;
    layout.crLf = false;
    EXPECT_EQ(FormattedText(text, layout), "{a\n   {b\n      1}}\n");
    layout.indent = 0;
    EXPECT_EQ(FormattedText(text, layout), "{a\n{b\n1}}\n");
}

TEST(DocumentLayout, DepthIsIndentedOnlySoFar) {
    std::string deep;
    for (int depth = 0; depth < 20000; ++depth)
        deep += "{\n";
    deep.append(20000, '}');
    EXPECT_LT(FormattedText(deep).size(), 20000u * 70);
}

namespace {

// Returns whether the text has no errors, and so is to be formatted.
bool CheckFormatting(const std::string& text, const eSDLLayout& layout) {
    if (eSDLDocument(text).ErrorCount() > 0)
        return false;
    const std::string once = FormattedText(text, layout);
    const eContent before(text);
    const eContent after(once);
    EXPECT_EQ(eSDLDocument(once).ErrorCount(), 0u) << text << '\n' << once;
    EXPECT_EQ(after.tokens, before.tokens) << text << '\n' << once;
    EXPECT_EQ(after.comments, before.comments) << text << '\n' << once;
    EXPECT_EQ(FormattedText(once, layout), once) << text;
    return true;
}

} // namespace

TEST(DocumentLayout, FormattingKeepsTokensAndCommentsAndChangesNothingTheSecondTime) {
    const unsigned count = LongTests() ? 10000 : 400;
    unsigned documents = 0;
    for (unsigned seed = 0; documents < count && !HasFailure(); ++seed) {
        ASSERT_LT(seed, 4 * count);
        eSDLLayout layout;
        layout.indent = static_cast<int>(seed % 5) - 1;
        layout.crLf = seed % 2 == 0;
        documents += CheckFormatting(eGenerator(seed).Document(), layout);
    }
}

TEST(DocumentLayout, FormattingKeepsWhatFuzzingHasFound) {
    const std::filesystem::path seeds = QZL_SEEDS_DIR;
    if (!std::filesystem::exists(seeds))
        GTEST_SKIP() << "the tree has no seeds";
    unsigned documents = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(seeds)) {
        if (!entry.is_regular_file() || HasFailure())
            continue;
        std::ifstream file(entry.path(), std::ios::binary);
        documents += CheckFormatting(std::string(std::istreambuf_iterator<char>(file), {}), {});
    }
    EXPECT_GT(documents, 0u);
}
