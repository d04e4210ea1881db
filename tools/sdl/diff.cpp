// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <cstddef>
#include <iostream>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "files.h"
#include "terminal.h"
#include "tree.h"
#include "verb.h"

// Compares documents by their content.

namespace {

constexpr std::size_t kNone = ~std::size_t{0};

// Which children of two blocks belong together; kNone for one that is in one block alone.
using ePairs = std::vector<std::pair<std::size_t, std::size_t>>;

class eAlignment {
public:
    eAlignment(const eTree& leftTree, const eTree& rightTree) : left(leftTree), right(rightTree) {}

    ePairs Of(std::size_t leftBlock, std::size_t rightBlock) {
        pairs.clear();
        const std::vector<std::size_t> leftNodes = left.ChildrenOf(leftBlock);
        const std::vector<std::size_t> rightNodes = right.ChildrenOf(rightBlock);
        eNodes from = leftNodes;
        eNodes to = rightNodes;
        while (!from.empty() && !to.empty() && Equal(from.front(), to.front()))
            from = from.subspan(1), to = to.subspan(1);
        while (!from.empty() && !to.empty() && Equal(from.back(), to.back()))
            from = from.first(from.size() - 1), to = to.first(to.size() - 1);
        AlignEqual(from, to);
        return std::move(pairs);
    }

private:
    using eNodes = std::span<const std::size_t>;

    // More than this many comparisons would take too long; then only what is alike in order is paired.
    static constexpr std::size_t kMostCells = 1 << 24;

    bool Equal(std::size_t leftNode, std::size_t rightNode) const {
        return left.Nodes()[leftNode].hash == right.Nodes()[rightNode].hash;
    }

    // Puts equal nodes side by side, as many as possible, and what is between two such pairs as well as it goes.
    void AlignEqual(eNodes from, eNodes to) {
        if (from.empty() || to.empty() || from.size() > kMostCells / to.size())
            return AlignAlike(from, to);
        const std::size_t width = to.size() + 1;
        std::vector<std::uint32_t> length((from.size() + 1) * width); // of the longest common sequence from there on
        for (std::size_t i = from.size(); i-- > 0;)
            for (std::size_t j = to.size(); j-- > 0;)
                length[i * width + j] = Equal(from[i], to[j])
                                            ? length[(i + 1) * width + j + 1] + 1
                                            : std::max(length[(i + 1) * width + j], length[i * width + j + 1]);
        std::size_t i = 0;
        std::size_t j = 0;
        std::size_t doneFrom = 0;
        std::size_t doneTo = 0;
        while (i < from.size() && j < to.size()) {
            if (Equal(from[i], to[j])) {
                AlignAlike(from.subspan(doneFrom, i - doneFrom), to.subspan(doneTo, j - doneTo));
                doneFrom = ++i;
                doneTo = ++j;
            } else if (length[(i + 1) * width + j] >= length[i * width + j + 1]) {
                ++i;
            } else {
                ++j;
            }
        }
        AlignAlike(from.subspan(doneFrom), to.subspan(doneTo));
    }

    bool Alike(std::size_t leftNode, std::size_t rightNode) const {
        const bool block = left.Nodes()[leftNode].block;
        return block == right.Nodes()[rightNode].block && (!block || left.TextOf(leftNode) == right.TextOf(rightNode));
    }

    // Pairs blocks of one name, and values, in their order.
    void AlignAlike(eNodes from, eNodes to) {
        while (!from.empty() && !to.empty()) {
            if (Alike(from.front(), to.front())) {
                pairs.emplace_back(from.front(), to.front());
                from = from.subspan(1), to = to.subspan(1);
            } else if (from.size() >= to.size()) {
                pairs.emplace_back(from.front(), kNone);
                from = from.subspan(1);
            } else {
                pairs.emplace_back(kNone, to.front());
                to = to.subspan(1);
            }
        }
        for (const std::size_t node : from)
            pairs.emplace_back(node, kNone);
        for (const std::size_t node : to)
            pairs.emplace_back(kNone, node);
    }

    const eTree& left;
    const eTree& right;
    ePairs pairs;
};

class eComparison {
public:
    eComparison(const eTree& leftTree, const eTree& rightTree)
        : left(leftTree), right(rightTree), alignment(leftTree, rightTree) {}

    // Prints every difference.
    void Print() {
        open.push_back({0, 0, kNone});
        while (!open.empty()) {
            const eBlocks blocks = open.back();
            open.pop_back();
            Compare(blocks);
        }
    }

private:
    // A step of a path, and the one before it.
    struct eStep {
        std::size_t before;
        std::string text;
    };

