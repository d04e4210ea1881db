#include "outline.h"

#include <algorithm>
#include <cstddef>

#include <qzl_base/error.h>

namespace {

constexpr const char* kSource = "tools/outline";
constexpr int kIllegalCharacterLine = 10;
constexpr const char* kAnonymous = "(no name)";
constexpr unsigned long long kValuesBetweenProgress = 1 << 16;

} // namespace

// Reads every token of a file, whatever the names of its blocks.
class eOutline::eWalk : public eSDLReader {
public:
    eWalk(const eFileName& sdl, eOutline* target, eProgress report)
        : eSDLReader(sdl, nullptr), outline(*target), progress(report) {}

    void Run() {
        while (Get()) {
            Take(Token());
            if (progress && ++taken % kValuesBetweenProgress == 0)
                progress(Parser().Line());
        }
    }

private:
    void Take(const eSDLParserToken& token) {
        switch (token.type) {
        case sdlBlockStart:
            return Enter();
        case sdlBlockEnd:
            return Leave();
        case sdlIdent:
        case sdlKeyword:
            ++outline.words;
            return;
        case sdlString:
            ++outline.strings;
            return;
        case sdlInt:
            ++outline.integers;
            return;
        case sdlFloat:
            ++outline.floats;
            return;
        case sdlError:
            xError::Fatal(kSource, kIllegalCharacterLine, "No token begins with this character!");
        default:
            return;
        }
    }

    // A block's name is the word directly after its brace.
    void Enter() {
        const bool named = Test(sdlIdent);
        const std::string name = named ? GetIdent() : kAnonymous;
        open.push_back(outline.Enter(open.back(), name));
        outline.deepest = std::max(outline.deepest, open.size() - 1);
    }

    void Leave() {
        if (open.size() > 1)
            open.pop_back();
    }

    eOutline& outline;
    eProgress progress;
    unsigned long long taken = 0;
    std::vector<std::size_t> open = {0}; // the entries of the blocks around the position, the document's first
};

eOutline::eOutline(const eFileName& sdl, eProgress progress) {
    eWalk(sdl, this, progress).Run();
}

std::size_t eOutline::Enter(std::size_t parent, const std::string& name) {
    ++blocks;
    for (const std::size_t inside : entries[parent].inside) {
        if (entries[inside].name == name) {
            ++entries[inside].count;
            return inside;
        }
    }
    const std::size_t added = entries.size();
    entries[parent].inside.push_back(added);
    entries.push_back({name, 1, {}});
    return added;
}

void eOutline::PrintBlocks(std::ostream& out, std::size_t entriesOfOneParent) const {
    PrintInside(out, entries.front(), 1, entriesOfOneParent);
}

void eOutline::PrintInside(std::ostream& out, const eEntry& parent, int depth, std::size_t limit) const {
    const std::string indentation(static_cast<std::size_t>(2 * depth), ' ');
    const std::size_t shown = std::min(limit, parent.inside.size());
    for (std::size_t index = 0; index < shown; ++index) {
        const eEntry& entry = entries[parent.inside[index]];
        out << indentation << entry.name;
        if (entry.count > 1)
            out << " x " << entry.count;
        out << '\n';
        PrintInside(out, entry, depth + 1, limit);
    }
    if (shown < parent.inside.size())
        out << indentation << "... and " << parent.inside.size() - shown << " more names\n";
}

void eOutline::PrintCounts(std::ostream& out) const {
    out << "  blocks    " << blocks << ", at most " << deepest << " deep\n"
        << "  strings   " << strings << '\n'
        << "  integers  " << integers << '\n'
        << "  floats    " << floats << '\n'
        << "  words     " << words << '\n';
}
