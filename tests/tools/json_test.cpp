// SPDX-License-Identifier: BSL-1.0
#include <climits>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <string>
#include <system_error>

#include <qzl_base/convert.h>

#include "support/json_walker.h"
#include "tool.h"

// from-json and to-json.

class ToolJson : public Tool {};
class ToolJsonAtLength : public ToolAtLength {};

namespace {

struct eConversion {
    const char* from;
    const char* to;
};

} // namespace

TEST_F(ToolJson, BlocksBecomeJsonByTheTableOfTheManual) {
    constexpr eConversion kTable[] = {
        {"{a}", R"({"a":null})"},
        {"{a\n}", R"({"a":[]})"},
        {"{a 1}", R"({"a":1})"},
        {"{a\n1}", R"({"a":[1]})"},
        {"{a = 1 }", R"({"a":1})"},
        {"{a ; one\n 1}", R"({"a":[1]})"},
        {"{a 1 2}", R"({"a":[1,2]})"},
        {"{a 1.5}", R"({"a":1.5})"},
        {"{a 1.}", R"({"a":1})"},
        {"{a -0.}", R"({"a":-0.0})"},
        {"{a 1e30}", R"({"a":1e30})"},
        {"{a 0x1F}", R"({"a":31})"},
        {"{a +7}", R"({"a":7})"},
        {"{a linear}", R"({"a":"linear"})"},
        {"{a \"x\\n\\x1b\"}", R"({"a":"x\n\u001b"})"},
        {"{a \"\\\\n\"}", R"({"a":"\\n"})"},
        {"{a \"one\\\ntwo\"}", R"({"a":"one\\\ntwo"})"},
        {"{a\n\"one\\\ntwo\"}", R"({"a":["one\\\ntwo"]})"},
        {"{a \"caf\xc3\xa9 \xff \xc2\x9b\"}", "{\"a\":\"caf\xc3\xa9 \xef\xbf\xbd \\u009b\"}"},
        {"{a {b 1}}", R"({"a":{"b":1}})"},
        {"{a {b 1} {b 2}}", R"({"a":{"b":1,"b":2}})"},
        {"{a {1 2} {}}", R"({"a":[[1,2],[]]})"},
        {"{a {{b 1}}}", R"({"a":[{"b":1}]})"},
        {"{a 1 {b 2} {3}}", R"({"a":[1,{"b":2},[3]]})"},
        {"{#mark a 1}", R"({"a":1})"},
        {"{a {##hidden b 1} (\"a comment\") 2}", R"({"a":2})"},
        {"{a (+ 1 2)}", R"({"a":3})"},
    };
    std::string sdl;
    std::string json;
    for (const auto& [from, to] : kTable) {
        sdl += "{\n" + std::string(from) + "\n}\n";
        json += (json.empty() ? "" : ",") + std::string(to);
    }
    EXPECT_EQ(OutputOf({"to-json", "--compact", "-", "-"}, sdl), "[" + json + "]\n");
}

TEST_F(ToolJsonAtLength, ADocumentBecomesJsonAsTheInsideOfABlockDoes) {
    constexpr eConversion kTable[] = {
        {"{a 1}", R"({"a":1})"}, {"{a 1} 5", R"([{"a":1},5])"}, {"5", "5"}, {"5\n", "[5]"}, {"", "[]"}, {"{}", "[[]]"},
    };
    for (const auto& [sdl, json] : kTable)
        EXPECT_EQ(OutputOf({"to-json", "--compact", "-", "-"}, sdl), std::string(json) + "\n") << sdl;
}

TEST_F(ToolJsonAtLength, LinesAreIndentedAsAsked) {
    EXPECT_EQ(OutputOf({"to-json", "-", "-"}, "{a 1 2} {b}"), "{\n  \"a\": [\n    1,\n    2\n  ],\n  \"b\": null\n}\n");
    EXPECT_EQ(OutputOf({"to-json", "--indent", "0", "-", "-"}, "{a 1}"), "{\n\"a\": 1\n}\n");
}

