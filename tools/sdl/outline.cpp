// SPDX-License-Identifier: BSL-1.0
#include "outline.h"

#include <algorithm>
#include <cstddef>

#include "reports.h"
#include "terminal.h"
#include "walk.h"

namespace {

constexpr const char* kAnonymous = "(no name)";
constexpr const char* kOthers = "(other names)";
constexpr std::size_t kMostEntries = 1 << 20; // so that a document of nothing but names takes bounded memory

} // namespace

class eOutline::eReading : public eWalk {
public:
    eReading(const std::string& name, eOutline* target) : eWalk(name), outline(*target) {}

    void Run() {
        while (Next())
            Take(Token().type);
    }

private:
    void Take(eSDLParserLexType type) {
        switch (type) {
        case sdlBlockStart:
            return Enter();
        case sdlBlockEnd:
            return Leave();
        case sdlString:
            ++outline.strings;
            return;
        case sdlInt:
            ++outline.integers;
            return;
        case sdlFloat:
            ++outline.floats;
            return;
        default:
            ++outline.words;
        }
    }

    void Enter() {
        std::string name;
        if (!TakeName(&name))
            name = kAnonymous;
        ++outline.blocks;
        outline.deepest = std::max(outline.deepest, Depth());
        if (Depth() <= outline.shownDepth)
            open.push_back(outline.Enter(open.back(), name));
    }

    // Blocks that are too deep to be shown have no entries.
    void Leave() {
        if (Depth() < outline.shownDepth)
            open.pop_back();
    }

    eOutline& outline;
    std::vector<std::size_t> open = {0}; // the entries of the blocks around the position, the document's first
};

eOutline::eOutline(const std::string& name, std::size_t depth) : shownDepth(depth) {
    eReading(name, this).Run();
}

std::size_t eOutline::Enter(std::size_t parent, const std::string& name) {
    const auto key = [&](const std::string& word) { return std::to_string(parent) + ' ' + word; };
    const std::string& kept = entries.size() < kMostEntries || numbers.contains(key(name)) ? name : kOthers;
    const auto [number, added] = numbers.try_emplace(key(kept), entries.size());
    if (added) {
        entries[parent].inside.push_back(number->second);
        entries.push_back({kept, 0, {}});
    }
    ++entries[number->second].count;
    return number->second;
}

void eOutline::PrintBlocks(std::ostream& out, std::size_t entriesOfOneParent) const {
    PrintInside(out, entries.front(), 1, entriesOfOneParent);
}

void eOutline::PrintInside(std::ostream& out, const eEntry& parent, int depth, std::size_t limit) const {
    const std::string indentation(static_cast<std::size_t>(2 * depth), ' ');
    const std::size_t shown = std::min(limit, parent.inside.size());
    for (std::size_t index = 0; index < shown; ++index) {
        const eEntry& entry = entries[parent.inside[index]];
        out << indentation << terminal::Printable(entry.name);
        if (entry.count > 1)
            out << " x " << entry.count;
        out << '\n';
        PrintInside(out, entry, depth + 1, limit);
    }
    if (shown < parent.inside.size())
        out << indentation << "... and " << Counted(parent.inside.size() - shown, "more name") << '\n';
}

void eOutline::PrintCounts(std::ostream& out) const {
    out << "  blocks    " << blocks << ", at most " << deepest << " deep\n"
        << "  strings   " << strings << '\n'
        << "  integers  " << integers << '\n'
        << "  floats    " << floats << '\n'
        << "  words     " << words << '\n';
}
