#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <qzl_base/convert.h>

#include "lsp/features.h"
#include "lsp/file_uri.h"

namespace {

using nlohmann::json;

// --- Hover ---

std::string InCode(std::string_view text) {
    return "`" + std::string(text) + "`";
}

std::string DescribedBlock(const eSDLNode& block) {
    std::size_t values = 0, blocks = 0;
    for (const eSDLNode& child : block)
        ++(child.IsBlock() ? blocks : values);
    std::string text = block.IsHidden() ? "block that readers skip" : "block";
    if (!block.Name().empty())
        text += " " + InCode(block.Name());
    return text + ": " + std::to_string(values) + (values == 1 ? " value, " : " values, ") + std::to_string(blocks) +
           (blocks == 1 ? " block" : " blocks");
}

std::string DescribedNumber(const eSDLNode& node, const char* kind) {
    float value = 0;
    int whole = 0;
    const std::string text = node.Text();
    const std::string read = node.Get(&whole) ? ToString(whole, false) : node.Get(&value) ? ToString(value) : text;
    return std::string(kind) + " " + InCode(text) + (read == text ? "" : ", read as " + read);
}

std::string DescribedString(const eSDLNode& node) {
    std::string value;
    node.Get(&value);
    return "string of " + std::to_string(value.size()) + (value.size() == 1 ? " byte" : " bytes");
}

// The first word of a block is its name.
std::string DescribedWord(const eSDLNode& node) {
    const eSDLNode block = node.Parent();
    return block.IsBlock() && block.Name().data() == node.Name().data() ? DescribedBlock(block)
                                                                        : "word " + InCode(node.Name());
}

std::string Described(const eSDLNode& node) {
    switch (node.Kind()) {
    case eSDLKind::Block:
        return DescribedBlock(node);
    case eSDLKind::Int:
        return DescribedNumber(node, "integer");
    case eSDLKind::Float:
        return DescribedNumber(node, "float");
    case eSDLKind::Calculation:
        return DescribedNumber(node, "calculation");
    case eSDLKind::String:
        return DescribedString(node);
    case eSDLKind::Word:
        return DescribedWord(node);
    case eSDLKind::Control:
        return "control block, which readers skip";
    default:
        return {};
    }
}

// --- Completion ---

std::string Lowered(std::string_view name) {
    std::string lowered(name);
    std::transform(lowered.begin(), lowered.end(), lowered.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return lowered;
}

bool IsNameCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '%';
}

// What is being typed at an offset.
struct eTyped {
    eTyped(std::string_view text, std::size_t offset) : begin(offset), end(offset) {
        while (begin > 0 && IsNameCharacter(text[begin - 1]))
            --begin;
        while (end < text.size() && IsNameCharacter(text[end]))
            ++end;
        std::size_t mark = begin;
        while (mark > 0 && text[mark - 1] == '#')
            --mark;
        afterBrace = mark > 0 && text[mark - 1] == '{';
    }

    std::size_t begin;
    std::size_t end;
    bool afterBrace = false;
};

// The names that blocks have within them, by the name of the block. The text that is being typed is none of them.
class eNames {
public:
    eNames(const eOpenText& text, const eTyped& typed) {
        WalkParts(text, [&](const eLocatedPart& located) {
            Take(located, typed);
            return true;
        });
    }

    // Of the kind that is being typed, for the block in which it is typed.
    std::set<std::string> Wanted(bool blocks) const {
        const auto& names = blocks ? blockNames : words;
        const auto found = names.find(container);
        return found == names.end() ? std::set<std::string>() : found->second;
    }

private:
    void Take(const eLocatedPart& located, const eTyped& typed) {
        const eSDLPart& part = located.part;
        open.resize(std::min<std::size_t>(open.size(), static_cast<std::size_t>(part.depth)));
        const bool isBlock = part.kind == eSDLKind::Block;
        const bool isTyped = isBlock && typed.afterBrace && located.end == typed.begin;
        if (isTyped)
            container = Container();
        if (isBlock)
            Enter(part.node.Name(), isTyped, located.end);
        else if (part.kind == eSDLKind::Word && located.end > nameEnd && located.begin != typed.begin)
            Add(&words, std::string(part.text));
        if (located.begin < typed.begin && !isTyped)
            container = Container();
    }

    void Enter(std::string_view name, bool isTyped, std::size_t end) {
        if (!isTyped)
            Add(&blockNames, std::string(name));
        open.push_back(Lowered(name));
        nameEnd = end + name.size();
    }

    std::string Container() const { return open.empty() ? "" : open.back(); }

    void Add(std::map<std::string, std::set<std::string>>* names, const std::string& name) const {
        if (!name.empty())
            (*names)[Container()].insert(name);
    }

    std::map<std::string, std::set<std::string>> blockNames;
    std::map<std::string, std::set<std::string>> words;
    std::vector<std::string> open;
    std::size_t nameEnd = 0; // where the name of the latest block ends, which is no word of its content
    std::string container;
};

} // namespace

json HoverAt(const eOpenText& text, std::size_t offset) {
    const eLocatedPart located = PartAt(text, offset);
    const eSDLNode node = located.part.node;
    const std::string description = Described(node);
    if (description.empty())
        return nullptr;
    return {{"contents", {{"kind", "markdown"}, {"value", description}}},
            {"range", RangeOf(text, located.begin, located.end)}};
}

json DefinitionAt(const eOpenText& text, std::size_t offset) {
    const eLocatedPart located = PartAt(text, offset);
    const std::string_view control = located.part.text;
    const auto folder = PathOfUri(text.Uri());
    if (located.part.kind != eSDLKind::Control || control.size() < 2 || !folder)
        return nullptr;
    const eSDLDocument content(control.substr(1, control.size() - 2));
    const eSDLNode word = *content.begin();
    std::string name;
    if (!word.Is("include") || !word.Next().Get(&name))
        return nullptr;
    const std::filesystem::path file = folder->parent_path() / std::u8string(name.begin(), name.end());
    std::error_code failure;
    if (!std::filesystem::is_regular_file(file, failure))
        return nullptr;
    constexpr ePosition kBegin;
    return {{"uri", UriOfPath(file.lexically_normal())},
            {"range", {{"start", ToJson(kBegin)}, {"end", ToJson(kBegin)}}}};
}

json CompletionsAt(const eOpenText& text, std::size_t offset) {
    constexpr int kStruct = 22, kKeyword = 14; // kinds of completion
    const eTyped typed(text.Text(), offset);
    json items = json::array();
    for (const std::string& name : eNames(text, typed).Wanted(typed.afterBrace))
        items.push_back({{"label", name},
                         {"kind", typed.afterBrace ? kStruct : kKeyword},
                         {"textEdit", {{"range", RangeOf(text, typed.begin, typed.end)}, {"newText", name}}}});
    return items;
}
