// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <unordered_map>
#include <vector>

// The structure of an SDL document: its blocks with their names and depths, and the number of its values by kind.
class eOutline {
public:
    // Reads a file from beginning to end. Blocks within more than `depth` - 1 others are counted, but not listed.
    // Throws eTrouble for a document with mistakes.
    eOutline(const std::string& name, std::size_t depth);

    // Prints the blocks as an indented list. Blocks of one name in one parent are one entry with their number; each
    // parent shows at most `entriesOfOneParent` entries.
    void PrintBlocks(std::ostream& out, std::size_t entriesOfOneParent) const;
    // Prints the number of blocks, their greatest depth, and the values by kind.
    void PrintCounts(std::ostream& out) const;

private:
    // The blocks of one name inside the blocks of another.
    struct eEntry {
        std::string name;
        unsigned long long count = 0;
        std::vector<std::size_t> inside; // positions in entries
    };

    class eReading;

    std::size_t Enter(std::size_t parent, const std::string& name);
    void PrintInside(std::ostream& out, const eEntry& parent, int depth, std::size_t limit) const;

    std::size_t shownDepth;
    std::unordered_map<std::string, std::size_t> numbers; // of entries, by the parent's number and the name
    std::vector<eEntry> entries = std::vector<eEntry>(1); // the first stands for the document
    unsigned long long blocks = 0;
    std::size_t deepest = 0;
    unsigned long long words = 0;
    unsigned long long strings = 0;
    unsigned long long integers = 0;
    unsigned long long floats = 0;
};