TEST_F(ToolJsonAtLength, WhatJsonCannotExpressIsTold) {
    const eEnded ended = Run({"to-json", "--compact", "-", "-"}, "1e99 2147483648 -9999999999 0xFFFFFFFF");
    EXPECT_EQ(ended.code, 0);
    EXPECT_EQ(ended.output, "[null,2147483647,-2147483648,-1]\n");
    EXPECT_EQ(ended.errors, "sdl: -: 2 integers beyond 32 bits became the nearest one\n"
                            "sdl: -: 1 number beyond the range of floats became null\n");
}

TEST_F(ToolJsonAtLength, AnyNamesAreReadBackAsFromJsonWritesThem) {
    const std::string json = R"({"138":{"x-y":[1]},"$ref":"q","205":"a b","\u00e9":null,"e.f":{}})";
    const std::string sdl = Run({"from-json", "-", "-"}, json).output;
    EXPECT_EQ(OutputOf({"to-json", "--compact", "--any-names", "-", "-"}, sdl),
              "{\"138\":{\"x-y\":[1]},\"$ref\":\"q\",\"205\":\"a b\",\"\xc3\xa9\":null,\"e.f\":[]}\n");
    EXPECT_EQ(OutputOf({"to-json", "--compact", "-", "-"}, "{{1 2} {3 x}}"), "[[[1,2],[3,\"x\"]]]\n");
}

TEST_F(ToolJsonAtLength, WhatSdlCannotExpressIsCountedAndTold) {
    const eEnded ended = Run({"from-json", "-", "out.sdl"},
                             R"({"a":{"b c":[null,true,0.1,3000000000,"x\u0000y",{}]},"d e":5,"f":-9000000000000})");
    EXPECT_EQ(ended.code, 0);
    EXPECT_EQ(ended.errors, "sdl: -: 2 names not read back as one word, the first at /a/b c\n"
                            "sdl: -: 2 integers beyond 32 bits became another number\n"
                            "sdl: -: 1 number rounded to 32 bits\n"
                            "sdl: -: 1 boolean became 1 or 0\n"
                            "sdl: -: 1 null in arrays left out\n"
                            "sdl: -: 1 empty object written as empty arrays are\n"
                            "sdl: -: 1 string cut at a NUL character\n");
}

TEST_F(ToolJsonAtLength, ADocumentWithMistakesLeavesTheOutputAlone) {
    constexpr struct {
        const char* verb;
        const char* text;
        const char* message;
    } kTable[] = {
        {"from-json", "{\"a\": }", "bad:1:7: error: Syntax error: Malformed token"},
        {"to-json", "{a 1", "bad:1:5: error: Block terminator expected!"},
        {"to-json", "{a 1}\n}", "bad:2:1: error: Nothing is open that this } could close!"},
        {"to-json", "{a\n$}", "bad:2:1: error: No token begins like this!"},
        {"to-json", "{a 1} \"open", "bad:1:7: warning: The string has no end!"},
        {"to-json", "{a 1} (\"c\") ; \"x\"\n \"open", "bad:2:2: warning: The string has no end!"},
        {"to-json", "{a (word)}", "bad:1:5: error: Invalid control block!"},
    };
    folder.Write("out", "old");
    for (const auto& row : kTable) {
        folder.Write("bad", row.text);
        Refuses(2, row.message, {row.verb, "bad", "out"});
        EXPECT_EQ(folder.Read("out"), "old") << row.text;
    }
}

TEST_F(ToolJson, JsonToSdlToJsonGivesTheSameDocument) {
    const std::string json =
        R"({"a":[1],"b":[],"c":null,"d":"\u0041\n\"","e":[[],[[2.5]],{"f":[{"g":-1}]}],"h":{"i":0.5}})";
    const std::string same = R"({"a":[1],"b":[],"c":null,"d":"A\n\"","e":[[],[[2.5]],{"f":[{"g":-1}]}],"h":{"i":0.5}})";
    EXPECT_EQ(OutputOf({"from-json", "-", "a.sdl"}, json), "");
    EXPECT_EQ(OutputOf({"to-json", "--compact", "a.sdl", "-"}), same + "\n");
}

