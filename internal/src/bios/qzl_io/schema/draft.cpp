// SPDX-License-Identifier: BSL-1.0
#include "schema/draft.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <utility>

#include <qzl_io/sdl/writer.h>
#include <qzl_io/streams/stream_memory.h>

#include "qzl_base/shared/ascii.h"
#include "schema/rules.h"

namespace xSDL {
namespace {

constexpr std::size_t kMostSingle = 4; // values that have a rule each
constexpr std::size_t kMostChoices = 8;
// A rule is indented by its depth, so that without a limit the draft of a document of nothing but braces would grow
// with its square.
constexpr std::size_t kDeepest = 32;

// The values at one place.
struct eSeenValue {
    eValueKind kind = eValueKind::Any;
    bool seen = false;
    std::vector<std::string> words; // more than kMostChoices: too many to list

    void Add(eValueKind another, const std::string& word) {
        const bool numbers = (kind == eValueKind::Int || kind == eValueKind::Float) &&
                             (another == eValueKind::Int || another == eValueKind::Float);
        kind = !seen || kind == another ? another : numbers ? eValueKind::Float : eValueKind::Any;
        seen = true;
        if (another == eValueKind::Word && words.size() <= kMostChoices &&
            std::find(words.begin(), words.end(), word) == words.end())
            words.push_back(word);
    }
    void Add(const eSeenValue& other) {
        Add(other.kind, {});
        words.insert(words.end(), other.words.begin(), other.words.end());
    }
};

// All blocks at one path.
struct eSeenBlock {
    std::string name;
    std::size_t instances = 0;
    eCount count{kMany, 0};       // in one block around that has any
    std::size_t blocksAround = 0; // that have any
    eCount valueCount{kMany, 0};
    std::vector<eSeenValue> values; // those after kMostSingle count as the last one
    std::vector<std::size_t> children;
    unsigned long long inThisBlock = 0;
    std::size_t depth = 0;
    bool others = false; // blocks that are too deep for rules of their own
};

// A long integer is a number to a schema's float only.
eValueKind KindOf(const eSDLNode& value) {
    int small = 0;
    switch (value.Kind()) {
    case eSDLKind::Int:
        return value.Get(&small) ? eValueKind::Int : eValueKind::Float;
    case eSDLKind::Float:
    case eSDLKind::Calculation:
        return eValueKind::Float;
    case eSDLKind::String:
        return eValueKind::String;
    case eSDLKind::Word:
        return eValueKind::Word;
    default:
        return eValueKind::Any;
    }
}

class eDrafting {
public:
    eDrafting() : seen(1) {}

    void Look(const eSDLDocument& document) {
        std::vector<std::pair<eSDLNode, std::size_t>> waiting{{document.Root(), 0}};
        while (!waiting.empty()) {
            const auto [block, index] = waiting.back();
            waiting.pop_back();
            LookAt(block, index, &waiting);
        }
    }

    std::string Text() {
        IO::eMemoryStream target;
        eSDLWriter writer(&target);
        Write(writer);
        writer.Close();
        return {reinterpret_cast<const char*>(target.Buffer()), static_cast<std::size_t>(target.Size())};
    }

private:
    void LookAt(const eSDLNode& block, std::size_t index, std::vector<std::pair<eSDLNode, std::size_t>>* waiting) {
        ++seen[index].instances;
        std::vector<std::size_t> children;
        unsigned long long values = 0;
        for (const eSDLNode& child : block) {
            if (child.IsBlock() && seen[index].depth == kDeepest) {
                seen[index].others = true;
            } else if (child.IsBlock()) {
                const std::size_t at = ChildOf(index, std::string(child.Name()));
                if (seen[at].inThisBlock++ == 0)
                    children.push_back(at);
                waiting->emplace_back(child, at);
            } else {
                const std::size_t place = std::min<std::size_t>(values++, kMostSingle);
                std::vector<eSeenValue>& places = seen[index].values;
                places.resize(std::max(places.size(), place + 1));
                places[place].Add(KindOf(child), std::string(child.Name()));
            }
        }
        Count(&seen[index].valueCount, values);
        for (const std::size_t child : children) {
            ++seen[child].blocksAround;
            Count(&seen[child].count, std::exchange(seen[child].inThisBlock, 0));
        }
    }

