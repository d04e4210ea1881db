// SPDX-License-Identifier: BSL-1.0
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "tool.h"

// lsp: an editor's messages and the answers to them.

namespace {

using nlohmann::json;

constexpr const char* kUri = "file:///folder/scene.sdl";

std::string Framed(const json& message) {
    const std::string text = message.dump();
    return "Content-Length: " + std::to_string(text.size()) + "\r\n\r\n" + text;
}

json Request(int id, const std::string& method, json parameters = json::object()) {
    return {{"jsonrpc", "2.0"}, {"id", id}, {"method", method}, {"params", std::move(parameters)}};
}

json Notification(const std::string& method, json parameters = json::object()) {
    return {{"jsonrpc", "2.0"}, {"method", method}, {"params", std::move(parameters)}};
}

json Opening(const std::string& text, const std::string& uri = kUri) {
    return Notification("textDocument/didOpen",
                        {{"textDocument", {{"uri", uri}, {"languageId", "sdl"}, {"version", 1}, {"text", text}}}});
}

json Place(unsigned line, unsigned unit) {
    return {{"line", line}, {"character", unit}};
}

json Range(unsigned line, unsigned begin, unsigned endLine, unsigned end) {
    return {{"start", Place(line, begin)}, {"end", Place(endLine, end)}};
}

json Change(json changes) {
    return Notification("textDocument/didChange",
                        {{"textDocument", {{"uri", kUri}, {"version", 2}}}, {"contentChanges", std::move(changes)}});
}

json About(const std::string& uri = kUri) {
    return {{"textDocument", {{"uri", uri}}}};
}

json At(unsigned line, unsigned unit, const std::string& uri = kUri) {
    json parameters = About(uri);
    parameters["position"] = Place(line, unit);
    return parameters;
}

} // namespace

class ToolLsp : public Tool {
protected:
    static std::vector<json> Messages(const std::string& output) {
        std::vector<json> messages;
        std::string_view rest = output;
        while (!rest.empty()) {
            constexpr std::string_view kField = "Content-Length: ";
            const std::size_t header = rest.find("\r\n\r\n");
            if (!rest.starts_with(kField) || header == rest.npos) {
                ADD_FAILURE() << "no message: " << rest;
                break;
            }
            const auto length = std::stoull(std::string(rest.substr(kField.size(), header - kField.size())));
            messages.push_back(json::parse(rest.substr(header + 4, length)));
            rest.remove_prefix(header + 4 + length);
        }
        return messages;
    }

    // A whole session: what the server sends between the answer to initialize and the one to shutdown.
    std::vector<json> Session(const std::vector<json>& messages) const {
        std::string input = Framed(Request(0, "initialize")) + Framed(Notification("initialized"));
        for (const json& message : messages)
            input += Framed(message);
        input += Framed(Request(-1, "shutdown")) + Framed(Notification("exit"));
        std::vector<json> sent = Messages(OutputOf({"lsp"}, input));
        if (sent.size() < 2) {
            ADD_FAILURE() << "the server has not answered";
            return {};
        }
        EXPECT_EQ(sent.back()["id"], -1);
        return {sent.begin() + 1, sent.end() - 1};
    }

    // The answer to a request about a text.
    json Answer(const std::string& text, const std::string& method, const json& parameters,
                const std::string& uri = kUri) const {
        const auto sent = Session({Opening(text, uri), Request(7, method, parameters)});
        return sent.size() == 2 ? sent[1].value("result", json("no result")) : json("no answer");
    }

    std::string HoverText(const std::string& text, unsigned line, unsigned unit) const {
        const json answer = Answer(text, "textDocument/hover", At(line, unit));
        return answer.is_null() ? "" : answer["contents"]["value"].get<std::string>();
    }

    std::vector<std::string> Completions(const std::string& text, unsigned line, unsigned unit) const {
        std::vector<std::string> labels;
        for (const json& item : Answer(text, "textDocument/completion", At(line, unit)))
            labels.push_back(item["label"]);
        return labels;
    }
};

TEST_F(ToolLsp, EndsWellAfterShutdownAndNotWithoutIt) {
    const std::string begun = Framed(Request(0, "initialize"));
    const std::string shutDown = begun + Framed(Request(1, "shutdown"));
    EXPECT_EQ(Run({"lsp", "--stdio"}, shutDown + Framed(Notification("exit"))).code, 0);
    EXPECT_EQ(Run({"lsp"}, shutDown).code, 0);
    EXPECT_EQ(Run({"lsp"}, begun + Framed(Notification("exit"))).code, 1);
    EXPECT_EQ(Run({"lsp"}, begun).code, 1);
    EXPECT_EQ(Run({"lsp"}, "").code, 1);
    EXPECT_EQ(Run({"lsp"}, begun + "Content-Length: 100\r\n\r\n{}").code, 1);
}

