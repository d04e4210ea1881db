// SPDX-License-Identifier: BSL-1.0
#include "tree.h"

#include <algorithm>
#include <limits>

#include <qzl_base/convert.h>

#include "walk.h"

namespace {

std::uint64_t Mix(std::uint64_t hash, std::uint64_t value) {
    hash = (hash ^ value) * 0x9E3779B97F4A7C15u;
    return hash ^ hash >> 29;
}

std::uint64_t HashOf(std::string_view text) {
    std::uint64_t hash = text.size();
    for (const char character : text)
        hash = Mix(hash, static_cast<unsigned char>(character));
    return hash;
}

} // namespace

class eTree::eReading : public eWalk {
public:
    eReading(const std::string& name, eTree* target) : eWalk(name), tree(*target) {}

    void Run() {
        Enter({});
        while (Next()) {
            if (Token().type == sdlBlockStart)
                EnterBlock();
            else if (Token().type == sdlBlockEnd)
                Leave();
            else
                Add(ValueText(), false);
        }
        Leave();
    }

private:
    void EnterBlock() {
        std::string heading = Token().text.empty() ? std::string() : '#' + Token().text + ' ';
        std::string name;
        if (TakeName(&name))
            heading += name;
        Enter(heading);
    }

    void Enter(std::string_view heading) {
        open.push_back(tree.nodes.size());
        Add(heading, true);
    }

    void Leave() {
        const std::size_t block = open.back();
        open.pop_back();
        tree.nodes[block].end = tree.nodes.size();
        if (!open.empty())
            tree.nodes[open.back()].hash = Mix(tree.nodes[open.back()].hash, tree.nodes[block].hash);
    }

    void Add(std::string_view text, bool block) {
        const std::string_view kept = text.substr(0, std::numeric_limits<std::uint32_t>::max());
        const std::uint64_t hash = Mix(HashOf(text), block);
        if (!block)
            tree.nodes[open.back()].hash = Mix(tree.nodes[open.back()].hash, hash);
        tree.nodes.push_back(
            {hash, tree.nodes.size() + 1, tree.texts.size(), static_cast<std::uint32_t>(kept.size()), Line(), block});
        tree.texts += kept;
    }

    // The text of a value, which tells its kind.
    std::string ValueText() const {
        const eSDLParserToken& token = Token();
        switch (token.type) {
        case sdlInt:
            return ToString(token.intValue, false);
        case sdlFloat: {
            const std::string text = ToString(token.floatValue);
            return text.find_first_of(".en") == std::string::npos ? text + '.' : text;
        }
        case sdlString: {
            std::string text = token.text;
            ConvertEscSequence(&text, true);
            return '"' + text + '"';
        }
        default:
            return token.text;
        }
    }

    eTree& tree;
    std::vector<std::size_t> open;
};

eTree::eTree(const std::string& name) {
    eReading(name, this).Run();
}

std::vector<std::size_t> eTree::ChildrenOf(std::size_t block) const {
    std::vector<std::size_t> children;
    for (std::size_t node = block + 1; node < nodes[block].end; node = nodes[node].end)
        children.push_back(node);
    return children;
}

bool eTree::operator==(const eTree& other) const {
    const auto same = [](const eNode& one, const eNode& two) {
        return one.block == two.block && one.end == two.end && one.size == two.size;
    };
    return texts == other.texts && std::equal(nodes.begin(), nodes.end(), other.nodes.begin(), other.nodes.end(), same);
}
