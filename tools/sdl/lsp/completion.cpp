// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "lsp/features.h"

namespace {

using nlohmann::json;

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
    eNames(const eOpenText& text, const eTyped& typed) : root(text.Document().Root()), around(root) {
        WalkParts(text, [&](const eLocatedPart& located) {
            Take(located, typed);
            return true;
        });
    }

    // The block in which something is typed, or the document.
    const eSDLNode& Around() const { return around; }

    // What blocks of the same name as that one have within them: names of blocks, or words.
    std::vector<std::string> Wanted(bool blocks) const {
        const auto& names = blocks ? blockNames : words;
        const auto found = names.find(container);
        return found == names.end() ? std::vector<std::string>()
                                    : std::vector<std::string>(found->second.begin(), found->second.end());
    }

private:
    struct eOpenBlock {
        eSDLNode node;
        std::string name; // in lower case
    };

    void Take(const eLocatedPart& located, const eTyped& typed) {
        const eSDLPart& part = located.part;
        open.resize(std::min<std::size_t>(open.size(), static_cast<std::size_t>(part.depth)));
        const bool isBlock = part.kind == eSDLKind::Block;
        const bool isTyped = isBlock && typed.afterBrace && located.end == typed.begin;
        if (isTyped)
            TypedHere();
        if (isBlock)
            Enter(part.node, isTyped, located.end);
        else if (part.kind == eSDLKind::Word && located.end > nameEnd && located.begin != typed.begin)
            Add(&words, std::string(part.text));
        if (located.begin < typed.begin && !isTyped)
            TypedHere();
    }

    void TypedHere() {
        container = Container();
        around = open.empty() ? root : open.back().node;
    }

    void Enter(const eSDLNode& block, bool isTyped, std::size_t end) {
        const std::string_view name = block.Name();
        if (!isTyped)
            Add(&blockNames, std::string(name));
        open.push_back({block, Lowered(name)});
        nameEnd = end + name.size();
    }

    std::string Container() const { return open.empty() ? "" : open.back().name; }

    void Add(std::map<std::string, std::set<std::string>>* names, const std::string& name) const {
        if (!name.empty())
            (*names)[Container()].insert(name);
    }

    std::map<std::string, std::set<std::string>> blockNames;
    std::map<std::string, std::set<std::string>> words;
    std::vector<eOpenBlock> open;
    std::size_t nameEnd = 0; // where the name of the latest block ends, which is no word of its content
    std::string container;
    eSDLNode root;
    eSDLNode around;
};

} // namespace

json CompletionsAt(const eOpenText& text, std::size_t offset) {
    constexpr int kStruct = 22; // kinds of completion
    constexpr int kKeyword = 14;
    const eTyped typed(text.Text(), offset);
    const eNames names(text, typed);
    const eSDLSchema* const schema = text.Schema();
    json items = json::array();
    for (const std::string& name : schema ? schema->NamesIn(names.Around()) : names.Wanted(typed.afterBrace))
        items.push_back({{"label", name},
                         {"kind", typed.afterBrace ? kStruct : kKeyword},
                         {"textEdit", {{"range", RangeOf(text, typed.begin, typed.end)}, {"newText", name}}}});
    return items;
}
