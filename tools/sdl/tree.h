// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// A document's content as a reader finds it: without layout, comments and hidden blocks, numbers by their values.
class eTree {
public:
    struct eNode {
        std::uint64_t hash; // of the content; those of blocks include all that is within them
        std::size_t end;    // one more than the number of the last node within the block; of a value, of itself
        std::size_t text;   // of a block its name, of a value the value as SDL; where it begins in `texts`
        std::uint32_t size; // of that text
        int line;
        bool block;
    };

    // Throws eTrouble for a document with mistakes.
    explicit eTree(const std::string& name);

    // The first node is the document, which counts as a block; each block's nodes follow it.
    const std::vector<eNode>& Nodes() const { return nodes; }
    std::string_view TextOf(std::size_t node) const { return {texts.data() + nodes[node].text, nodes[node].size}; }
    std::vector<std::size_t> ChildrenOf(std::size_t block) const;

    bool operator==(const eTree& other) const;

private:
    class eReading;

    std::vector<eNode> nodes;
    std::string texts;
};
