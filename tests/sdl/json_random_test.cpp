// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl/json_to_sdl.h>

#include <array>
#include <cstddef>
#include <random>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "support/reports.h"
#include "support/temp_folder.h"

namespace {

// SDL text composed item by item.
class eSdlText {
public:
    void Item(std::string_view item) {
        if (lineEnds)
            EndLine();
        else if (isSpaced)
            text += ' ';
        text += item;
        lineEnds = false;
        isSpaced = true;
    }
    void Begin(std::string_view name) {
        Item("{" + std::string(name));
        isSpaced = !name.empty();
        ++depth;
    }
    void End() {
        --depth;
        isSpaced = false;
        Item("}");
    }
    void Break() { lineEnds = true; }

    std::string Finished() {
        if (lineEnds && !text.empty())
            EndLine();
        return text;
    }

private:
    void EndLine() { text += "\r\n" + std::string(depth, '\t'); }

    std::string text;
    std::size_t depth = 0;
    bool lineEnds = false;
    bool isSpaced = false;
};

struct eScalar {
    std::string_view json;
    std::string_view sdl; // empty for null
};

constexpr std::array<eScalar, 16> kScalars = {{
    {"null", ""},
    {"null", ""},
    {"true", "1"},
    {"false", "0"},
    {"0", "0"},
    {"-17", "-17"},
    {"2147483647", "2147483647"},
    {"-2147483648", "-2147483648"},
    {"2147483648", "-2147483648"},
    {"4294967295", "-1"},
    {"0.5", "0.5"},
    {"-1.25e2", "-125"},
    {"\"\"", "\"\""},
    {"\"x y\"", "\"x y\""},
    {R"("a\"b\\\n longer than one block of bytes")", R"("a\"b\\\n longer than one block of bytes")"},
    {"\"\\u00e9 \xE2\x82\xAC\"", "\"\xC3\xA9 \xE2\x82\xAC\""},
}};

// A random document in both languages.
class eMadeUpDocument {
public:
    eMadeUpDocument(unsigned seed, int leastItems) : random(seed) {
        json += '[';
        while (items < leastItems) {
            if (items > 0)
                json += ",\n";
            Element(0);
        }
        json += ']';
    }

    std::string json;
    eSdlText sdl;

private:
    static constexpr int kDeepest = 6;

    unsigned Below(unsigned limit) { return static_cast<unsigned>(random() % limit); }
    bool IsContainer(int depth) { return depth < kDeepest && Below(4) == 0; }

    void Scalar() {
        const eScalar& scalar = kScalars[Below(kScalars.size())];
        json += scalar.json;
        if (!scalar.sdl.empty())
            sdl.Item(scalar.sdl);
    }

    void Container(int depth) {
        const bool isObject = Below(2) == 0;
        json += isObject ? '{' : '[';
        for (unsigned count = Below(10), item = 0; item < count; ++item) {
            json += item > 0 ? ", " : "";
            isObject ? Member(depth + 1) : Element(depth + 1);
        }
        json += isObject ? '}' : ']';
    }

    void Member(int depth) {
        ++items;
        const std::string name = "name" + std::to_string(Below(20));
        json += '"' + name + "\": ";
        sdl.Begin(name);
        if (IsContainer(depth)) {
            sdl.Break();
            Container(depth);
            sdl.Break();
        } else {
            Scalar();
        }
        sdl.End();
        sdl.Break();
    }

    void Element(int depth) {
        ++items;
        if (IsContainer(depth)) {
            sdl.Begin("");
            sdl.Break();
            Container(depth);
            sdl.Break();
            sdl.End();
        } else {
            Scalar();
        }
        sdl.Break();
    }

    std::mt19937 random;
    int items = 0;
};

TEST(JsonRandomDocuments, GiveTheTextThatTheRulesGive) {
    const eTempFolder folder;
    const eReports reports;
    for (unsigned seed = 1; seed <= 40; ++seed) {
        eMadeUpDocument document(seed, seed % 4 == 0 ? 50'000 : 100);
        folder.Write("in.json", document.json);
        ASSERT_TRUE(JsonToSdl(eFileName(folder.Name("in.json")), eFileName(folder.Name("out.sdl")))) << seed;
        ASSERT_TRUE(folder.Read("out.sdl") == document.sdl.Finished()) << "seed " << seed;
    }
    EXPECT_TRUE(reports.warnings().empty());
}

} // namespace