TEST_F(ToolLsp, RefusesInputThatIsNoMessage) {
    const char* const inputs[] = {"\r\n\r\n",
                                  "hello\r\n\r\n",
                                  "Content-Length: x\r\n\r\n{}",
                                  "Content-Length: -1\r\n\r\n{}",
                                  "Content-Length: 99999999999999999999\r\n\r\n{}",
                                  "Content-Length: 2000000000\r\n\r\n{}"};
    for (const char* input : Sampled(inputs))
        Refuses(2, "editor", {"lsp"}, input);
}

TEST_F(ToolLsp, AnswersWhatItCannotDoWithTheProtocolsCodes) {
    struct eRow {
        std::string message;
        int code;
    };
    const std::string begun = Framed(Request(0, "initialize"));
    const auto raw = [](const std::string& text) {
        return "Content-Length: " + std::to_string(text.size()) + "\r\n\r\n" + text;
    };
    const eRow table[] = {
        {Framed(Request(1, "textDocument/hover")), -32002},
        {begun + raw("{"), -32700},
        {begun + raw(""), -32700},
        {begun + raw("[]"), -32600},
        {begun + Framed({{"id", 1}, {"method", 7}}), -32600},
        {begun + Framed(Request(1, "textDocument/unheardOf")), -32601},
        {begun + Framed(Request(1, "textDocument/hover")), -32602},
        {begun + Framed(Request(1, "textDocument/hover", At(0, 0))), -32602},
        {begun + Framed(Opening("a")) + Framed(Request(1, "textDocument/hover", About())), -32602},
        {begun + Framed(Request(1, "shutdown")) + Framed(Request(2, "textDocument/hover", At(0, 0))), -32600},
    };
    for (const eRow& row : Sampled(table)) {
        const auto sent = Messages(Run({"lsp"}, row.message).output);
        ASSERT_FALSE(sent.empty()) << row.message;
        EXPECT_EQ(sent.back()["error"]["code"], row.code) << row.message;
    }
}

TEST_F(ToolLsp, IgnoresNotificationsThatItDoesNotKnowOrThatAreBroken) {
    const auto sent = Session({Notification("$/unheardOf"), Notification("textDocument/didOpen"),
                               Change(json::array({{{"text", "x"}}})), Notification("textDocument/didClose", About()),
                               json{{"id", 3}, {"result", nullptr}}});
    EXPECT_TRUE(sent.empty()) << testing::PrintToString(sent);
}

TEST_F(ToolLsp, TellsWhatIsWrongAndWhereWheneverTheTextChanges) {
    const auto sent =
        Session({Opening("{scene\n\t\xC3\xA9\xF0\x9F\x98\x80 $ 1\n"),
                 Change({{{"range", Range(1, 4, 1, 6)}, {"text", ""}}, {{"range", Range(2, 0, 9, 9)}, {"text", "}"}}}),
                 Change({{{"range", Range(1, 1, 1, 4)}, {"text", "a"}}}), Change({{{"text", "}"}}}),
                 Notification("textDocument/didClose", About())});
    ASSERT_EQ(sent.size(), 5U);
    for (const json& message : sent) {
        EXPECT_EQ(message["method"], "textDocument/publishDiagnostics");
        EXPECT_EQ(message["params"]["uri"], kUri);
    }
    const auto list = [&](std::size_t index) { return sent[index]["params"]["diagnostics"]; };
    ASSERT_GE(list(0).size(), 3U);
    EXPECT_EQ(list(0)[0]["range"]["start"], Place(1, 1));
    EXPECT_EQ(list(0)[0]["severity"], 1);
    const json unclosed = list(0).back();
    EXPECT_EQ(unclosed["message"].get<std::string>().substr(0, 26), "Block terminator expected!");
    EXPECT_EQ(unclosed["relatedInformation"][0]["location"]["range"]["start"], Place(0, 0));
    for (const json& diagnostic : list(1)) // the two characters are left, of one and two units
        EXPECT_EQ(diagnostic["range"]["start"]["line"], 1);
    EXPECT_FALSE(list(1).empty());
    EXPECT_TRUE(list(2).empty());
    ASSERT_EQ(list(3).size(), 1U);
    EXPECT_EQ(list(3)[0]["range"], Range(0, 0, 0, 1));
    EXPECT_TRUE(list(4).empty());
}

TEST_F(ToolLsp, CountsLinesAndUnitsAsEditorsDo) {
    // LF, CR LF and CR end a line; a character beyond U+FFFF has two units; places beyond an end are that end.
    const std::string text = "; a\r; b\r\n\n\"\xF0\x9F\x98\x80\" 12";
    EXPECT_EQ(HoverText(text, 3, 5), "integer `12`");
    EXPECT_EQ(HoverText(text, 3, 3), "string of 4 bytes");
    EXPECT_EQ(HoverText(text, 3, 99), "");
    EXPECT_EQ(HoverText(text, 99, 0), "");
}

