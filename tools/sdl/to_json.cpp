// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <qzl_base/convert.h>

#include "files.h"
#include "json_text.h"
#include "reports.h"
#include "terminal.h"
#include "verb.h"
#include "walk.h"

// Converts SDL to JSON, as the reverse of JsonToSdl.

namespace {

// What a block, or the document, becomes.
enum class eShape : unsigned char {
    Null,   // {name}
    Scalar, // {name VALUE} on one line
    Array,  // values, blocks without names, or a mixture of everything
    Object  // blocks with names alone
};

// What is known of a block while it is read for the first time.
struct eContent {
    void AddValue(bool onFirstLine) {
        ++values;
        alone = onFirstLine;
    }
    void AddBlock(bool named) { ++(named ? members : elements); }

    eShape Shape(bool mayBeScalar, bool onOneLine) const {
        if (values + elements == 0 && members > 0)
            return eShape::Object;
        if (mayBeScalar && values + elements + members == 0 && onOneLine)
            return eShape::Null;
        if (mayBeScalar && values == 1 && elements + members == 0 && alone)
            return eShape::Scalar;
        return eShape::Array;
    }

    unsigned long long values = 0;
    unsigned long long members = 0;
    unsigned long long elements = 0; // blocks without names
    bool alone = false;              // the last value is on the line of the block's name
};

struct eChanges {
    unsigned long long clamped = 0;
    unsigned long long infinite = 0;
};

// The layout of the JSON text.
class eJsonLines {
public:
    eJsonLines(eOutput* target, int width) : output(*target), indent(width) {}

    void Begin(eShape shape) {
        if (shape == eShape::Array || shape == eShape::Object)
            text += shape == eShape::Array ? '[' : '{';
        open.push_back({shape, true});
    }
    void End() {
        const eOpen ended = open.back();
        open.pop_back();
        if (ended.shape == eShape::Null)
            text += "null";
        if (ended.shape != eShape::Array && ended.shape != eShape::Object)
            return;
        if (!ended.empty)
            BreakLine();
        text += ended.shape == eShape::Array ? ']' : '}';
        Pass(false);
    }

    // Before each value of an array and each member of an object.
    void Separate() {
        eOpen& around = open.back();
        if (around.shape == eShape::Scalar)
            return;
        if (!around.empty)
            text += ',';
        around.empty = false;
        BreakLine();
    }
    void Name(std::string_view name) {
        Separate();
        json_text::AppendString(&text, name);
        text += indent < 0 ? ":" : ": ";
    }
    bool InObject() const { return open.back().shape == eShape::Object; }

    std::string& Text() { return text; }
    void Pass(bool all) {
        if (!all && text.size() < kPiece)
            return;
        output.Write(text);
        text.clear();
    }

private:
    struct eOpen {
        eShape shape;
        bool empty;
    };

    static constexpr std::size_t kPiece = 1 << 16;
    // Deeper lines are not indented further, so that a document of nothing but braces does not grow with its square.
    static constexpr std::size_t kDeepest = 40;

    void BreakLine() {
        if (indent < 0)
            return;
        text += '\n';
        text.append(static_cast<std::size_t>(indent) * std::min(open.size(), kDeepest), ' ');
    }

    eOutput& output;
    int indent; // negative: all on one line
    std::string text;
    std::vector<eOpen> open;
};

class eToJson : public eWalk {
public:
    eToJson(const std::string& input, bool anyName) : eWalk(input), anyNames(anyName) {}

    // Reads the whole document for the shapes of its blocks, in the order in which they begin. So a document with
    // mistakes gives no output at all.
    void FindShapes();
    void Write(eJsonLines* lines);
    const eChanges& Changes() const { return changes; }

private:
    struct eBlock {
        std::size_t index;
        eContent content;
        bool named;
        int nameLine;
        const char* nameEnd;
    };

    // Whether the last token, the block's first value, begins on the line of its name.
    bool IsOnNameLine(const eBlock& block) const;
    bool TakeAnyName(std::string* name);
    bool TakeRun(std::string* name);
    void CloseShape(eBlock* block, int endLine);
    void BeginBlock(eJsonLines* lines);
    void EndBlock(eJsonLines* lines);
    void AppendValue(std::string* text);
    void AppendInt(std::string* text);
    void AppendFloat(std::string* text);