TEST_F(ToolJson, InputAndOutputMayBeTheSameFile) {
    folder.Write("a", R"({"a":[1]})");
    EXPECT_EQ(OutputOf({"from-json", "a", "a"}), "");
    EXPECT_EQ(OutputOf({"to-json", "--compact", "a", "a"}), "");
    EXPECT_EQ(folder.Read("a"), "{\"a\":[1]}\n");
}

// --- Documents from elsewhere ---

namespace {

// A document written anew, in one line: as it is, or as it comes back from SDL.
class eRewritten : public eJsonContent {
public:
    explicit eRewritten(bool throughSdl) : lossy(throughSdl) {}

    void BeginObject() override { Begin('{'); }
    void Name(const std::string& name) override { Separate(), text += Quoted(name) + ':', named = true; }
    void EndMember() override {}
    void EndObject() override { End('}'); }
    void BeginArray() override { Begin('['); }
    void EndArray() override { End(']'); }
    void String(const std::string& string) override { Add(Quoted(string)); }
    void Integer(const std::string& digits) override {
        const long long value = std::stoll(digits);
        const bool fits = value >= INT_MIN && value <= UINT_MAX;
        Add(std::to_string(!lossy ? value : fits ? static_cast<int>(value) : 0));
    }
    // Whole numbers lose their fraction, which other programs take for the same number.
    void Float(double value) override {
        const auto narrow = static_cast<float>(value);
        Add(narrow == std::trunc(narrow) && std::abs(narrow) < 1e6f ? std::to_string(static_cast<int>(narrow))
                                                                    : ToString(narrow));
    }
    void Bool(bool value) override { Add(lossy ? (value ? "1" : "0") : value ? "true" : "false"); }
    void Null() override {
        if (!lossy || named)
            Add("null");
    }

    const std::string& Text() const { return text; }

private:
    static std::string Quoted(std::string string) { return ConvertEscSequence(&string, true), '"' + string + '"'; }

    void Separate() {
        if (!named && text.size() > 0 && text.back() != '[' && text.back() != '{')
            text += ',';
        named = false;
    }
    void Add(const std::string& value) { Separate(), text += value; }
    void Begin(char bracket) { Separate(), text += bracket; }
    void End(char bracket) {
        const bool empty = text.back() == '[' || text.back() == '{';
        if (lossy && empty)
            text.back() = '[', text += ']';
        else
            text += bracket;
    }

    std::string text;
    bool lossy;
    bool named = false; // a member's value follows
};

std::string Rewritten(const std::string& json, bool throughSdl) {
    eRewritten content(throughSdl);
    eJsonWalker(json, &content);
    return content.Text();
}

// With a sanitizer a document of 2 MB takes half a minute.
#ifdef QZL_SANITIZED
constexpr std::uintmax_t kLargest = 1 << 20;
#else
constexpr std::uintmax_t kLargest = std::numeric_limits<std::uintmax_t>::max();
#endif

} // namespace

TEST_F(ToolJson, RealDocumentsGoThereAndBack) {
    int documents = 0;
    for (const std::string& parent : {std::string(QZL_EXAMPLES_DIR), std::string(QZL_DOCUMENTS_DIR)}) {
        std::error_code missing;
        for (const auto& entry : std::filesystem::directory_iterator(parent, missing)) {
            if (entry.path().extension() != ".json" || (documents > 0 && StartsSlowly()) ||
                (entry.file_size() > kLargest && !LongTests()))
                continue;
            ++documents;
            const std::string name = entry.path().string();
            ASSERT_EQ(Run({"from-json", name, "a.sdl"}).code, 0) << name;
            EXPECT_EQ(OutputOf({"to-json", "--any-names", "a.sdl", "b.json"}), "");
            std::ifstream file(entry.path(), std::ios::binary);
            const std::string original(std::istreambuf_iterator<char>(file), {});
            EXPECT_TRUE(Rewritten(original, true) == Rewritten(folder.Read("b.json"), false)) << name;
            ASSERT_EQ(Run({"from-json", "b.json", "b.sdl"}).code, 0) << name;
            EXPECT_TRUE(folder.Read("a.sdl") == folder.Read("b.sdl")) << name;
        }
    }
    EXPECT_GT(documents, 0);
}