TEST_F(ToolLsp, ShowsKindAndValueUnderTheMouse) {
    const std::string text = "{light \"a\\n\" 0x1F 1.50 word (+ 1 2) (\"note\") {##draft} {}}";
    struct eRow {
        unsigned unit;
        const char* shown;
    };
    const eRow table[] = {
        {0, "block `light`: 5 values, 1 block"},
        {3, "block `light`: 5 values, 1 block"},
        {8, "string of 2 bytes"},
        {14, "integer `0x1F`, read as 31"},
        {19, "float `1.50`, read as 1.5"},
        {24, "word `word`"},
        {29, "calculation `(+ 1 2)`, read as 3"},
        {38, "control block, which readers skip"},
        {46, "block that readers skip: 0 values, 0 blocks"},
        {56, "block: 0 values, 0 blocks"},
        {6, ""},
    };
    std::vector<json> messages = {Opening(text)};
    for (const eRow& row : table)
        messages.push_back(Request(static_cast<int>(row.unit), "textDocument/hover", At(0, row.unit)));
    const auto sent = Session(messages);
    ASSERT_EQ(sent.size(), std::size(table) + 1);
    for (std::size_t row = 0; row < std::size(table); ++row) {
        const json& result = sent[row + 1]["result"];
        EXPECT_EQ(result.is_null() ? "" : result["contents"]["value"], table[row].shown) << table[row].unit;
    }
}

TEST_F(ToolLsp, ListsBlocksWithinTheirParents) {
    const json symbols =
        Answer("; c\n{scene \"s\"\n {light 1 {power 2}\n }\n {}}\n{open\n", "textDocument/documentSymbol", About());
    ASSERT_EQ(symbols.size(), 2U);
    EXPECT_EQ(symbols[0]["name"], "scene");
    EXPECT_EQ(symbols[0]["detail"], "s");
    EXPECT_EQ(symbols[0]["range"], Range(1, 0, 4, 4));
    EXPECT_EQ(symbols[0]["selectionRange"], Range(1, 0, 1, 6));
    ASSERT_EQ(symbols[0]["children"].size(), 2U);
    EXPECT_EQ(symbols[0]["children"][0]["name"], "light");
    EXPECT_EQ(symbols[0]["children"][0]["children"][0]["name"], "power");
    EXPECT_EQ(symbols[0]["children"][0]["children"][0]["detail"], "2");
    EXPECT_EQ(symbols[0]["children"][1]["name"], "{}");
    EXPECT_EQ(symbols[1]["name"], "open");
    EXPECT_EQ(symbols[1]["range"], Range(5, 0, 6, 0));
}