    struct eBlocks {
        std::size_t from;
        std::size_t to;
        std::size_t step; // kNone: the document
    };

    void Compare(const eBlocks& blocks) {
        const std::size_t waiting = open.size();
        eNames names(right, blocks.to);
        for (const auto& [from, to] : alignment.Of(blocks.from, blocks.to)) {
            if (to == kNone) {
                PrintLine('-', left, from, blocks.step);
            } else if (from == kNone) {
                PrintLine('+', right, to, blocks.step);
            } else if (left.Nodes()[from].block) {
                steps.push_back({blocks.step, names.Step(to)});
                open.push_back({from, to, steps.size() - 1});
            } else {
                PrintLine('-', left, from, blocks.step);
                PrintLine('+', right, to, blocks.step);
            }
        }
        std::reverse(open.begin() + static_cast<std::ptrdiff_t>(waiting), open.end());
    }

    // The names of the blocks in one block.
    class eNames {
    public:
        eNames(const eTree& source, std::size_t parent) : tree(source) {
            for (const std::size_t child : tree.ChildrenOf(parent))
                if (tree.Nodes()[child].block)
                    indices.emplace(child, counts[tree.TextOf(child)]++);
        }

        // The name of a block, with its index if others have the name.
        std::string Step(std::size_t block) const {
            const std::string_view name = tree.TextOf(block);
            std::string step = name.empty() ? "*" : std::string(name);
            return counts.at(name) > 1 ? step + '[' + std::to_string(indices.at(block)) + ']' : step;
        }

    private:
        const eTree& tree;
        std::unordered_map<std::string_view, std::size_t> counts;
        std::unordered_map<std::size_t, std::size_t> indices;
    };

    // The innermost steps of a path.
    std::string PathOf(std::size_t step) const {
        constexpr int kMost = 32;
        std::string path;
        for (int shown = 0; step != kNone; step = steps[step].before) {
            if (++shown > kMost)
                return "..." + path;
            path.insert(0, '/' + steps[step].text);
        }
        return path.empty() ? "/" : path.substr(1);
    }

    void PrintLine(char sign, const eTree& tree, std::size_t node, std::size_t step) const {
        std::cout << sign << ' ' << tree.Nodes()[node].line << '\t' << terminal::Printable(PathOf(step)) << '\t'
                  << Shown(tree, node) << '\n';
    }

    static std::string Shown(const eTree& tree, std::size_t node) {
        constexpr std::size_t kMost = 200;
        std::string text;
        if (tree.Nodes()[node].block)
            AppendBlock(&text, tree, node, kMost);
        else
            text = tree.TextOf(node);
        if (text.size() > kMost)
            text.replace(kMost, std::string::npos, " ...");
        return terminal::Printable(text);
    }

    static void AppendBlock(std::string* text, const eTree& tree, std::size_t block, std::size_t most) {
        std::vector<std::size_t> ends;
        for (std::size_t node = block; node < tree.Nodes()[block].end && text->size() <= most; ++node) {
            for (; !ends.empty() && ends.back() <= node; ends.pop_back())
                *text += '}';
            if (node > block && text->back() != '{')
                *text += ' ';
            if (tree.Nodes()[node].block) {
                *text += '{';
                ends.push_back(tree.Nodes()[node].end);
            }
            *text += tree.TextOf(node).substr(0, most + 1);
        }
        text->append(ends.size() < most ? ends.size() : most, '}');
    }

    const eTree& left;
    const eTree& right;
    eAlignment alignment;
    std::vector<eBlocks> open;
    std::vector<eStep> steps;
};

struct eDiffArguments {
    std::string left;
    std::string right;
    bool quiet = false;
};

eEnd Diff(const eDiffArguments& arguments) {
    const eTree left(arguments.left);
    const eTree right(arguments.right);
    terminal::EndProgress();
    if (left == right)
        return eEnd::Fine;
    if (!arguments.quiet)
        eComparison(left, right).Print();
    return eEnd::Findings;
}

} // namespace

eVerb::eRun DeclareDiff(CLI::App* verb) {
    const auto arguments = std::make_shared<eDiffArguments>();
    verb->add_option("A", arguments->left, "the one document")->required();
    verb->add_option("B", arguments->right, "the other one")->required();
    verb->add_flag("-q,--quiet", arguments->quiet, "print nothing, and tell by the exit code");
    return [arguments] { return Diff(*arguments); };
}