    static void Count(eCount* count, unsigned long long number) {
        count->least = std::min(count->least, number);
        count->most = std::max(count->most, number);
    }

    std::size_t ChildOf(std::size_t index, const std::string& name) {
        const auto found = byName.find({index, ascii::LowerCased(name)});
        if (found != byName.end())
            return found->second;
        const std::size_t child = seen.size();
        seen.emplace_back().name = name;
        seen[child].depth = seen[index].depth + 1;
        seen[index].children.push_back(child);
        byName.emplace(std::pair(index, ascii::LowerCased(name)), child);
        return child;
    }

    static eSDLWriter& Open(eSDLWriter& writer, const char* name) {
        writer.Stream().WriteControl(sdlBlockStart);
        return writer << ident{name};
    }

    static void WriteCount(eSDLWriter& writer, eCount count, bool many) {
        if (count.least == 1 && count.most == 1 && !many)
            return;
        Open(writer, "count") << count.least;
        if (many)
            writer << ident{"many"};
        else if (count.most != count.least)
            writer << count.most;
        writer << endb;
    }

    static void WriteValue(eSDLWriter& writer, const eSeenValue& value, eCount count, bool many) {
        Open(writer << endl, "value") << ident{NameOf(kValueKinds, value.kind)};
        WriteCount(writer, count, many);
        if (value.kind == eValueKind::Word && value.words.size() <= kMostChoices) {
            Open(writer, "one_of");
            for (const std::string& word : value.words)
                writer << ident{word.c_str()};
            writer << endb;
        }
        writer << endb;
    }

    static void WriteValues(eSDLWriter& writer, const eSeenBlock& block) {
        if (block.valueCount.most <= kMostSingle) {
            for (std::size_t place = 0; place < block.values.size(); ++place)
                WriteValue(writer, block.values[place], {place < block.valueCount.least ? 1u : 0u, 1}, false);
            return;
        }
        eSeenValue any = block.values.front();
        std::for_each(block.values.begin() + 1, block.values.end(), [&](const eSeenValue& value) { any.Add(value); });
        WriteValue(writer, any, block.valueCount, true);
    }

    void WriteHead(eSDLWriter& writer, std::size_t index, std::size_t around) const {
        const eSeenBlock& block = seen[index];
        if (index == 0) {
            Open(writer, "schema");
        } else {
            Open(writer << endl, "block");
            if (!block.name.empty())
                writer << ident{block.name.c_str()};
            const bool everywhere = block.blocksAround == seen[around].instances;
            WriteCount(writer, {everywhere ? block.count.least : 0, block.count.most}, block.count.most > 1);
        }
        WriteValues(writer, block);
        if (block.others)
            Open(writer << endl, "others") << endb;
    }

    void Write(eSDLWriter& writer) const {
        struct eOpen {
            std::size_t block;
            std::size_t next = 0;
        };
        WriteHead(writer, 0, 0);
        std::vector<eOpen> open{{0}};
        while (!open.empty()) {
            const std::vector<std::size_t>& children = seen[open.back().block].children;
            if (open.back().next == children.size()) {
                const eSeenBlock& block = seen[open.back().block];
                if (!children.empty() || !block.values.empty() || block.others)
                    writer << endl;
                writer << endb;
                open.pop_back();
            } else {
                const std::size_t child = children[open.back().next++];
                WriteHead(writer, child, open.back().block);
                open.push_back({child});
            }
        }
        writer << endl;
    }

    std::vector<eSeenBlock> seen; // the first: what is outside all blocks
    std::map<std::pair<std::size_t, std::string>, std::size_t> byName;
};

} // namespace

std::string DraftOf(const std::vector<const eSDLDocument*>& documents) {
    eDrafting drafting;
    for (const eSDLDocument* const document : documents)
        drafting.Look(*document);
    return drafting.Text();
}

} // namespace xSDL