TEST_F(ToolLsp, ListsADeepDocumentWithoutOverflowingAStack) {
    const json symbols = Answer(std::string(100'000, '{'), "textDocument/documentSymbol", About());
    std::size_t depth = 0;
    for (json inner = symbols; !inner.empty(); inner = json(inner[0]["children"]))
        ++depth;
    EXPECT_EQ(depth, 64U);
}

TEST_F(ToolLsp, FoldsBlocksAndCommentsOfSeveralLines) {
    const json folds = Answer("; 1\n; 2\n\n; 3\n{a\n{b}\n{c\n}\n}\n(\"x\"\n)\n", "textDocument/foldingRange", About());
    EXPECT_EQ(folds, json::parse(R"([{"startLine": 0, "endLine": 1, "kind": "comment"},
                                     {"startLine": 6, "endLine": 7, "kind": "region"},
                                     {"startLine": 4, "endLine": 8, "kind": "region"},
                                     {"startLine": 9, "endLine": 10, "kind": "region"}])"));
}

TEST_F(ToolLsp, CompletesNamesFromBlocksOfTheSameName) {
    const std::string text = "{scene {light red {power 1}} {Light blue {Color 1} {pow} } {mesh x}}\n{scene {l\n";
    using eNames = std::vector<std::string>;
    EXPECT_EQ(Completions(text, 0, 55), (eNames{"Color", "power"})); // {pow|
    EXPECT_EQ(Completions(text, 0, 57), (eNames{"blue", "red"}));    // a word of a light
    EXPECT_EQ(Completions(text, 1, 9), (eNames{"Light", "light", "mesh"}));
    EXPECT_EQ(Completions(text, 0, 1), (eNames{"scene"}));
    EXPECT_EQ(Completions("", 0, 0), eNames());
    const json items = Answer(text, "textDocument/completion", At(0, 55));
    EXPECT_EQ(items[0]["textEdit"]["range"], Range(0, 52, 0, 55));
}

TEST_F(ToolLsp, GoesToAnIncludedFileThatIsThere) {
    folder.Write("the other.sdl", "1");
    const std::string path = (folder.Path() / "scene.sdl").generic_string();
    const std::string uri = (path.starts_with('/') ? "file://" : "file:///") + path;
    const std::string text = "(include \"the other.sdl\") (include \"missing.sdl\") (\"the other.sdl\") 1";
    const auto definition = [&](unsigned unit) {
        return Answer(text, "textDocument/definition", At(0, unit, uri), uri);
    };
    const json found = definition(12);
    ASSERT_TRUE(found.is_object()) << found;
    EXPECT_THAT(found["uri"].get<std::string>(), testing::EndsWith("/the%20other.sdl"));
    EXPECT_EQ(found["range"], Range(0, 0, 0, 0));
    for (const unsigned unit : {30U, 55U, 68U})
        EXPECT_TRUE(definition(unit).is_null()) << unit;
    EXPECT_TRUE(Answer(text, "textDocument/definition", At(0, 12)).is_null());
    EXPECT_TRUE(Answer(text, "textDocument/definition", At(0, 12, "untitled:1"), "untitled:1").is_null());
}

TEST_F(ToolLsp, FormatsATextWithoutMistakesAsItsLinesEnd) {
    const std::string path = (folder.Path() / "scene.sdl").generic_string();
    const std::string uri = (path.starts_with('/') ? "file://" : "file:///") + path;
    const auto edits = [&](const std::string& text, json options) {
        json parameters = About(uri);
        parameters["options"] = std::move(options);
        return Answer(text, "textDocument/formatting", parameters, uri);
    };
    const json tabs = {{"tabSize", 4}, {"insertSpaces", false}}, blanks = {{"tabSize", 2}, {"insertSpaces", true}};
    const json edit = edits("{a  1\n{b}\n}\n", tabs);
    ASSERT_EQ(edit.size(), 1U) << edit;
    EXPECT_EQ(edit[0]["newText"], "{a 1\n\t{b}\n}\n");
    EXPECT_EQ(edit[0]["range"], Range(0, 0, 3, 0));
    EXPECT_EQ(edits("{a\r\n{b}\r\n}\r\n", blanks)[0]["newText"], "{a\r\n  {b}\r\n}\r\n");
    EXPECT_EQ(edits("{a\n\t{b}\n}\n", tabs), json::array());
    EXPECT_TRUE(edits("{a", tabs).is_null());
    folder.Write(".sdlformat", "{indent 1} {lines crlf}");
    EXPECT_EQ(edits("{a\n{b}\n}\n", tabs)[0]["newText"], "{a\r\n {b}\r\n}\r\n");
}

TEST_F(ToolLsp, GoesByTheSchemaBesideTheDocument) {
    folder.Write("scene.sdls", "{schema {block scene {block light {count 0 many} {doc \"A lamp.\"}"
                               " {value float {unit \"W\"} {default 1}} {word kind {value word {one_of sun spot}}}}}}");
    const std::string path = (folder.Path() / "new.sdl").generic_string();
    const std::string uri = (path.starts_with('/') ? "file://" : "file:///") + path;
    const auto ask = [&](const std::string& method, unsigned unit) {
        return Request(static_cast<int>(unit), "textDocument/" + method, At(0, unit, uri));
    };
    const auto sent = Session(
        {Opening("{scene {light 1.5} {lihgt 2} {}}", uri), ask("hover", 9), ask("hover", 15), ask("completion", 30)});
    ASSERT_EQ(sent.size(), 4U);
    const json& mistakes = sent[0]["params"]["diagnostics"];
    ASSERT_GE(mistakes.size(), 1U);
    EXPECT_EQ(mistakes[0]["range"]["start"], Place(0, 20));
    EXPECT_THAT(mistakes[0]["message"].get<std::string>(), testing::HasSubstr("did you mean 'light'?"));
    EXPECT_EQ(sent[1]["result"]["contents"]["value"], "block `light`: 1 value, 0 blocks\n\nA lamp.");
    EXPECT_EQ(sent[2]["result"]["contents"]["value"], "float `1.5`\n\nunit `W`, default `1`");
    ASSERT_EQ(sent[3]["result"].size(), 1U);
    EXPECT_EQ(sent[3]["result"][0]["label"], "light");
}

TEST_F(ToolLsp, ListsAThousandMistakesAtMost) {
    std::string text;
    for (int number = 0; number < 5'000; ++number)
        text += "$ ";
    const auto sent = Session({Opening(text)});
    ASSERT_EQ(sent.size(), 1U);
    EXPECT_EQ(sent[0]["params"]["diagnostics"].size(), 1'000U);
}
