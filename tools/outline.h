#pragma once

#include <array>
#include <ostream>
#include <string>
#include <vector>

#include <qzl_io/sdl.h>

// What an SDL document is made of: its blocks, their keywords and depths, and how many values of which kind it has.
class eOutline {
public:
    // Called now and then with the line that is being read.
    using eProgress = void (*)(int line);

    // Reads a file through eSDLReader from its beginning to its end. Throws what the reader reports.
    explicit eOutline(const eFileName& sdl, eProgress progress = nullptr);

    // The blocks as an indented list: those of one name inside one parent as one entry with their number, and at most
    // so many entries inside one parent.
    void PrintBlocks(std::ostream& out, std::size_t entriesOfOneParent) const;
    // The number of blocks, their greatest depth, and the values by kind.
    void PrintCounts(std::ostream& out) const;

    unsigned long long Values() const { return words + strings + integers + floats; }

private:
    // Blocks of one name inside the blocks of another.
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