    bool anyNames;
    std::vector<eShape> shapes;
    std::size_t next = 0;      // of the shapes
    std::vector<bool> wrapped; // for each open block: it is the one member of an object of its own
    eChanges changes;
};

bool eToJson::IsOnNameLine(const eBlock& block) const {
    if (Line() == block.nameLine)
        return true;
    const bool severalLines = Token().type == sdlString && Token().text.find('\n') != std::string::npos;
    return severalLines && block.nameEnd[std::strcspn(block.nameEnd, "\n\r;\"")] == '"';
}

bool eToJson::TakeAnyName(std::string* name) {
    return (anyNames && TakeRun(name)) || TakeName(name);
}

// What directly follows the brace, up to a blank, brace, parenthesis, quote or comment.
bool eToJson::TakeRun(std::string* name) {
    const std::string_view rest(Parser().Cptr(), std::strcspn(Parser().Cptr(), "\t\n\r ={}()\";"));
    if (rest.empty())
        return false;
    *name = rest;
    MoveTo(rest.data() + rest.size(), Line());
    return true;
}

void eToJson::FindShapes() {
    std::vector<eBlock> open = {{0, {}, false, 1, Parser().Cptr()}};
    shapes.assign(1, eShape::Array);
    std::string name;
    while (Next()) {
        if (Token().type == sdlBlockStart) {
            const bool named = TakeAnyName(&name);
            open.back().content.AddBlock(named);
            open.push_back({shapes.size(), {}, named, Line(), Parser().Cptr()});
            shapes.push_back(eShape::Array);
        } else if (Token().type == sdlBlockEnd) {
            CloseShape(&open.back(), Line());
            open.pop_back();
        } else {
            open.back().content.AddValue(IsOnNameLine(open.back()));
        }
    }
    // A document of one value is that value, unless a line end follows it, as it does each element of an array.
    eBlock& document = open.back();
    document.named = document.content.values == 1 && Line() == 1;
    CloseShape(&document, Line());
    Rewind();
}

void eToJson::CloseShape(eBlock* block, int endLine) {
    shapes[block->index] = block->content.Shape(block->named, endLine == block->nameLine);
}

void eToJson::Write(eJsonLines* lines) {
    next = 0;
    lines->Begin(shapes[next++]);
    while (Next()) {
        switch (Token().type) {
        case sdlBlockStart:
            BeginBlock(lines);
            break;
        case sdlBlockEnd:
            EndBlock(lines);
            break;
        default:
            lines->Separate();
            AppendValue(&lines->Text());
            lines->Pass(false);
        }
    }
    lines->End();
    lines->Text() += '\n';
    lines->Pass(true);
}

// A block with a name that is among values becomes an object with one member.
void eToJson::BeginBlock(eJsonLines* lines) {
    std::string name;
    const bool named = TakeAnyName(&name);
    wrapped.push_back(named && !lines->InObject());
    if (!named || wrapped.back())
        lines->Separate();
    if (wrapped.back())
        lines->Begin(eShape::Object);
    if (named)
        lines->Name(name);
    lines->Begin(shapes[next++]);
}

void eToJson::EndBlock(eJsonLines* lines) {
    lines->End();
    if (wrapped.back())
        lines->End();
    wrapped.pop_back();
}

void eToJson::AppendValue(std::string* text) {
    switch (Token().type) {
    case sdlInt:
        return AppendInt(text);
    case sdlFloat:
        return AppendFloat(text);
    default:
        break;
    }
    json_text::AppendString(text, Token().text);
}

void eToJson::AppendInt(std::string* text) {
    const eSDLParserToken& token = Token();
    char room[kNumberTextRoom];
    text->append(room, PutInt(room, token.intValue));
    int value = 0;
    if (!_FromString(&value, token.text.c_str()))
        ++changes.clamped;
}

void eToJson::AppendFloat(std::string* text) {
    const float value = Token().floatValue;
    if (std::isfinite(value))
        return json_text::AppendFloat(text, value);
    *text += "null";
    ++changes.infinite;
}

void ShowChanges(const std::string& input, const eChanges& changes) {
    const std::string name = ShownName(input) + ": ";
    if (changes.clamped > 0)
        ShowMessage(name + Counted(changes.clamped, "integer") + " beyond 32 bits became the nearest one");
    if (changes.infinite > 0)
        ShowMessage(name + Counted(changes.infinite, "number") + " beyond the range of floats became null");
}

struct eToJsonArguments {
    std::string input;
    std::string output;
    int indent = 2;
    bool compact = false;
    bool anyNames = false;
};

eEnd ToJson(const eToJsonArguments& arguments) {
    eToJson conversion(arguments.input, arguments.anyNames);
    conversion.FindShapes();
    eOutput output(arguments.output);
    eJsonLines lines(&output, arguments.compact ? -1 : arguments.indent);
    conversion.Write(&lines);
    output.Commit();
    terminal::EndProgress();
    ShowChanges(arguments.input, conversion.Changes());
    return eEnd::Fine;
}

} // namespace

eVerb::eRun DeclareToJson(CLI::App* verb) {
    const auto arguments = std::make_shared<eToJsonArguments>();
    verb->add_option("IN", arguments->input, "the SDL document")->required();
    verb->add_option("OUT", arguments->output, "the JSON file")->required();
    verb->add_option("--indent", arguments->indent, "blanks for each level")->check(AtMost(16))->capture_default_str();
    verb->add_flag("--compact", arguments->compact, "all on one line");
    verb->add_flag(
        "--any-names", arguments->anyNames,
        "whatever directly follows the { of a block is its name, as from-json writes names that are no words");
    return [arguments] { return ToJson(*arguments); };
}
