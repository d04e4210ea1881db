#pragma once

#include <array>
#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include <qzl_io/sdl.h>

// The structure of an SDL document: its blocks with their keywords and depths, and the number of its values by kind.
class eOutline {
public:
    // Called now and then with the number of the line being read.
    using eProgress = void (*)(int line);

    // Reads a file through eSDLReader from beginning to end. Throws what the reader reports.
    explicit eOutline(const eFileName& sdl, eProgress progress = nullptr);

    // Prints the blocks as an indented list. Blocks of one name in one parent are one entry with their number; each
    // parent shows at most `entriesOfOneParent` entries.
    void PrintBlocks(std::ostream& out, std::size_t entriesOfOneParent) const;
    // Prints the number of blocks, their greatest depth, and the values by kind.
    void PrintCounts(std::ostream& out) const;

    unsigned long long Values() const { return words + strings + integers + floats; }

private:
    // The blocks of one name inside the blocks of another.
    struct eEntry {
        std::string name;
        unsigned long long count = 0;
        std::vector<std::size_t> inside; // positions in entries
    };

    class eWalk;

    std::size_t Enter(std::size_t parent, const std::string& name);
    void PrintInside(std::ostream& out, const eEntry& parent, int depth, std::size_t limit) const;

    std::vector<eEntry> entries = std::vector<eEntry>(1); // the first stands for the document
    unsigned long long blocks = 0;
    std::size_t deepest = 0;
    unsigned long long words = 0;
    unsigned long long strings = 0;
    unsigned long long integers = 0;
    unsigned long long floats = 0;
};
